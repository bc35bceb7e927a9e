// What the engine adds to the bare codec and cipher, per frame and per payload.

#include "Bench.h"
#include "audio/AudioEngine.h"
#include "audio/OpusLibrary.h"
#include "audio/SodiumLibrary.h"
#include "audio/SoundCard.h"

#include <QCoreApplication>
#include <QIODevice>

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr int kFrameSize = 960; // samples: 20 ms at 48 kHz
constexpr int kFrameBytes = kFrameSize * 2;
// Two seconds of audio per measurement, and many measurements: a short pair is hit by the same noise.
constexpr int kFrames = 100;
constexpr int kPairs = 101;
constexpr int kNonceSize = 24;
constexpr int kAuthenticatorSize = 16;
constexpr int kKeySize = 32;
constexpr int kMaxPacketSize = 4000;
constexpr double kMicrosecondsPerSecond = 1e6;
constexpr double kCaptureLimit = 1.05;
constexpr double kReceiveLimit = 1.15;

// Something like a voice: a gliding fundamental with harmonics, syllables and noise.
QByteArray speech()
{
    QByteArray pcm(kFrames * kFrameBytes, Qt::Uninitialized);
    std::minstd_rand random(3);
    double phase = 0;
    for (int i = 0; i < kFrames * kFrameSize; ++i) {
        const double seconds = i / 48000.0;
        phase += 2 * 3.14159265358979 * (140 + 40 * std::sin(seconds * 2)) / 48000;
        double value = 0;
        for (int harmonic = 1; harmonic <= 12; ++harmonic)
            value += std::sin(phase * harmonic) / harmonic;
        value = value * 5000 * std::abs(std::sin(seconds * 9)) + static_cast<double>(random() % 400) - 200;
        const auto sample = static_cast<qint16>(value);
        std::memcpy(pcm.data() + 2 * i, &sample, 2);
    }
    return pcm;
}

// Delivers the same samples again and again.
class EndlessInput final : public QIODevice
{
public:
    explicit EndlessInput(const QByteArray &pcm)
        : m_pcm(pcm)
    {
        open(ReadOnly | Unbuffered);
    }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (m_next + size > m_pcm.size())
            m_next = 0;
        std::memcpy(data, m_pcm.constData() + m_next, static_cast<std::size_t>(size));
        m_next += static_cast<int>(size);
        return size;
    }
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_pcm;
    int m_next = 0;
};

