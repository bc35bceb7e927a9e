#include "app/Endpoints.h"

const Endpoints &Endpoints::builtIn()
{
    static const Endpoints endpoints{QStringLiteral(EVOX_SERVER_HOST), QStringLiteral(EVOX_WEB_URL),
                                     QStringLiteral(EVOX_REGISTRY_URL), QStringLiteral(EVOX_MAIL_DOMAIN)};
    return endpoints;
}
