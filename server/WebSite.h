#pragma once

#include "server/CallsignRegistry.h"
#include "server/GuidePages.h"
#include "server/HttpRequest.h"
#include "server/HttpResponse.h"

#include <QByteArray>
#include <QString>

/// What is asked for by HTTP: the registry when a gateway is set up, the update document, and the operator's guide. A
/// value: it reads nothing from disk after it was made.
class WebSite final
{
public:
    static constexpr int kLargestUpdate = 1024 * 1024; ///< bytes

    struct Content
    {
        CallsignRegistry registry;
        bool quotedRegistry = false; ///< pages as quotedPage()
        QByteArray update;           ///< a JSON object, served as it is
    };
    explicit WebSite(const Content &content);

    /// Answers GET; for HEAD the same without its body is sent.
    [[nodiscard]] HttpResponse answer(const HttpRequest &request) const;

    /// The update document of a server that has nothing newer to offer than what it belongs to.
    [[nodiscard]] static QByteArray plainUpdate(const QString &version, const QString &buildDate);
    /// Empty when the document can be served, otherwise why not.
    [[nodiscard]] static QString updateProblem(const QByteArray &json);

private:
    Content m_content;
    QByteArray m_notFoundPicture;
    GuidePages m_guide;
};
