#include "server/GuidePages.h"

#include "server/Resources.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <array>

// Outside any namespace, as the macro wants it: the resources of a static library are not registered by themselves.
static void registerGuide()
{
    Q_INIT_RESOURCE(guide);
}

namespace {

struct Page
{
    const char *path;
    const char *text; ///< its name in docs/, without ".md"
    const char *language;
};

constexpr std::array kPages{
    Page{"/dokumentasi/", "operating", "id"},
    Page{"/dokumentasi/en/", "operating.en", "en"},
    Page{"/tutorial/", "tutorial", "id"},
};

QString pictureFolder()
{
    return QStringLiteral("/dokumentasi/images/");
}

QString builtIn(const QString &name)
{
    return QStringLiteral(":/guide/") + name;
}

QByteArray content(const QString &name)
{
    QFile file(builtIn(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("%s is not built in", qPrintable(name));
    return file.readAll();
}

QString withoutTags(QString html)
{
    static const QRegularExpression tag(QStringLiteral("<[^>]*>"));
    return html.remove(tag).trimmed();
}

/// The name that other Markdown readers give a heading too, so that a link works everywhere.
QString anchor(const QString &heading)
{
    static const QRegularExpression entity(QStringLiteral("&[a-z]+;"));
    static const QRegularExpression other(QStringLiteral("[^\\w -]"), QRegularExpression::UseUnicodePropertiesOption);
    return withoutTags(heading).toLower().remove(entity).remove(other).replace(QLatin1Char(' '), QLatin1Char('-'));
}

/// The text with every match replaced by what the function makes of it.
template<typename Make> QString replaced(const QString &text, const QRegularExpression &expression, Make make)
{
    QString result;
    int from = 0;
    for (auto matches = expression.globalMatch(text); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        result += text.mid(from, match.capturedStart() - from) + make(match);
        from = match.capturedEnd();
    }
    return result + text.mid(from);
}

QString title(const QString &body)
{
    static const QRegularExpression heading(QStringLiteral("<h1[^>]*>(.*?)</h1>"));
    return withoutTags(heading.match(body).captured(1));
}

QByteArray framed(const QString &frame, const Page &page, const QString &body)
{
    QString html = frame;
    html.replace(QLatin1String("@LANGUAGE@"), QLatin1String(page.language));
    html.replace(QLatin1String("@TITLE@"), title(body));
    html.replace(QLatin1String("@BODY@"), body);
    return html.toUtf8();
}

} // namespace

GuidePages::GuidePages()
{
    registerGuide();
    const QStringList names = QDir(builtIn(QStringLiteral("images"))).entryList();
    m_pictures = QSet<QString>(names.cbegin(), names.cend());
    const QString frame = QString::fromUtf8(builtInFile("guide-page.html"));
    for (const Page &page : kPages) {
        const QByteArray text = content(QLatin1String(page.text) + QStringLiteral(".html"));
        m_pages.insert(QLatin1String(page.path), framed(frame, page, body(QString::fromUtf8(text), m_pictures)));
    }
}

std::optional<HttpResponse> GuidePages::find(const QString &path) const
{
    const auto page = m_pages.constFind(path);
    if (page != m_pages.cend())
        return HttpResponse{200, "text/html; charset=utf-8", *page};
    const QString name = path.mid(pictureFolder().size());
    if (path.startsWith(pictureFolder()) && m_pictures.contains(name))
        return HttpResponse{200, "image/png", content(QStringLiteral("images/") + name)};
    return std::nullopt;
}

QString GuidePages::body(QString html, const QSet<QString> &pictures)
{
    static const QRegularExpression heading(QStringLiteral("<h([1-6])>(.*?)</h\\1>"));
    static const QRegularExpression picture(QStringLiteral("(?:<p>)?<img src=\"images/([^\"]*)\"([^>]*)>(?:</p>\n?)?"));
    html = replaced(html, heading, [](const QRegularExpressionMatch &match) {
        return QStringLiteral("<h%1 id=\"%2\">%3</h%1>")
            .arg(match.captured(1), anchor(match.captured(2)), match.captured(2));
    });
    html = replaced(html, picture, [&pictures](const QRegularExpressionMatch &match) {
        return pictures.contains(match.captured(1))
                   ? match.captured().replace(QLatin1String("\"images/"), QLatin1Char('"') + pictureFolder())
                   : QString();
    });
    for (const Page &page : kPages) {
        const QRegularExpression link(
            QStringLiteral("href=\"%1\\.md(#[^\"]*)?\"").arg(QRegularExpression::escape(QLatin1String(page.text))));
        html.replace(link, QStringLiteral("href=\"%1\\1\"").arg(QLatin1String(page.path)));
    }
    return html;
}
