#pragma once

#include <QByteArray>
#include <QString>

/// Mono sound with its rate.
struct Sound
{
    QByteArray pcm; ///< 16-bit little-endian samples
    int rate = 0;   ///< Hz

    [[nodiscard]] bool isNull() const { return rate == 0; }
    [[nodiscard]] double seconds() const { return rate > 0 ? pcm.size() / 2.0 / rate : 0; }
};

namespace WavFile {

/// A null sound, with the reason in `error`, when the file is no 16-bit PCM WAV of up to ten minutes. Channels are
/// mixed.
[[nodiscard]] Sound read(const QString &path, QString *error = nullptr);
[[nodiscard]] Sound parse(const QByteArray &bytes, QString *error = nullptr);
[[nodiscard]] bool write(const QString &path, const Sound &sound);

} // namespace WavFile

/// What espeak-ng says; a null sound when it is not installed.
[[nodiscard]] Sound speech(const QString &text);
