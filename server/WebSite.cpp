#include "server/WebSite.h"

#include "server/Resources.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

WebSite::WebSite(const Content &content)
    : m_content(content)
    , m_notFoundPicture(builtInFile("not-found.png"))
{
}

HttpResponse WebSite::answer(const HttpRequest &request) const
{
    if (request.path == QLatin1String("/registrant/searchDataIar/")) {
        const QString page = m_content.registry.page(request.arguments.value(QStringLiteral("callsign")));
        return m_content.quotedRegistry
                   ? HttpResponse{200, "application/json; charset=utf-8", quotedPage(page).toUtf8()}
                   : HttpResponse{200, "text/html; charset=utf-8", page.toUtf8()};
    }
    if (request.path == QLatin1String("/images/not-found.png"))
        return {200, "image/png", m_notFoundPicture};
    if (request.path == QLatin1String("/update/"))
        return {200, "application/json; charset=utf-8", m_content.update};
    return m_guide.find(request.path).value_or(HttpResponse::plain(404));
}

QByteArray WebSite::plainUpdate(const QString &version, const QString &buildDate)
{
    const QJsonObject document{{QStringLiteral("version"), version},
                               {QStringLiteral("build_date"), buildDate},
                               {QStringLiteral("changelog"), QJsonArray()}};
    return QJsonDocument(document).toJson();
}

QString WebSite::updateProblem(const QByteArray &json)
{
    QJsonParseError problem{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &problem);
    if (problem.error)
        return problem.errorString();
    return document.isObject() ? QString() : QStringLiteral("not a JSON object");
}
