#include "gateway/RelayRules.h"

#include <algorithm>

namespace RelayRules {

CarrierStep onCarrier(bool active, const Situation &situation)
{
    const bool reachesTheRoom = situation.connected && situation.roomKnown;
    if (!active)
        return reachesTheRoom ? CarrierStep::StopTransmission : CarrierStep::ForgetTransmission;
    if (situation.micMuted)
        return CarrierStep::BlockedByMicMute;
    return reachesTheRoom && situation.inRoom ? CarrierStep::StartTransmission : CarrierStep::Nothing;
}

bool remoteTalks(const QList<QVariantMap> &users, const QString &ownCallsign)
{
    return std::any_of(users.cbegin(), users.cend(), [&ownCallsign](const QVariantMap &user) {
        return user.value(QStringLiteral("callsign")).toString() != ownCallsign &&
               user.value(QStringLiteral("is_transmitting")).toBool();
    });
}

KeyStep onUserList(bool remoteTalks, bool keyed, bool speakerMuted, bool serialOpen)
{
    if (!serialOpen || remoteTalks == keyed)
        return KeyStep::Nothing;
    if (!remoteTalks)
        return KeyStep::Release;
    return speakerMuted ? KeyStep::BlockedBySpeakerMute : KeyStep::Key;
}

} // namespace RelayRules
