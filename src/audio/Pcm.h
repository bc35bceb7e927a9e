#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Arithmetic on 16-bit mono samples, held as bytes in the order that the codec and the sound card use. An odd last
/// byte is no sample and is left alone.
namespace Pcm {

constexpr int kBytesPerSample = 2;

[[nodiscard]] constexpr int sampleCount(int bytes)
{
    return bytes / kBytesPerSample;
}
[[nodiscard]] inline qint16 *samples(QByteArray &pcm)
{
    return reinterpret_cast<qint16 *>(pcm.data());
}
[[nodiscard]] inline const qint16 *samples(const QByteArray &pcm)
{
    return reinterpret_cast<const qint16 *>(pcm.constData());
}

/// Scales every sample, truncating toward zero and clamping to 16 bits. Gain in percent, 100 = unity.
void applyGain(QByteArray &pcm, int percent);

/// The meter reading of a block, 0..100: -65 dBFS reads 0, a full-scale square wave 59, no samples 0.
[[nodiscard]] int level(const qint16 *samples, int count);
[[nodiscard]] inline int level(const QByteArray &pcm)
{
    return level(samples(pcm), sampleCount(pcm.size()));
}

/// The block at another sample rate, by linear interpolation; unchanged when the rates are equal or not positive.
/// Rates in Hz.
[[nodiscard]] QByteArray convertRate(const QByteArray &pcm, int fromRate, int toRate);

} // namespace Pcm
