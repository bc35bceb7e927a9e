#include "gateway/RelayRules.h"

#include <algorithm>

namespace RelayRules {

CarrierStep onCarrier(bool active, const Situation &situation)
{
    if (active && situation.micMuted)
        return CarrierStep::BlockedByMicMute;
    if (!situation.connected || !situation.roomKnown)
        return CarrierStep::Nothing;
    if (!active)
        return CarrierStep::StopTransmission;
    return situation.inRoom ? CarrierStep::StartTransmission : CarrierStep::Nothing;
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
