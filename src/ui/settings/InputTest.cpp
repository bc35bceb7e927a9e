#include "ui/settings/InputTest.h"

#include "ui/settings/SoundCheck.h"

#include <QAudioDeviceInfo>
#include <QAudioInput>
#include <QIODevice>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds kReadInterval{20};
constexpr int kReads = 50;          // a second of them
constexpr int kMostBytes = 1 << 16; // of one read; more than half a second

} // namespace

InputTest::InputTest(QObject *parent)
    : QObject(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(kReadInterval);
    connect(&m_timer, &QTimer::timeout, this, &InputTest::onTick);
}

InputTest::~InputTest() = default;

bool InputTest::start(const QAudioDeviceInfo &device)
{
    stop();
    if (!SoundCheck::isPresent(QAudio::AudioInput, device))
        return false;
    m_input.reset(new QAudioInput(device, SoundCheck::format()));
    m_device = m_input->start();
    if (!m_device || m_input->state() == QAudio::StoppedState) {
        stop();
        return false;
    }
    m_timer.start();
    return true;
}

void InputTest::stop()
{
    m_timer.stop();
    m_input.reset();
    m_recording.clear();
    m_reads = 0;
}

void InputTest::onTick()
{
    if (m_reads < kReads) {
        ++m_reads;
        if (m_device)
            m_recording += m_device->read(kMostBytes);
        return;
    }
    const int level = SoundCheck::level(m_recording);
    stop();
    emit finished(level);
}
