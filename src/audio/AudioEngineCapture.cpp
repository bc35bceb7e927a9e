// The capture half of AudioEngine: sound card -> frame -> packet -> payload.

#include "audio/AudioDiagnostics.h"
#include "audio/AudioEngine.h"
#include "audio/Pcm.h"

#include <QDebug>
#include <QIODevice>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

namespace {

constexpr auto kCaptureInterval = 10ms; // half a frame, so that a backlog drains

} // namespace

bool AudioEngine::openCapture(Choice choice)
{
    m_input.reset();
    m_carry.clear();
    SoundCard::Request request{m_inputDeviceName, m_captureRate, m_channels};
    request.onlyNamed = choice == Choice::Same && m_isInputNamed;
    m_input = m_soundCard->openInput(request);
    if (m_input)
        m_isInputNamed = m_input->isOfNamedDevice();
    return m_input != nullptr;
}

bool AudioEngine::startCapture()
{
    if (!m_opusLoaded)
        return false;
    if (m_capturing)
        return true;
    m_wantsCapture = true;
    if (!openCapture(Choice::Any)) {
        watchDevices();
        return false;
    }
    beginCapture();
    return true;
}

void AudioEngine::beginCapture()
{
    m_captureLost = false;
    beginPolling();
    qDebug() << "[Audio] Capture started with timer polling";
}

void AudioEngine::beginPolling()
{
    m_capturing = true;
    m_captureTimer = new QTimer(this);
    m_captureTimer->setTimerType(Qt::PreciseTimer);
    connect(m_captureTimer, &QTimer::timeout, this, &AudioEngine::onCaptureTimer);
    m_captureTimer->start(kCaptureInterval);
    watchDevices();
}

void AudioEngine::stopCapture()
{
    m_wantsCapture = false;
    if (!m_capturing)
        return;
    qDebug() << "[Audio] Capture stopped";
    m_capturing = false;
    m_captureTimer->stop();
    m_captureTimer->deleteLater(); // it may be the one that is running this
    m_captureTimer = nullptr;
    m_input.reset();
    m_carry.clear();
    m_inputLevel = 0;
}

void AudioEngine::recoverCapture()
{
    if (!m_captureLost)
        qDebug() << "[Audio] Capture device lost, reopening it";
    m_captureLost = true;
    (void)openCapture(Choice::Same); // a failure is tried again at the next look
}

void AudioEngine::onCaptureTimer()
{
    if (!m_capturing || !m_input)
        return;
    if (m_micMuted) {
        m_inputDelivered = true; // not read on purpose
        return;
    }
    QByteArray frame;
    if (!readFrame(frame))
        return;

    Pcm::applyGain(frame, m_micGain);
    m_inputLevel = Pcm::level(frame);
    ageOutputLevel();
    emit audioLevelChanged(m_inputLevel, m_outputLevel);

    QByteArray packet = encodeFrame(frame);
    if (packet.isEmpty())
        return;
    if (m_encryptionEnabled) {
        packet = encryptAudio(packet);
        if (packet.isEmpty())
            return;
    }
    emit audioEncoded(packet);
}

// What the device says to have ready can be wrong both ways, so it is asked for the rest of the frame each time, and
// a short answer is kept: nothing that it has delivered is ever lost.
bool AudioEngine::readFrame(QByteArray &frame)
{
    QIODevice *device = m_input->device();
    if (!device)
        return false;
    const int frameBytes = m_frameSize * Pcm::kBytesPerSample;
    const int carried = m_carry.size();
    m_carry.resize(frameBytes);
    const qint64 read = qMax(device->read(m_carry.data() + carried, frameBytes - carried), qint64(0));
    m_carry.truncate(carried + static_cast<int>(read));
    if (read > 0) {
        m_inputDelivered = true;
        m_captureLost = false;
    }
    if (m_carry.size() < frameBytes)
        return false;
    frame.swap(m_carry);
    m_carry.clear();
    return true;
}

QByteArray AudioEngine::encodeFrame(const QByteArray &frame)
{
    static AudioDiagnostics::EventCounter encodes;
    if (!m_codec.hasEncoder())
        return {};
    QByteArray packet;
    const int size = m_codec.encode(frame, packet);
    const qint64 number = encodes.next();
    if (AudioDiagnostics::isFirstFive(number)) {
        qDebug() << "[Opus] Encode #" << number << "PCM size:" << frame.size() << "frame size:" << m_frameSize
                 << "encoded size:" << size << "sample rate:" << m_captureRate << "bitrate:" << m_bitrate
                 << "complexity:" << m_complexity;
    }
    return packet;
}
