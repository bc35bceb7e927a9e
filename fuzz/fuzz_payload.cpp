// Whatever a room may send: payloads and the server's quality numbers, into an engine without a sound card.

#include "audio/AudioEngine.h"
#include "audio/SoundCard.h"

#include <QCoreApplication>
#include <QIODevice>
#include <QtEndian>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// An input that hums and an output that swallows.
class FuzzDevice final : public QIODevice
{
public:
    FuzzDevice() { open(ReadWrite | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        std::memset(data, 0x11, static_cast<std::size_t>(size));
        return size;
    }
    qint64 writeData(const char *, qint64 size) override { return size; }
};

class FuzzStream final : public SoundStream
{
public:
    [[nodiscard]] QIODevice *device() const override { return m_device.get(); }

private:
    std::unique_ptr<QIODevice> m_device = std::make_unique<FuzzDevice>();
};

class FuzzSoundCard final : public SoundCard
{
public:
    [[nodiscard]] std::unique_ptr<SoundStream> openInput(const Request &) override
    {
        return std::make_unique<FuzzStream>();
    }
    [[nodiscard]] std::unique_ptr<SoundStream> openOutput(const Request &) override
    {
        return std::make_unique<FuzzStream>();
    }
};

// The input, taken from the front.
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_bytes(QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size)))
    {
    }
    [[nodiscard]] bool isEmpty() const { return m_bytes.isEmpty(); }
    quint8 byte() { return static_cast<quint8>(take(1).at(0)); }
    int number() { return qFromLittleEndian<int>(take(4).constData()); }
    // At most `size` bytes, filled up with zeros where a fixed number is needed.
    QByteArray take(int size)
    {
        QByteArray front = m_bytes.left(size);
        m_bytes = m_bytes.mid(size);
        return front.append(QByteArray(size - front.size(), '\0'));
    }
    QByteArray block()
    {
        const int size = byte() * 17; // up to 4335 bytes: beyond the largest packet
        return take(qMin(size, m_bytes.size()));
    }

private:
    QByteArray m_bytes;
};

void step(AudioEngine &engine, Input &input)
{
    enum Step { Bare, Sealed, TrialOpening, Quality, SampledRate, Key, Reset, Gain, StepCount };
    constexpr int kRates[] = {8000, 12000, 16000, 24000, 48000};
    switch (input.byte() % StepCount) {
    case Bare: engine.onAudioReceived(input.block()); break;
    case Sealed: engine.onAudioReceived(engine.encryptAudio(input.block())); break;
    case TrialOpening: {
        bool attempted = false;
        (void)engine.tryOpen(input.block(), &attempted);
        break;
    }
    case Quality: {
        const int rate = input.number();
        const int bitrate = input.number();
        const int complexity = input.number();
        engine.applyQuality(rate, bitrate, complexity, input.number());
        break;
    }
    case SampledRate: engine.applyQuality(kRates[input.byte() % 5], input.number(), input.byte(), input.byte()); break;
    case Key: engine.setEncryptionKey(QString::fromUtf8(input.take(44))); break;
    case Reset:
        engine.clearBuffers();
        engine.resetDecoder();
        engine.setEncryptionKey(QString::fromLatin1(QByteArray(32, 'k').toBase64()));
        break;
    case Gain:
        engine.setMicGain(input.number());
        engine.setSpeakerGain(input.number());
        break;
    }
    engine.onCaptureTimer();
    engine.onOutputBufferTimer();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz_payload";
    static char *argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});

    AudioEngine engine(std::make_unique<FuzzSoundCard>(), nullptr);
    if (!engine.init(0, 0, 0, 0, 0) || !engine.startCapture() || !engine.startPlayback())
        std::abort(); // without the codec nothing would be tried
    Input input(data, size);
    constexpr int kMaxSteps = 64;
    for (int i = 0; i < kMaxSteps && !input.isEmpty(); ++i)
        step(engine, input);
    return 0;
}
