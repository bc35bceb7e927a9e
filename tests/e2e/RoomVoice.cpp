#include "e2e/RoomVoice.h"

#include "audio/OpusLibrary.h"
#include "audio/SodiumLibrary.h"
#include "support/FakeServer.h"
#include "support/Signals.h"
#include "support/Wait.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <array>
#include <chrono>

namespace {

constexpr int kRate = 48000;
constexpr int kFrameSize = 960;    // samples
constexpr int kFrameDuration = 20; // ms
constexpr std::chrono::milliseconds kSpare{30000};
const QByteArray kSender("\0\0\0\7", 4);

} // namespace

RoomVoice::RoomVoice()
{
    std::array<quint32, RoomCipher::kKeySize / sizeof(quint32)> random{};
    QRandomGenerator::system()->fillRange(random.data(), static_cast<qsizetype>(random.size()));
    m_key = QByteArray(reinterpret_cast<const char *>(random.data()), RoomCipher::kKeySize);
    if (!OpusLibrary::instance().load() || !SodiumLibrary::instance().load() || !m_cipher.setKey(m_key) ||
        m_codec.createEncoder({}) != 0)
        qFatal("no codec or no cipher");
}

bool RoomVoice::speak(FakeServer &server, double frequency, int frames)
{
    const QByteArray tone = Signals::sine(frequency, kRate, frames * kFrameSize);
    QElapsedTimer time;
    time.start();
    int sent = 0;
    const auto spoken = [&] {
        for (; sent < frames && time.elapsed() >= qint64{sent} * kFrameDuration; ++sent) {
            QByteArray packet;
            m_codec.encode(tone.mid(sent * kFrameSize * 2, kFrameSize * 2), packet);
            server.sendDatagram(kSender + m_cipher.seal(packet));
        }
        return sent == frames;
    };
    return waitFor(spoken, frames * std::chrono::milliseconds(kFrameDuration) + kSpare);
}
