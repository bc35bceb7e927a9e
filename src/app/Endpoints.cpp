#include "app/Endpoints.h"

#include "app/Config.h"

#include <QUrl>

const Endpoints &Endpoints::builtIn()
{
    static const Endpoints endpoints{QStringLiteral(EVOX_SERVER_HOST), QStringLiteral(EVOX_WEB_URL),
                                     QStringLiteral(EVOX_REGISTRY_URL), QStringLiteral(EVOX_MAIL_DOMAIN)};
    return endpoints;
}

Endpoints Endpoints::configured(const Config &config)
{
    Endpoints endpoints = builtIn();
    const QUrl registry(config.value(QStringLiteral("registry_url")).toString(), QUrl::StrictMode);
    if (registry.isValid() && !registry.host().isEmpty() &&
        (registry.scheme() == QLatin1String("https") || registry.scheme() == QLatin1String("http")))
        endpoints.registryUrl = registry.toString(QUrl::StripTrailingSlash);
    return endpoints;
}
