#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <optional>

/// One audio frame as it travels by UDP, in both directions: the user id, 4 bytes, most significant first, then the
/// payload (an enciphered packet, or a bare Opus packet while encryption is off). No sequence number, no checksum.
struct AudioDatagram
{
    static constexpr int kHeaderSize = 4;

    quint32 userId = 0; ///< on the way to the server the sender's own id, on the way back the talker's
    QByteArray payload; ///< at least one byte

    [[nodiscard]] QByteArray encode() const;
    /// Nothing when the datagram is too short to hold a header and one byte.
    [[nodiscard]] static std::optional<AudioDatagram> decode(const QByteArray &datagram);
};
