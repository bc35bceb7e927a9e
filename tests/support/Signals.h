#pragma once

#include <QByteArray>
#include <QVector>

#include <chrono>

/// Measures 16-bit mono samples: what was said at one end of the system, and what is left of it at the other.
namespace Signals {

/// `count` samples of a sine; amplitude up to 32767.
[[nodiscard]] QByteArray sine(double frequency, int rate, int count, int amplitude = 12000);
[[nodiscard]] QByteArray silence(int count);
/// `count` samples of white noise between -amplitude and amplitude, always the same.
[[nodiscard]] QByteArray noise(int count, int amplitude);
/// Adds `sound` to the background from that sample on; what goes beyond the background's end or 16 bits is cut.
[[nodiscard]] QByteArray mixed(const QByteArray &background, const QByteArray &sound, int offset);

/// Root mean square of the samples, 0 to 32767.
[[nodiscard]] double rms(const QByteArray &pcm);
/// The amplitude of one frequency in Hz, 0 to 32767.
[[nodiscard]] double toneAmplitude(const QByteArray &pcm, int rate, double frequency);

/// Normalised cross-correlation at its best lag.
struct Match
{
    double similarity = 0; ///< -1 to 1; 0 also when either side is silent
    int lag = 0;           ///< values by which `heard` comes later; negative when it comes earlier
};
/// At least half of `said` has to lie within `heard`; what lies outside of it counts as silence.
[[nodiscard]] Match correlate(const QVector<double> &said, const QVector<double> &heard);

/// Loudness over time: each step, the root mean square of the 25 ms that begin there.
[[nodiscard]] QVector<double> envelope(const QByteArray &pcm, int rate);
constexpr std::chrono::milliseconds kEnvelopeStep{5};

/// How alike two recordings are that may differ in rate, volume, codec and start, and slip by up to 200 ms on the way.
struct Likeness
{
    double similarity = 0; ///< of the loudness over time, -1 to 1
    std::chrono::milliseconds delay{0};
};
[[nodiscard]] Likeness compare(const QByteArray &said, int saidRate, const QByteArray &heard, int heardRate);

} // namespace Signals
