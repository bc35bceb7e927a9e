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

// As wide a product as the gain needs: ordinary gains fit 32 bits, which the compiler can vectorise.
template<typename Product> void scale(qint16 *samples, int count, int percent)
{
    constexpr Product kLowest = std::numeric_limits<qint16>::min();
    constexpr Product kHighest = std::numeric_limits<qint16>::max();
    for (int i = 0; i < count; ++i) {
        const Product scaled = static_cast<Product>(samples[i]) * static_cast<Product>(percent) / kUnityGain;
        samples[i] = static_cast<qint16>(qBound(kLowest, scaled, kHighest));
    }
}

} // namespace

void Pcm::applyGain(QByteArray &pcm, int percent)
{
    constexpr int kWidestFor32Bits = std::numeric_limits<qint16>::max();
    if (percent == kUnityGain)
        return;
    const int count = sampleCount(pcm.size());
    if (percent >= -kWidestFor32Bits && percent <= kWidestFor32Bits)
        scale<qint32>(samples(pcm), count, percent);
    else
        scale<qint64>(samples(pcm), count, percent);
}

int Pcm::level(const qint16 *samples, int count)
{
    if (count < 1)
        return 0;
    qint64 sum = 0;
    for (int i = 0; i < count; ++i)
        sum += qint32(samples[i]) * qint32(samples[i]);
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
    for (int i = 0; i < outCount; ++i, position += step) {
        const int index = static_cast<int>(position >> kFractionBits);
        const int fraction = static_cast<int>(position & (kOne - 1));
        // The weights add up to one, so the sum of the products stays within 32 bits.
        out[i] =
            index + 1 < inCount
                ? static_cast<qint16>((in[index + 1] * fraction + in[index] * (int(kOne) - fraction)) >> kFractionBits)
                : in[qMin(index, inCount - 1)];
    }
    return converted;
}
