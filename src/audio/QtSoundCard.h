#pragma once

#include "audio/SoundCard.h"

/// The system's sound cards, through Qt Multimedia. A device that cannot do the wanted format is opened with its
/// nearest one, and its bytes are passed on as if they had the wanted one.
class QtSoundCard final : public SoundCard
{
public:
    [[nodiscard]] std::unique_ptr<SoundStream> openInput(const Request &request) override;
    [[nodiscard]] std::unique_ptr<SoundStream> openOutput(const Request &request) override;
};
