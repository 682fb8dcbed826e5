#pragma once

#include <QObject>

namespace client {

class FolderWatcher;
class GameServerScan;
class GameWindows;
class LobbyConnection;
class OnlineTimer;
class Options;
class SessionState;

// In-game detection on each tick of `Timer1` (every 10 s while logged in). The first tick that
// finds the game on a server announces "game started" (the lobby hides), tells the lobby
// "playing" with the server, and watches the game's folder for result logs; the first tick
// without it tells "lobby", announces "game ended" and stops the watch. A hosted game's room
// follows: "In game" while it runs, "In chat" once it has ended.
class InGameDetection : public QObject
{
    Q_OBJECT

public:
    // Connects to `timer1` at once: built before the keep-alive, a tick's messages go out
    // before its "PI".
    InGameDetection(OnlineTimer &timer1, SessionState &session, LobbyConnection &connection,
                    GameServerScan &scan, const GameWindows &windows, FolderWatcher &watcher,
                    const Options &options, QObject *parent = nullptr);

    void tick();

Q_SIGNALS:
    void gameStarted();
    void gameEnded();

private:
    void watchGameFolder();

    SessionState &m_session;
    LobbyConnection &m_connection;
    GameServerScan &m_scan;
    const GameWindows &m_windows;
    FolderWatcher &m_watcher;
    const Options &m_options;
};

} // namespace client
