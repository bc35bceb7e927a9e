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
    const bool isWeb = registry.scheme() == QLatin1String("https") || registry.scheme() == QLatin1String("http");
    if (registry.isValid() && isWeb && !registry.host().isEmpty() && !registry.hasQuery() && !registry.hasFragment()) {
        endpoints.registryUrl = registry.toString();
        while (endpoints.registryUrl.endsWith(QLatin1Char('/')))
            endpoints.registryUrl.chop(1);
    }
    return endpoints;
}
