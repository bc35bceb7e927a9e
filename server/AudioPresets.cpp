#include "server/AudioPresets.h"

#include <algorithm>

namespace AudioPresets {

const QVector<AudioPreset> &all()
{
    static const QVector<AudioPreset> presets{{QStringLiteral("standard"), 32000, 48000, 20, 5},
                                              {QStringLiteral("high"), 64000, 48000, 20, 8},
                                              {QStringLiteral("low"), 16000, 24000, 20, 5},
                                              {QStringLiteral("minimal"), 8000, 12000, 20, 5}};
    return presets;
}

bool contains(const QString &name)
{
    return find(name).name == name;
}

const AudioPreset &find(const QString &name)
{
    const auto found =
        std::find_if(all().cbegin(), all().cend(), [&name](const AudioPreset &preset) { return preset.name == name; });
    return found != all().cend() ? *found : all().first();
}

} // namespace AudioPresets