class SwallowingOutput final : public QIODevice
{
public:
    SwallowingOutput() { open(WriteOnly | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
    qint64 writeData(const char *, qint64 size) override { return size; }
};

class BenchStream final : public SoundStream
{
public:
    explicit BenchStream(std::unique_ptr<QIODevice> device)
        : m_device(std::move(device))
    {
    }
    [[nodiscard]] QIODevice *device() const override { return m_device.get(); }

private:
    std::unique_ptr<QIODevice> m_device;
};

class BenchSoundCard final : public SoundCard
{
public:
    explicit BenchSoundCard(const QByteArray &pcm)
        : m_pcm(pcm)
    {
    }
    [[nodiscard]] std::unique_ptr<SoundStream> openInput(const Request &) override
    {
        return std::make_unique<BenchStream>(std::make_unique<EndlessInput>(m_pcm));
    }
    [[nodiscard]] std::unique_ptr<SoundStream> openOutput(const Request &) override
    {
        return std::make_unique<BenchStream>(std::make_unique<SwallowingOutput>());
    }

private:
    QByteArray m_pcm;
};

// The two libraries alone, as little as anybody could do with them.
class Bare
{
public:
    Bare()
    {
        int error = 0;
        m_encoder = m_opus.opus_encoder_create(48000, 1, 2048, &error);
        m_opus.opus_encoder_ctl(m_encoder, 4002, 32000);
        m_opus.opus_encoder_ctl(m_encoder, 4010, 5);
        m_opus.opus_encoder_ctl(m_encoder, 4006, 1);
        m_decoder = m_opus.opus_decoder_create(48000, 1, &error);
    }
    ~Bare()
    {
        m_opus.opus_encoder_destroy(m_encoder);
        m_opus.opus_decoder_destroy(m_decoder);
    }
    Bare(const Bare &) = delete;
    Bare &operator=(const Bare &) = delete;

    int send(const char *frame, const unsigned char *key)
    {
        const int size = m_opus.opus_encode(m_encoder, reinterpret_cast<const qint16 *>(frame), kFrameSize,
                                            m_packet.data(), kMaxPacketSize);
        if (size > 0) {
            m_sodium.crypto_secretbox_easy(m_box.data(), m_packet.data(), static_cast<unsigned long long>(size),
                                           m_nonce.data(), key);
        }
        return size;
    }
    int receive(const QByteArray &payload, const unsigned char *key)
    {
        const auto *bytes = reinterpret_cast<const unsigned char *>(payload.constData());
        m_sodium.crypto_secretbox_open_easy(m_packet.data(), bytes + kNonceSize,
                                            static_cast<unsigned long long>(payload.size() - kNonceSize), bytes, key);
        return m_opus.opus_decode(m_decoder, m_packet.data(), payload.size() - kNonceSize - kAuthenticatorSize,
                                  m_pcm.data(), kFrameSize, 0);
    }

private:
    const OpusLibrary &m_opus = OpusLibrary::instance();
    const SodiumLibrary &m_sodium = SodiumLibrary::instance();
    OpusEncoder *m_encoder = nullptr;
    OpusDecoder *m_decoder = nullptr;
    std::array<unsigned char, kMaxPacketSize> m_packet{};
    std::array<unsigned char, kMaxPacketSize + kAuthenticatorSize> m_box{};
    std::array<unsigned char, kNonceSize> m_nonce{};
    std::array<qint16, kFrameSize> m_pcm{};
};

void print(const char *name, const Bench::Medians &seconds, double limit)
{
    const double scale = kMicrosecondsPerSecond / kFrames;
    Bench::printRow(name, seconds.ours * scale, seconds.baseline * scale, "us", limit);
}

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "bench_audio: %s\n", what);
    std::exit(1);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    const QByteArray pcm = speech();
    const QByteArray key(kKeySize, 'k');
    const auto *keyBytes = reinterpret_cast<const unsigned char *>(key.constData());

    AudioEngine engine(std::make_unique<BenchSoundCard>(pcm), nullptr);
    engine.setEncryptionKey(QString::fromLatin1(key.toBase64()));
    engine.setMicGain(120);
    engine.setSpeakerGain(80);
    if (!engine.init(0, 0, 0, 0, 0) || !engine.startCapture() || !engine.startPlayback())
        fail("the codec library is missing");
    std::vector<QByteArray> payloads;
    QObject::connect(&engine, &AudioEngine::audioEncoded,
                     [&payloads](const QByteArray &payload) { payloads.push_back(payload); });
    Bare bare;

    const Bench::Medians capture = Bench::compareTimes(
        [&] {
            payloads.clear();
            for (int i = 0; i < kFrames; ++i)
                engine.onCaptureTimer();
        },
        [&] {
            for (int i = 0; i < kFrames; ++i)
                bare.send(pcm.constData() + i * kFrameBytes, keyBytes);
        },
        kPairs);
    if (payloads.size() != kFrames)
        fail("not every frame was sent");
    print("capture: gain + meter + encode + encipher + emit, per 20 ms frame", capture, kCaptureLimit);

    int decoded = 0;
    const Bench::Medians receive = Bench::compareTimes(
        [&] {
            for (const QByteArray &payload : payloads) {
                engine.onAudioReceived(payload);
                engine.onOutputBufferTimer();
            }
        },
        [&] {
            decoded = 0;
            for (const QByteArray &payload : payloads)
                decoded += bare.receive(payload, keyBytes) == kFrameSize ? 1 : 0;
        },
        kPairs);
    if (decoded != kFrames)
        fail("not every payload was decoded");
    print("receive: decipher + decode + convert + gain + meter + queue, per payload", receive, kReceiveLimit);
    return 0;
}
