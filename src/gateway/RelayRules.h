#pragma once

#include <QList>
#include <QVariantMap>

/// Whether the gateway transmits into the room, and whether it keys the radio.
namespace RelayRules {

/// What the carrier rule looks at.
struct Situation
{
    bool micMuted = false;
    bool connected = false; ///< control connection
    bool inRoom = false;
    bool roomKnown = false; ///< the room has a name
};

enum class CarrierStep {
    Nothing,
    StartTransmission,
    StopTransmission,
    ForgetTransmission, ///< it is over, and there is nobody to tell
    BlockedByMicMute,
};

/// A falling carrier stops a transmission even when none was started: the server must never be left with a talker.
/// Without a room it ends all the same: nothing may be sent with the squelch closed once there is a room again.
[[nodiscard]] CarrierStep onCarrier(bool active, const Situation &situation);

/// Whether somebody else in the room talks. Own entries are skipped by exact comparison of the callsign.
[[nodiscard]] bool remoteTalks(const QList<QVariantMap> &users, const QString &ownCallsign);

enum class KeyStep {
    Nothing,
    Key,
    Release,
    BlockedBySpeakerMute,
};

/// Keying follows the server's user list alone: no timer, no dependence on audio that arrives.
[[nodiscard]] KeyStep onUserList(bool remoteTalks, bool keyed, bool speakerMuted, bool serialOpen);

} // namespace RelayRules
