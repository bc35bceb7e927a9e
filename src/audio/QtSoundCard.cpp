#include "audio/QtSoundCard.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>
#include <QAudioInput>
#include <QAudioOutput>
#include <QCoreApplication>
#include <QDebug>
#include <QIODevice>
#include <QPointer>

#include <algorithm>
#include <type_traits>

namespace {

constexpr int kSampleSize = 16;          // bits
constexpr int kOutputBufferSize = 16384; // bytes

// A QAudioInput or QAudioOutput that is running. It ends at once and is deleted from the event loop: on PulseAudio its
// destructor handles waiting events, and whoever closes a stream does not expect to be called meanwhile.
template<typename Audio> class QtSoundStream final : public SoundStream
{
public:
    // The application owns what is still waiting for its deletion at the end.
    QtSoundStream(std::unique_ptr<Audio> audio, bool isOfNamedDevice)
        : m_audio(audio.release())
        , m_device(m_audio->start())
        , m_isOfNamedDevice(isOfNamedDevice)
    {
        m_audio->setParent(QCoreApplication::instance());
    }
    ~QtSoundStream() override
    {
        m_audio->stop();
        m_audio->deleteLater();
    }

    [[nodiscard]] QIODevice *device() const override
    {
        // Nobody stops the stream but its end: a stopped one has died.
        return m_audio->state() == QAudio::StoppedState ? nullptr : m_device.data();
    }
    [[nodiscard]] int bytesFree() const override
    {
        if constexpr (std::is_same_v<Audio, QAudioOutput>)
            return m_audio->bytesFree();
        return SoundStream::bytesFree();
    }
    [[nodiscard]] bool isOfNamedDevice() const override { return m_isOfNamedDevice; }

private:
    Audio *m_audio;
    QPointer<QIODevice> m_device; // deleted by Qt when the sound server goes away
    bool m_isOfNamedDevice;
};

template<typename Audio> std::unique_ptr<SoundStream> start(std::unique_ptr<Audio> audio, bool isOfNamedDevice)
{
    auto stream = std::make_unique<QtSoundStream<Audio>>(std::move(audio), isOfNamedDevice);
    return stream->device() ? std::move(stream) : nullptr;
}

QAudioFormat wantedFormat(const SoundCard::Request &request)
{
    QAudioFormat format;
    format.setSampleRate(request.sampleRate);
    format.setChannelCount(request.channels);
    format.setSampleSize(kSampleSize);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleType(QAudioFormat::SignedInt);
    return format;
}

// The first device of exactly that name; nothing of an empty name.
QAudioDeviceInfo namedDevice(QAudio::Mode mode, const QString &name)
{
    if (name.isEmpty())
        return {};
    const QList<QAudioDeviceInfo> devices = QAudioDeviceInfo::availableDevices(mode);
    const auto found = std::find_if(devices.cbegin(), devices.cend(),
                                    [&name](const QAudioDeviceInfo &device) { return device.deviceName() == name; });
    return found != devices.cend() ? *found : QAudioDeviceInfo();
}

} // namespace

std::unique_ptr<SoundStream> QtSoundCard::openInput(const Request &request)
{
    QAudioDeviceInfo device = namedDevice(QAudio::AudioInput, request.deviceName);
    const bool isNamed = !device.isNull();
    if (!isNamed && request.onlyNamed)
        return nullptr;
    if (!isNamed)
        device = QAudioDeviceInfo::defaultInputDevice();
    QAudioFormat format = wantedFormat(request);
    if (!device.isFormatSupported(format))
        format = device.nearestFormat(format);
    return start(std::make_unique<QAudioInput>(device, format), isNamed);
}

std::unique_ptr<SoundStream> QtSoundCard::openOutput(const Request &request)
{
    QAudioDeviceInfo device = namedDevice(QAudio::AudioOutput, request.deviceName);
    const bool isNamed = !device.isNull();
    if (!isNamed && request.onlyNamed)
        return nullptr;
    if (!isNamed)
        device = QAudioDeviceInfo::defaultOutputDevice();
    else if (request.reportChoice)
        qDebug().noquote() << "[Audio] Using selected output:" << device.deviceName();
    QAudioFormat format = wantedFormat(request);
    if (!device.isFormatSupported(format)) {
        format = device.nearestFormat(format);
        if (request.reportChoice)
            qDebug() << "[Audio] Using nearest format:" << format.sampleRate() << "Hz";
    }
    auto audio = std::make_unique<QAudioOutput>(device, format);
    audio->setBufferSize(kOutputBufferSize);
    return start(std::move(audio), isNamed);
}
