#pragma once

#include "audio/OpusCodec.h"
#include "audio/RoomCipher.h"

#include <QByteArray>
#include <QString>

class FakeServer;

/// Somebody else in a scripted room: audio datagrams as another gateway sends them, under a key of its own.
class RoomVoice final
{
public:
    /// Loads codec and cipher; a new random key.
    RoomVoice();

    /// The key as JOIN_OK carries it.
    [[nodiscard]] QString keyText() const { return QString::fromLatin1(m_key.toBase64()); }
    /// Sends so many frames of 20 ms of a tone, in their own time. False when that was interrupted.
    [[nodiscard]] bool speak(FakeServer &server, double frequency, int frames);

private:
    QByteArray m_key;
    OpusCodec m_codec;
    RoomCipher m_cipher;
};
