#pragma once

#include <QObject>

namespace client {

class GameLauncher;
class GameWindows;
class LobbyConnection;
class RoomListModel;
class SessionState;

// The launches that check something first: a member's automatic join when the host's game
// starts, and a double-click on a running game of the room list (joining from the room window
// or the player menu launches straight away). And what follows the host's Start: the room
// learns "In game" once the game server has come through its first seconds, so a game that
// did not start leaves the room, and its ready members, as they were.
class LaunchSites : public QObject
{
    Q_OBJECT

public:
    LaunchSites(GameLauncher &launcher, const GameWindows &windows, SessionState &session,
                LobbyConnection &connection, const RoomListModel &rooms, QObject *parent = nullptr);

public Q_SLOTS:
    // The host's game started and this member is ready: joins it unless Rogue Spear runs.
    void autoJoinGame(const QString &address);
    // A double-click on a row of `ListView1` while logged in: joins a running game's server.
    void joinListedGame(int row);

private:
    void hostedGameRunning();

    GameLauncher &m_launcher;
    const GameWindows &m_windows;
    SessionState &m_session;
    LobbyConnection &m_connection;
    const RoomListModel &m_rooms;
};

} // namespace client
