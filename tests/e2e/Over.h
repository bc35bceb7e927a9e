#pragma once

#include "support/LossyProxy.h"
#include "support/Station.h"
#include "support/WavFile.h"

#include <QJsonObject>

#include <chrono>

/// One transmission from one gateway's receiver to another's transmitter, and what was measured of it.
struct Over
{
    bool keyed = false;                   ///< the far transmitter, after the carrier rose
    bool released = false;                ///< after the carrier fell
    std::chrono::milliseconds keyUp{0};   ///< from carrier to PTT
    std::chrono::milliseconds release{0}; ///< from the carrier's end to that of PTT
    double similarity = 0;                ///< of what was fed to the transmitter to the source, -1 to 1
    std::chrono::milliseconds mouthToEar{0};
    int sent = 0;       ///< audio datagrams that the sender put on the line
    int received = 0;   ///< that reached the receiver
    int deciphered = 0; ///< that opened with the room's key
    Sound transmitted;  ///< what the transmitter was fed, from key-up to release

    /// Whether it really was the source that went out over the air.
    [[nodiscard]] bool wasHeard() const;
    [[nodiscard]] QJsonObject toJson() const;
};

/// Root mean square of what the transmitter is fed in the second half of this time; -1 when it could not be heard.
[[nodiscard]] double loudness(Station &station, std::chrono::milliseconds duration);

/// Raises the carrier at `from`, plays the speech into its receiver and lowers the carrier. Both are in the same room,
/// alone. The measurement ends early, with what there is, when a step fails.
[[nodiscard]] Over relayOver(Station &from, Station &to, const LossyProxy &line, const Sound &speech);
