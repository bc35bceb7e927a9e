#pragma once

#include <QString>
#include <QVector>

/// What "AUDIO_QUALITY" tells the clients for a preset.
struct AudioPreset
{
    QString name;
    int bitrate = 0;       ///< bit/s
    int sampleRate = 0;    ///< Hz
    int frameDuration = 0; ///< ms
    int complexity = 0;    ///< 0..10
};

namespace AudioPresets {

[[nodiscard]] const QVector<AudioPreset> &all();
[[nodiscard]] bool contains(const QString &name);
/// The preset of that name, "standard" for any other.
[[nodiscard]] const AudioPreset &find(const QString &name);

} // namespace AudioPresets
