#include "audio/Tone.h"

#include "audio/Pcm.h"

#include <QtMath>

#include <cmath>
#include <random>

QByteArray Tone::sine(double frequency, int rate, int count, int amplitude, int begin)
{
    QByteArray pcm(count * Pcm::kBytesPerSample, Qt::Uninitialized);
    for (int i = 0; i < count; ++i)
        Pcm::samples(pcm)[i] = static_cast<qint16>(qRound(amplitude * qSin(2 * M_PI * frequency * (begin + i) / rate)));
    return pcm;
}

QByteArray Tone::noise(int count, int amplitude)
{
    std::minstd_rand generator(1);
    QByteArray pcm(count * Pcm::kBytesPerSample, Qt::Uninitialized);
    for (int i = 0; i < count; ++i) {
        const int value = static_cast<int>(generator() % static_cast<unsigned>(2 * amplitude)) - amplitude;
        // Never zero: the recording's own silence can be told from it.
        Pcm::samples(pcm)[i] = static_cast<qint16>(value == 0 ? 1 : value);
    }
    return pcm;
}

double Tone::frequency(const QByteArray &pcm, int rate)
{
    int first = -1;
    int last = -1;
    int rises = 0;
    const qint16 *samples = Pcm::samples(pcm);
    for (int i = 1; i < Pcm::sampleCount(pcm.size()); ++i) {
        if (samples[i - 1] >= 0 || samples[i] < 0)
            continue;
        if (first < 0)
            first = i;
        else
            ++rises;
        last = i;
    }
    return rises > 0 ? static_cast<double>(rises) * rate / (last - first) : 0;
}

QByteArray Tone::soundingPart(const QByteArray &pcm, int threshold)
{
    const qint16 *samples = Pcm::samples(pcm);
    int begin = 0;
    int end = Pcm::sampleCount(pcm.size());
    while (begin < end && std::abs(samples[begin]) <= threshold)
        ++begin;
    while (end > begin && std::abs(samples[end - 1]) <= threshold)
        --end;
    return pcm.mid(begin * Pcm::kBytesPerSample, (end - begin) * Pcm::kBytesPerSample);
}

double Tone::rms(const QByteArray &pcm)
{
    const int count = Pcm::sampleCount(pcm.size());
    double sum = 0;
    for (int i = 0; i < count; ++i)
        sum += std::pow(Pcm::samples(pcm)[i], 2);
    return count > 0 ? std::sqrt(sum / count) : 0;
}
