#pragma once

#include <QObject>
#include <functional>

namespace client {

class SoundPlayer;

// The five event sounds, taken from the Rogue Spear folder. They play only while "Play
// sounds" is ticked, except the statistics-reset sound, which plays regardless. A missing
// file, or no game folder, is silence.
class EventSounds : public QObject
{
    Q_OBJECT

public:
    enum class Event { Connecting, ConnectionDropped, LoggedOut, PrivateMessage, StatsReset };

    // `soundsOn` reads "Play sounds"; `gameFolder` reads the Rogue Spear folder.
    EventSounds(SoundPlayer &player, std::function<bool()> soundsOn,
                std::function<QString()> gameFolder, QObject *parent = nullptr);

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
    std::function<bool()> m_soundsOn;
    std::function<QString()> m_gameFolder;
};

} // namespace client
