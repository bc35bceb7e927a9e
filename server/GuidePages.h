#pragma once

#include "server/HttpResponse.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <optional>

/// The operator's guide for a browser: the texts of docs/ as pages, and their pictures. All of it is built in.
class GuidePages final
{
public:
    GuidePages();

    /// The page or picture at a path such as "/dokumentasi/" or "/dokumentasi/images/window-light.png"; nothing where
    /// there is none.
    [[nodiscard]] std::optional<HttpResponse> find(const QString &path) const;

    /// The guide's text, made of Markdown, as it is to stand in a page: headings can be linked to, links to the other
    /// texts and to the pictures lead to where they are served, and a picture that there is not is left out.
    [[nodiscard]] static QString body(QString html, const QSet<QString> &pictures);

private:
    QSet<QString> m_pictures; ///< file names
    QHash<QString, QByteArray> m_pages;
};
