#pragma once

#include <QObject>
#include <QString>

namespace client {

// Plays a sound file asynchronously; a missing or unreadable file plays nothing (no default
// sound) and reports nothing.
class SoundPlayer : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    virtual void play(const QString &filePath) = 0;
};

} // namespace client
