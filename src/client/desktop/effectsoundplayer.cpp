#include "client/desktop/effectsoundplayer.h"

#include <QFileInfo>
#include <QSoundEffect>
#include <QUrl>

namespace client {

void EffectSoundPlayer::play(const QString &filePath)
{
    if (!QFileInfo(filePath).isFile())
        return;
    auto *effect = new QSoundEffect(this);
    effect->setSource(QUrl::fromLocalFile(filePath));
    // Once loaded it plays; it deletes itself when done or when the file cannot be decoded.
    connect(effect, &QSoundEffect::statusChanged, effect, [effect] {
        if (effect->status() == QSoundEffect::Ready)
            effect->play();
        else if (effect->status() == QSoundEffect::Error)
            effect->deleteLater();
    });
    connect(effect, &QSoundEffect::playingChanged, effect, [effect] {
        if (!effect->isPlaying() && effect->status() == QSoundEffect::Ready)
            effect->deleteLater();
    });
    if (effect->status() == QSoundEffect::Ready)
        effect->play();
}

} // namespace client
