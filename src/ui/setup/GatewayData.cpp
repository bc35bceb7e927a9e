#include "ui/setup/GatewayData.h"

#include "app/Config.h"
#include "app/Endpoints.h"

namespace {

QString stored(const Config &config, const char *key, const QString &proposal = {})
{
    return config.value(QLatin1String(key)).toString(proposal);
}

} // namespace

bool GatewayData::isComplete() const
{
    return !callsign.isEmpty() && !password.isEmpty() && !gatewayName.isEmpty() && !picName.isEmpty();
}

GatewayData GatewayData::fromConfig(const Config &config, const Endpoints &endpoints)
{
    GatewayData data;
    data.serverAddress = stored(config, "server_address");
    if (data.serverAddress.isEmpty())
        data.serverAddress = endpoints.serverHost;
    data.serverPort = config.serverPort();
    data.defaultRoom = stored(config, "default_room", QStringLiteral("== LOBBY =="));
    data.callsign = stored(config, "callsign");
    data.gatewayName = stored(config, "gateway_name");
    data.frequency = stored(config, "frequency");
    data.location = stored(config, "location");
    data.picCallsign = stored(config, "responsible_callsign");
    data.picName = stored(config, "name");
    data.email = stored(config, "email");
    data.whatsapp = stored(config, "whatsapp");
    data.password = stored(config, "password");
    return data;
}

void GatewayData::store(Config *config) const
{
    config->setServerAddress(serverAddress);
    config->setServerPort(serverPort);
    config->setDefaultRoom(defaultRoom);
    config->setCallsign(callsign);
    config->setPassword(password);
    config->setSetupCompleted(false);
    const auto set = [config](const char *key, const QString &text) { config->setValue(QLatin1String(key), text); };
    set("gateway_name", gatewayName);
    set("frequency", frequency);
    set("location", location);
    set("name", picName);
    set("responsible_name", picName); // the operator is the person in charge
    set("responsible_callsign", picCallsign);
    set("email", email);
    set("whatsapp", whatsapp);
}
