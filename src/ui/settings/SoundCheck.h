#pragma once

#include <QAudio>
#include <QAudioFormat>
#include <QByteArray>

class QAudioDeviceInfo;

/// What the sound device tests have in common, and their arithmetic.
namespace SoundCheck {

/// What both tests ask a device for: 48000 Hz, mono, 16 bit.
[[nodiscard]] QAudioFormat format();
/// Whether the system still lists the device. Qt waits for ever for the start of one that has gone.
[[nodiscard]] bool isPresent(QAudio::Mode mode, const QAudioDeviceInfo &device);

/// The loudest sample of 16-bit PCM in percent of full scale, 0..100, rounded down; 0 without a whole sample. Not the
/// reading of the level meters, which is logarithmic.
[[nodiscard]] int level(const QByteArray &pcm);
/// Whether a level is that of a device that hears something.
[[nodiscard]] bool isHeard(int level);

/// Half a second of 440 Hz at half of full scale, 16 bit, the same on every channel. @p sampleRate in Hz; empty when it
/// or @p channels is not positive.
[[nodiscard]] QByteArray tone(int sampleRate, int channels);

} // namespace SoundCheck
