#include "audio/Pcm.h"

#include <cmath>
#include <limits>

namespace {

constexpr int kUnityGain = 100; // percent
constexpr double kFullScale = 32767.0;
constexpr double kQuietestRms = 1.0;

// The meter's curve: 60 dB of range shifted by 5 dB, spread over 55 steps.
constexpr double kMeterOffset = 5.0;
constexpr double kMeterRange = 60.0;
constexpr double kMeterSteps = 55.0;
constexpr int kHighestLevel = 100;

// Positions between samples are 16.16 fixed point.
constexpr int kFractionBits = 16;
constexpr qint64 kOne = qint64(1) << kFractionBits;

// Products up to 2^24 are exact in a float. A quotient that is no integer is then at least 0.01 away from one, and one
// that fits a sample has steps of 0.002: it truncates as the integer division would, several samples at a time.
constexpr int kWidestFloatGain = 512; // percent

template<typename Number> void scale(qint16 *samples, int count, int percent)
{
    constexpr Number kLowest = std::numeric_limits<qint16>::min();
    constexpr Number kHighest = std::numeric_limits<qint16>::max();
    for (int i = 0; i < count; ++i) {
        Number scaled = static_cast<Number>(samples[i]) * static_cast<Number>(percent) / Number(kUnityGain);
        scaled = scaled < kLowest ? kLowest : scaled;
        scaled = scaled > kHighest ? kHighest : scaled;
        samples[i] = static_cast<qint16>(static_cast<int>(scaled));
    }
}

} // namespace

void Pcm::applyGain(QByteArray &pcm, int percent)
{
    if (percent == kUnityGain)
        return;
    const int count = sampleCount(pcm.size());
    if (percent >= -kWidestFloatGain && percent <= kWidestFloatGain)
        scale<float>(samples(pcm), count, percent);
    else
        scale<qint64>(samples(pcm), count, percent);
}

int Pcm::level(const qint16 *samples, int count)
{
    if (count < 1)
        return 0;
    qint64 sum = 0;
    for (int i = 0; i < count; ++i) {
        const qint32 square = samples[i] * samples[i];
        sum += square;
    }
    const double rms = std::sqrt(static_cast<double>(sum) / count);
    if (rms < kQuietestRms)
        return 0;
    const double decibel = 20.0 * std::log10(rms / kFullScale);
    const double reading = (decibel + kMeterOffset + kMeterRange) / kMeterRange * kMeterSteps;
    return qBound(0, static_cast<int>(reading), kHighestLevel);
}

QByteArray Pcm::convertRate(const QByteArray &pcm, int fromRate, int toRate)
{
    if (fromRate <= 0 || toRate <= 0 || fromRate == toRate)
        return pcm;
    const int inCount = sampleCount(pcm.size());
    const int outCount = static_cast<int>(qint64(inCount) * toRate / fromRate);
    const qint64 step = qint64(fromRate) * kOne / toRate;

    QByteArray converted(outCount * kBytesPerSample, Qt::Uninitialized);
    const qint16 *in = samples(pcm);
    qint16 *out = samples(converted);
    qint64 position = 0;
    int i = 0;
    for (; i < outCount && (position >> kFractionBits) + 1 < inCount; ++i, position += step) {
        const qint16 *here = in + (position >> kFractionBits);
        const int fraction = static_cast<int>(position & (kOne - 1));
        // The weights add up to one, so the sum of the products stays within 32 bits.
        out[i] = static_cast<qint16>((here[1] * fraction + here[0] * (int(kOne) - fraction)) >> kFractionBits);
    }
    // Beyond the last pair there is nothing to interpolate with.
    for (; i < outCount; ++i)
        out[i] = in[inCount - 1];
    return converted;
}
