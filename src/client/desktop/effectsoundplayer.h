#pragma once

#include "client/platform/soundplayer.h"

namespace client {

// Through QSoundEffect; each sound plays to its end, several may overlap.
class EffectSoundPlayer final : public SoundPlayer
{
    Q_OBJECT

public:
    using SoundPlayer::SoundPlayer;
    void play(const QString &filePath) override;
};

} // namespace client
