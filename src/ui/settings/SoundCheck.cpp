#include "ui/settings/SoundCheck.h"

#include "audio/Pcm.h"

#include <QAudioDeviceInfo>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr int kSampleRate = 48000; // Hz
constexpr int kSampleSize = 16;    // bits
constexpr int kFullScale = 32768;
constexpr int kQuietLevel = 10; // the loudest that still counts as silence

constexpr double kToneFrequency = 440; // Hz
constexpr double kToneAmplitude = 16000;
constexpr int kToneLength = 500;     // ms
constexpr int kHighestRate = 768000; // Hz, of any sound card
constexpr int kMostChannels = 64;

} // namespace

QAudioFormat SoundCheck::format()
{
    QAudioFormat format;
    format.setSampleRate(kSampleRate);
    format.setChannelCount(1);
    format.setSampleSize(kSampleSize);
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleType(QAudioFormat::SignedInt);
    return format;
}

bool SoundCheck::isPresent(QAudio::Mode mode, const QAudioDeviceInfo &device)
{
    if (device.isNull())
        return false;
    const QList<QAudioDeviceInfo> devices = QAudioDeviceInfo::availableDevices(mode);
    return std::any_of(devices.cbegin(), devices.cend(), [&device](const QAudioDeviceInfo &present) {
        return present.deviceName() == device.deviceName();
    });
}

int SoundCheck::level(const QByteArray &pcm)
{
    const qint16 *samples = Pcm::samples(pcm);
    int loudest = 0;
    for (int i = 0; i < Pcm::sampleCount(pcm.size()); ++i)
        loudest = std::max(loudest, std::abs(int{samples[i]}));
    return loudest * 100 / kFullScale;
}

bool SoundCheck::isHeard(int level)
{
    return level > kQuietLevel;
}

QByteArray SoundCheck::tone(int sampleRate, int channels)
{
    if (sampleRate <= 0 || sampleRate > kHighestRate || channels <= 0 || channels > kMostChannels)
        return {};
    const int count = sampleRate * kToneLength / 1000;
    QByteArray pcm(count * channels * Pcm::kBytesPerSample, Qt::Uninitialized);
    qint16 *sample = Pcm::samples(pcm);
    for (int i = 0; i < count; ++i) {
        const double value = kToneAmplitude * std::sin(2 * M_PI * kToneFrequency * i / sampleRate);
        sample = std::fill_n(sample, channels, static_cast<qint16>(value));
    }
    return pcm;
}
