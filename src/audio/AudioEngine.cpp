#include "audio/AudioEngine.h"

#include "audio/AudioDiagnostics.h"
#include "audio/QtSoundCard.h"
#include "audio/SodiumLibrary.h"

#include <QDebug>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;
using AudioDiagnostics::EventCounter;
using AudioDiagnostics::isFirstFive;

namespace {

constexpr auto kOutputInterval = 10ms;
constexpr auto kDeviceCheckInterval = 5s;
constexpr int kDefaultRate = 48000;    // Hz
constexpr int kDefaultBitrate = 32000; // bit/s
constexpr int kDefaultComplexity = 5;
constexpr int kDefaultFrameSize = 960;    // samples
constexpr int kDefaultFrameDuration = 20; // ms
constexpr int kMaxFrameSize = 48000;      // samples; eight times what the codec takes
constexpr int kMillisecondsPerSecond = 1000;

// The watch looks every 5 s and a refused chunk is offered again every 10 ms.
constexpr qint64 kRefusalsOfDeadOutput = kDeviceCheckInterval / kOutputInterval;

// The numbers come from the server, which may name anything.
int boundedFrameSize(int sampleRate, int durationMs)
{
    const qint64 samples = qint64(sampleRate) * durationMs / kMillisecondsPerSecond;
    return static_cast<int>(qBound(qint64(1), samples, qint64(kMaxFrameSize)));
}

} // namespace

AudioEngine::AudioEngine(QObject *parent)
    : AudioEngine(std::make_unique<QtSoundCard>(), parent)
{
}

AudioEngine::AudioEngine(std::unique_ptr<SoundCard> soundCard, QObject *parent)
    : QObject(parent)
    , m_soundCard(std::move(soundCard))
    , m_outputTimer(new QTimer(this))
    , m_playback(kOutputRate)
    , m_deviceWatch(new QTimer(this))
{
    m_outputTimer->setTimerType(Qt::PreciseTimer);
    m_outputTimer->setInterval(kOutputInterval);
    connect(m_outputTimer, &QTimer::timeout, this, &AudioEngine::onOutputBufferTimer);
    m_deviceWatch->setInterval(kDeviceCheckInterval);
    connect(m_deviceWatch, &QTimer::timeout, this, &AudioEngine::checkDevices);
    qDebug() << "[Audio] Engine created, timer interval: 10ms";
}

AudioEngine::~AudioEngine()
{
    stopPlayback();
    stopCapture();
    m_codec.destroyEncoder();
    m_codec.destroyDecoder();
    qDebug() << "[Audio] Destructor called";
}

bool AudioEngine::canEncipher() const
{
    return m_encryptionEnabled && m_sodiumLoaded && m_cipher.hasKey();
}

std::optional<QByteArray> AudioEngine::tryOpen(const QByteArray &payload, bool *attempted) const
{
    const bool possible = canEncipher() && payload.size() >= RoomCipher::kOverhead;
    if (attempted)
        *attempted = possible;
    return possible ? m_cipher.open(payload) : std::nullopt;
}

bool AudioEngine::init(int, int, int, int, int)
{
    if (!m_opusLoaded) {
        m_opusLoaded = OpusLibrary::instance().load();
        if (!m_opusLoaded)
            emit error(QStringLiteral("Failed to load Opus DLL"));
    }
    if (!m_opusLoaded)
        return false;

    m_captureRate = kDefaultRate;
    m_decodeRate = kDefaultRate;
    m_channels = 1;
    m_bitrate = kDefaultBitrate;
    m_complexity = kDefaultComplexity;
    m_frameSize = kDefaultFrameSize;
    m_carry.clear();
    int failure = m_codec.createEncoder({OpusApplication::Voip, m_captureRate, m_channels, m_bitrate, m_complexity});
    if (failure != 0) {
        qDebug().noquote() << "[Audio] Encoder error:" << OpusCodec::errorText(failure);
        return false;
    }
    failure = m_codec.createDecoder(m_decodeRate, m_channels);
    if (failure != 0) {
        qDebug().noquote() << "[Audio] Decoder error:" << OpusCodec::errorText(failure);
        m_codec.destroyEncoder();
        return false;
    }
    qDebug() << "[Audio] Initialized:" << m_captureRate << "Hz," << m_bitrate << "bps";
    return true;
}

