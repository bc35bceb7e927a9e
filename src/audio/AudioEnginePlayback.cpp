// The playback half of AudioEngine: payload -> packet -> samples -> queue -> sound card.

#include "audio/AudioDiagnostics.h"
#include "audio/AudioEngine.h"
#include "audio/Pcm.h"

#include <QDebug>
#include <QIODevice>
#include <QTimer>

using AudioDiagnostics::EventCounter;
using AudioDiagnostics::isFifth;
using AudioDiagnostics::isFiftieth;
using AudioDiagnostics::isFirstFive;

namespace {

constexpr int kSmallestPacket = 10; // bytes; less is no speech
constexpr int kLevelsPerSecond = 2; // a level is shown for half a second

} // namespace

bool AudioEngine::openPlayback(Choice choice, bool reportChoice)
{
    m_output.reset();
    m_writeFailures = 0;
    SoundCard::Request request{m_outputDeviceName, kOutputRate, m_channels, reportChoice};
    request.onlyNamed = choice == Choice::Same && m_isOutputNamed;
    m_output = m_soundCard->openOutput(request);
    if (m_output)
        m_isOutputNamed = m_output->isOfNamedDevice();
    return m_output != nullptr;
}

bool AudioEngine::startPlayback()
{
    if (m_playing) {
        qDebug() << "[Audio] Playback already active, skipping";
        return true;
    }
    qDebug() << "[Audio] Starting playback (should be called only once)";
    m_wantsPlayback = true;
    if (!openPlayback(Choice::Any, true)) {
        qDebug() << "[Audio] Failed to start playback";
        watchDevices();
        return false;
    }
    beginPlayback();
    return true;
}

void AudioEngine::beginPlayback()
{
    m_playing = true;
    m_playbackLost = false;
    m_outputTimer->start();
    watchDevices();
    qDebug() << "[Audio] Playback started successfully";
}

void AudioEngine::stopPlayback()
{
    m_wantsPlayback = false;
    if (!m_playing)
        return;
    qDebug() << "[Audio] stopPlayback - should only happen on app exit!";
    m_playing = false;
    m_outputTimer->stop();
    m_output.reset();
    m_playback.clear();
}

void AudioEngine::recoverPlayback()
{
    if (!m_playbackLost)
        qDebug() << "[Audio] Playback device lost, reopening it";
    m_playbackLost = true;
    (void)openPlayback(Choice::Same, false); // a failure is tried again at the next look
}

void AudioEngine::onAudioReceived(const QByteArray &data)
{
    if (m_speakerMuted || !m_playing || !hasRoomForPayload())
        return;
    const std::optional<QByteArray> packet = packetOf(data);
    if (!packet || !decodePacket(*packet))
        return;
    QByteArray pcm = Pcm::convertRate(m_decoded, m_decodeRate, kOutputRate);
    meterReceivedPacket(pcm);
    Pcm::applyGain(pcm, m_speakerGain);
    m_playback.append(pcm);
}

bool AudioEngine::hasRoomForPayload()
{
    if (!m_playback.isOverfull())
        return true;
    if (isFiftieth(++m_overflows))
        qDebug() << "[Audio] Buffer overflow - dropping packet, size:" << m_playback.size();
    return false;
}

// A key without the cipher library means that the others of the room send in the clear as well.
std::optional<QByteArray> AudioEngine::packetOf(const QByteArray &payload) const
{
    static EventCounter failures;
    if (!canEncipher())
        return payload;
    // An empty message is not worth opening.
    if (payload.size() > RoomCipher::kOverhead) {
        if (std::optional<QByteArray> packet = m_cipher.open(payload))
            return packet;
    }
    const qint64 number = failures.next();
    if (isFirstFive(number) || isFiftieth(number))
        qDebug() << "[Audio] Decrypt FAILED #" << number << "dataSize:" << payload.size();
    return std::nullopt;
}

bool AudioEngine::decodePacket(const QByteArray &packet)
{
    static EventCounter errors;
    static EventCounter failures;
    const bool inRange = packet.size() >= kSmallestPacket && packet.size() <= OpusCodec::kMaxPacketSize;
    if (inRange && m_codec.hasDecoder()) {
        const int result = m_codec.decode(packet, m_frameSize, m_decoded);
        if (result > 0)
            return true;
        if (result < 0 && isFiftieth(errors.next()))
            qDebug() << "[Opus] Decode error:" << result << "size:" << packet.size();
    }
    const qint64 number = failures.next();
    if (isFirstFive(number) || isFiftieth(number)) {
        qDebug() << "[Audio] Decode FAILED #" << number << "opusSize:" << packet.size() << "frameSize:" << m_frameSize;
    }
    return false;
}

void AudioEngine::meterReceivedPacket(const QByteArray &pcm)
{
    static EventCounter packets;
    if (isFifth(packets.next()))
        setOutputLevel(Pcm::level(pcm));
}

void AudioEngine::setOutputLevel(int level)
{
    m_outputLevel = level;
    m_outputLevelAge = 0;
    emit audioLevelChanged(m_inputLevel, m_outputLevel);
}

/// The levels are told together: without this, capture would keep up the level of an over that has long ended.
void AudioEngine::ageOutputLevel()
{
    m_outputLevelAge += m_frameSize;
    if (m_outputLevelAge * kLevelsPerSecond > m_captureRate)
        m_outputLevel = 0;
}

void AudioEngine::onOutputBufferTimer()
{
    static EventCounter writes;
    if (!m_playing || !m_output || m_speakerMuted)
        return;
    QIODevice *device = m_output->device();
    const int chunk = m_playback.chunkSize(m_frameSize, m_decodeRate);
    if (!device || m_playback.size() < chunk)
        return;

    // A device with less room than a chunk would cut it off, and packets come in bursts: it gets what fits, as some
    // only begin to play when they are nearly full.
    const int offered = qMin(chunk, m_output->bytesFree() / Pcm::kBytesPerSample * Pcm::kBytesPerSample);
    const qint64 written = offered > 0 ? device->write(m_playback.front(), offered) : 0;
    if (written <= 0) {
        ++m_writeFailures; // what was offered stays in front
        return;
    }
    m_writeFailures = 0;
    m_playbackLost = false;
    const bool metered = isFifth(writes.next());
    const int level = metered ? Pcm::level(reinterpret_cast<const qint16 *>(m_playback.front()),
                                           Pcm::sampleCount(static_cast<int>(written)))
                              : 0;
    m_playback.drop(offered); // what the device did not accept of it is lost
    if (metered)
        setOutputLevel(level);
}

void AudioEngine::clearBuffers()
{
    m_playback.clear();
    m_writeFailures = 0;
    m_overflows = 0;
    qDebug() << "[Audio] Buffers cleared (playback continues)";
}

void AudioEngine::resetDecoder()
{
    if (!m_codec.hasDecoder())
        return;
    if (m_codec.createDecoder(m_decodeRate, m_channels) == 0)
        qDebug() << "[Audio] Decoder reset successfully";
}
