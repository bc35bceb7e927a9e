#include "ui/settings/OutputTest.h"

#include "ui/settings/SoundCheck.h"

#include <QAudioDeviceInfo>
#include <QAudioOutput>
#include <QIODevice>

#include <algorithm>
#include <chrono>

namespace {

constexpr std::chrono::milliseconds kFeedInterval{10};
constexpr std::chrono::milliseconds kPlayTime{700}; // the tone and what the device holds back of it

} // namespace

OutputTest::OutputTest(QObject *parent)
    : QObject(parent)
{
    m_feed.setTimerType(Qt::PreciseTimer);
    m_feed.setInterval(kFeedInterval);
    connect(&m_feed, &QTimer::timeout, this, &OutputTest::writeRest);
    m_end.setTimerType(Qt::PreciseTimer);
    m_end.setSingleShot(true);
    m_end.setInterval(kPlayTime);
    connect(&m_end, &QTimer::timeout, this, &OutputTest::onEnd);
}

OutputTest::~OutputTest() = default;

bool OutputTest::start()
{
    stop();
    const QAudioDeviceInfo device = QAudioDeviceInfo::defaultOutputDevice();
    if (!SoundCheck::isPresent(QAudio::AudioOutput, device))
        return false;
    QAudioFormat format = SoundCheck::format();
    if (!device.isFormatSupported(format))
        format = device.nearestFormat(format);
    m_output.reset(new QAudioOutput(device, format));
    m_device = m_output->start();
    if (!m_device || m_output->state() == QAudio::StoppedState) {
        stop();
        return false;
    }
    m_rest = SoundCheck::tone(format.sampleRate(), format.channelCount());
    m_end.start();
    m_feed.start();
    writeRest();
    return true;
}

void OutputTest::stop()
{
    m_feed.stop();
    m_end.stop();
    m_output.reset();
    m_rest.clear();
}

// A device takes no more than it has room for.
void OutputTest::writeRest()
{
    if (!m_device || m_output->state() == QAudio::StoppedState)
        return;
    const int room = std::min(m_output->bytesFree(), m_rest.size());
    if (room > 0)
        m_rest.remove(0, static_cast<int>(std::max<qint64>(0, m_device->write(m_rest.constData(), room))));
}

void OutputTest::onEnd()
{
    stop();
    emit finished();
}
