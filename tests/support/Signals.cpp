#include "support/Signals.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numeric>
#include <random>

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kSampleSize = 2;     // bytes
constexpr int kSegmentSteps = 200; // one second
constexpr int kMaxSlip = 40;       // steps: 200 ms
constexpr int kWindowSteps = 5;    // longer than a period of a voice: its words count, not its pitch

int sampleCount(const QByteArray &pcm)
{
    return pcm.size() / kSampleSize;
}

double sampleAt(const QByteArray &pcm, int index)
{
    qint16 sample = 0;
    std::memcpy(&sample, pcm.constData() + index * kSampleSize, kSampleSize);
    return sample;
}

void putSample(QByteArray &pcm, int index, int value)
{
    const auto sample = static_cast<qint16>(std::clamp(value, -32768, 32767));
    std::memcpy(pcm.data() + index * kSampleSize, &sample, kSampleSize);
}

double rmsOf(const QByteArray &pcm, int begin, int end)
{
    if (end <= begin)
        return 0;
    double squares = 0;
    for (int i = begin; i < end; ++i)
        squares += sampleAt(pcm, i) * sampleAt(pcm, i);
    return std::sqrt(squares / (end - begin));
}

double mean(const QVector<double> &values)
{
    return std::accumulate(values.cbegin(), values.cend(), 0.0) / values.size();
}

/// Pearson's correlation of `said` with the window of `heard` that begins at `lag`. `centred` is said less its mean.
double correlationAt(const QVector<double> &centred, double norm, const QVector<double> &heard, int lag)
{
    const int begin = std::max(0, -lag);
    const int end = std::min(centred.size(), heard.size() - lag);
    double product = 0;
    double sum = 0;
    double squares = 0;
    for (int i = begin; i < end; ++i) {
        const double value = heard.at(i + lag);
        product += centred.at(i) * value;
        sum += value;
        squares += value * value;
    }
    const double variance = squares - sum * sum / centred.size();
    return variance > 1e-9 ? product / (norm * std::sqrt(variance)) : 0;
}

QVector<double> centredOf(const QVector<double> &values)
{
    const double average = mean(values);
    QVector<double> centred(values.size());
    std::transform(values.cbegin(), values.cend(), centred.begin(),
                   [average](double value) { return value - average; });
    return centred;
}

double normOf(const QVector<double> &centred)
{
    return std::sqrt(std::inner_product(centred.cbegin(), centred.cend(), centred.cbegin(), 0.0));
}

Signals::Match bestMatch(const QVector<double> &said, const QVector<double> &heard, int firstLag, int lastLag)
{
    if (said.isEmpty() || heard.isEmpty())
        return {};
    const QVector<double> centred = centredOf(said);
    const double norm = normOf(centred);
    if (norm < 1e-9)
        return {};
    Signals::Match best;
    for (int lag = firstLag; lag <= lastLag; ++lag) {
        const double similarity = correlationAt(centred, norm, heard, lag);
        if (similarity > best.similarity)
            best = {similarity, lag};
    }
    return best;
}

} // namespace

QByteArray Signals::sine(double frequency, int rate, int count, int amplitude)
{
    QByteArray pcm(count * kSampleSize, '\0');
    for (int i = 0; i < count; ++i)
        putSample(pcm, i, static_cast<int>(std::lround(amplitude * std::sin(2 * kPi * frequency * i / rate))));
    return pcm;
}

QByteArray Signals::silence(int count)
{
    return QByteArray(count * kSampleSize, '\0');
}

QByteArray Signals::noise(int count, int amplitude)
{
    QByteArray pcm(count * kSampleSize, Qt::Uninitialized);
    std::mt19937 random(1);
    for (int i = 0; i < count; ++i)
        putSample(pcm, i, static_cast<int>(random() % static_cast<unsigned>(2 * amplitude + 1)) - amplitude);
    return pcm;
}

QByteArray Signals::mixed(const QByteArray &background, const QByteArray &sound, int offset)
{
    QByteArray sum = background;
    const int end = std::min(sampleCount(background), offset + sampleCount(sound));
    for (int i = offset; i < end; ++i)
        putSample(sum, i, static_cast<int>(sampleAt(background, i) + sampleAt(sound, i - offset)));
    return sum;
}

double Signals::rms(const QByteArray &pcm)
{
    return rmsOf(pcm, 0, sampleCount(pcm));
}

/// Goertzel's recurrence.
double Signals::toneAmplitude(const QByteArray &pcm, int rate, double frequency)
{
    const int count = sampleCount(pcm);
    if (count == 0)
        return 0;
    const double coefficient = 2 * std::cos(2 * kPi * frequency / rate);
    double last = 0;
    double beforeLast = 0;
    for (int i = 0; i < count; ++i) {
        const double now = sampleAt(pcm, i) + coefficient * last - beforeLast;
        beforeLast = last;
        last = now;
    }
    const double power = last * last + beforeLast * beforeLast - coefficient * last * beforeLast;
    return 2 * std::sqrt(std::max(0.0, power)) / count;
}

Signals::Match Signals::correlate(const QVector<double> &said, const QVector<double> &heard)
{
    return bestMatch(said, heard, -(said.size() / 2), heard.size() - said.size() / 2);
}

QVector<double> Signals::envelope(const QByteArray &pcm, int rate)
{
    const int count = sampleCount(pcm);
    const auto steps = static_cast<int>(qint64{count} * 1000 / (qint64{rate} * kEnvelopeStep.count()));
    const auto sampleOf = [rate](int step) {
        return static_cast<int>(qint64{step} * rate * kEnvelopeStep.count() / 1000);
    };
    QVector<double> levels(steps);
    for (int step = 0; step < steps; ++step)
        levels[step] = rmsOf(pcm, sampleOf(step), std::min(count, sampleOf(step + kWindowSteps)));
    return levels;
}

/// Second by second, since a sound card that ran dry for a moment shifts all that follows.
Signals::Likeness Signals::compare(const QByteArray &said, int saidRate, const QByteArray &heard, int heardRate)
{
    const QVector<double> saidLevels = envelope(said, saidRate);
    const QVector<double> heardLevels = envelope(heard, heardRate);
    const Match whole = correlate(saidLevels, heardLevels);
    const int segments = std::max(1, saidLevels.size() / kSegmentSteps);
    double similarity = 0;
    double weights = 0;
    for (int i = 0; i < segments; ++i) {
        const int begin = saidLevels.size() * i / segments;
        const int end = saidLevels.size() * (i + 1) / segments;
        const QVector<double> segment = saidLevels.mid(begin, end - begin);
        const int expected = whole.lag + begin;
        const double weight = segment.isEmpty() ? 0 : normOf(centredOf(segment));
        similarity += weight * bestMatch(segment, heardLevels, expected - kMaxSlip, expected + kMaxSlip).similarity;
        weights += weight;
    }
    return {weights > 0 ? similarity / weights : 0, whole.lag * kEnvelopeStep};
}
