#pragma once

#include <QByteArray>

/// Test signals: 16-bit mono tones, and what is left of them at the other end.
namespace Tone {

/// `count` samples of a sine, the first one at sample number `begin` of it.
[[nodiscard]] QByteArray sine(double frequency, int rate, int count, int amplitude = 12000, int begin = 0);
/// White noise, always the same.
[[nodiscard]] QByteArray noise(int count, int amplitude = 8000);
/// The frequency in Hz of the block's fundamental, from its zero crossings; 0 of silence.
[[nodiscard]] double frequency(const QByteArray &pcm, int rate);
/// The part between the first and the last sample louder than `threshold`.
[[nodiscard]] QByteArray soundingPart(const QByteArray &pcm, int threshold);
/// Root mean square of the samples.
[[nodiscard]] double rms(const QByteArray &pcm);

} // namespace Tone