QByteArray AudioEngine::encryptAudio(const QByteArray &raw)
{
    static EventCounter calls;
    const qint64 number = calls.next();
    if (!canEncipher()) {
        if (isFirstFive(number))
            qDebug() << "[TX] encryptAudio - encryption disabled, sending raw";
        return raw;
    }
    QByteArray payload = m_cipher.seal(raw);
    if (!payload.isEmpty() && isFirstFive(number)) {
        qDebug() << "[TX] encryptAudio #" << number << "raw size:" << raw.size() << "encrypted size:" << payload.size()
                 << "key size:" << RoomCipher::kKeySize;
    }
    return payload;
}

void AudioEngine::setEncryptionKey(const QString &roomKey)
{
    m_encryptionEnabled = m_cipher.setKey(QByteArray::fromBase64(roomKey.toUtf8()));
    if (!m_encryptionEnabled)
        return;
    if (!m_sodiumLoaded) {
        m_sodiumLoaded = SodiumLibrary::instance().load();
        if (!m_sodiumLoaded)
            qDebug() << "[Audio] Sodium not available - encryption disabled";
    }
    qDebug() << "[Audio] Encryption key updated (playback continues)";
}

void AudioEngine::setMicGain(int percent)
{
    m_micGain = percent;
}

void AudioEngine::setSpeakerGain(int percent)
{
    m_speakerGain = percent;
}

void AudioEngine::setMicMuted(bool muted)
{
    m_micMuted = muted;
    if (muted)
        m_inputLevel = 0;
    qDebug() << "[Audio] Mic muted:" << muted;
}

void AudioEngine::setSpeakerMuted(bool muted)
{
    m_speakerMuted = muted;
    qDebug() << "[Audio] Speaker muted:" << muted;
}

void AudioEngine::setInputDevice(const QString &name)
{
    m_isInputNamed = m_isInputNamed && name == m_inputDeviceName;
    m_inputDeviceName = name;
    qDebug().noquote() << "[Audio] Input device set to:" << name;
}

void AudioEngine::setOutputDevice(const QString &name)
{
    m_isOutputNamed = m_isOutputNamed && name == m_outputDeviceName;
    m_outputDeviceName = name;
    qDebug().noquote() << "[Audio] Output device set to:" << name;
}

void AudioEngine::applyQuality(int sampleRate, int bitrate, int complexity, int frameDurationMs)
{
    const bool wasCapturing = m_capturing;
    const bool wantedCapture = m_wantsCapture;
    stopCapture();

    m_bitrate = bitrate;
    m_complexity = complexity;
    m_captureRate = sampleRate > 0 ? sampleRate : kDefaultRate;
    m_decodeRate = m_captureRate;
    m_frameSize = boundedFrameSize(m_captureRate, frameDurationMs > 0 ? frameDurationMs : kDefaultFrameDuration);
    m_codec.destroyEncoder();
    m_codec.destroyDecoder();
    if (m_opusLoaded) {
        // General audio from here on, though a session begins with voice: the two stay different.
        m_codec.createEncoder({OpusApplication::Audio, m_captureRate, m_channels, m_bitrate, m_complexity});
        m_codec.createDecoder(m_decodeRate, m_channels);
    }

    // A device that does not come back at the new rate is waited for like any lost one.
    m_wantsCapture = wasCapturing || wantedCapture;
    if (wasCapturing && openCapture(Choice::Same))
        beginCapture();
    else if (wasCapturing)
        beginPolling();
    qDebug() << "[Audio] Quality applied, frameSize:" << m_frameSize;
}

void AudioEngine::watchDevices()
{
    m_inputDelivered = true;
    if (!m_deviceWatch->isActive())
        m_deviceWatch->start();
}

void AudioEngine::checkDevices()
{
    if (!m_wantsCapture && !m_wantsPlayback) {
        m_deviceWatch->stop();
        return;
    }
    if (m_wantsCapture && !m_capturing && openCapture(Choice::Any))
        beginCapture();
    if (m_wantsPlayback && !m_playing && openPlayback(Choice::Any, false))
        beginPlayback();
    // A card may vanish without ending its stream: then nothing comes in, or nothing is taken any more.
    if (m_capturing && (!m_input || !m_input->device() || !m_inputDelivered))
        recoverCapture();
    if (m_playing && (!m_output || !m_output->device() || m_writeFailures >= kRefusalsOfDeadOutput))
        recoverPlayback();
    m_inputDelivered = m_micMuted;
}
