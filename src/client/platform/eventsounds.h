#pragma once

#include <QObject>
#include <QString>

namespace client {

class SoundPlayer;

// The event sounds, taken from the Rogue Spear folder. They play only while "Play
// sounds" is ticked, except the statistics-reset sound, which plays regardless. A missing
// file, or no game folder, is silence.
class EventSounds : public QObject
{
    Q_OBJECT

public:
    enum class Event {
        Connecting,
        ConnectionDropped,
        LoggedOut,
        PrivateMessage,
        StatsReset,
        GameHasRoom // a watched full game has a slot free
    };

    // Silent, with no game folder, until the settings are pushed in.
    explicit EventSounds(SoundPlayer &player, QObject *parent = nullptr);

    // "Play sounds".
    void setSoundsOn(bool on) { m_soundsOn = on; }
    // The Rogue Spear folder the sounds are read from.
    void setGameFolder(const QString &folder) { m_gameFolder = folder; }

    // Plays the sound of `event` when sounds are on.
    void play(Event event);
    // Plays it whatever the option says.
    void playAlways(Event event);

    // The file of `event` below the game folder, Windows style.
    static QString relativePath(Event event);
    // The native file the sound of `event` is read from; empty without a game folder.
    QString filePath(Event event) const;

private:
    SoundPlayer &m_player;
    bool m_soundsOn = false;
    QString m_gameFolder;
};

} // namespace client
