#pragma once

#include <QObject>

class QTimer;

namespace client {

class Dialogs;
class EventSounds;
class KeyState;
class LobbyConnection;
class Options;
class SessionState;

// The reset of the player's recorded statistics ("RS"), from the lobby or from inside a game.
// The main window's reset button (`picResetStats`) asks first. The hot key is polled on each
// tick of its own timer `tmrStatsReset`, which runs every 500 ms exactly while the reset
// option is on: while a game runs and the key is down, the reset sound plays, whatever the
// sound option says, so that the player hears it in the game, and "RS" goes out. A key held down
// resets once per tick. "RS" is sent only while connected, and never kept for later.
class StatsReset : public QObject
{
    Q_OBJECT

public:
    static constexpr int kPollInterval = 500; // ms

    StatsReset(LobbyConnection &connection, const SessionState &session, const Options &options,
               KeyState &keys, EventSounds &sounds, Dialogs &dialogs, QObject *parent = nullptr);

    // `picResetStats`: "Are you sure?", and "RS" on Yes.
    void picResetStatsClicked();
    // A tick of `tmrStatsReset`. Does nothing without a game, without a hot key (none
    // captured, or a tag that is not a number) or when no key state can be read.
    void pollHotKey();

Q_SIGNALS:
    // Told once, the first time the hot key is polled on a display whose keys cannot be read.
    void statusLine(const QString &text);

private:
    LobbyConnection &m_connection;
    const SessionState &m_session;
    const Options &m_options;
    KeyState &m_keys;
    EventSounds &m_sounds;
    Dialogs &m_dialogs;
    QTimer *m_tmrStatsReset;
    bool m_unavailableTold = false;
};

} // namespace client
