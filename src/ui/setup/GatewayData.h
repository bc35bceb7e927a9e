#pragma once

#include <QString>

class Config;
struct Endpoints;

/// What a new gateway tells the server about itself, as the setup wizard collects it. Texts are trimmed, apart from the
/// password.
struct GatewayData
{
    QString serverAddress; ///< host name or literal address
    int serverPort = 0;    ///< 1..65535
    QString defaultRoom;
    QString callsign; ///< in capitals
    QString gatewayName;
    QString frequency;
    QString location;
    QString permitExpiry; ///< last day of the radio permit, yyyy-MM-dd; empty when the registry gave none
    QString picCallsign;  ///< of the person in charge
    QString picName;      ///< the same person, also the operator
    QString email;
    QString whatsapp;
    QString password;

    /// Whether everything is there that a registration cannot do without.
    [[nodiscard]] bool isComplete() const;

    /// What was entered at an earlier attempt; on a first start what the wizard proposes.
    [[nodiscard]] static GatewayData fromConfig(const Config &config, const Endpoints &endpoints);
    /// Writes it into the configuration, as a setup that is not completed yet. Does not save.
    void store(Config *config) const;
};
