#pragma once

#include <QObject>

namespace client {

class GameLauncher;
class GameWindows;
class LobbyConnection;
class RoomListModel;
class SessionState;

// The launches that check something first: the host's Start, a member's automatic join when
// the host's game starts, and a double-click on a running game of the room list. (Joining from
// the room window or the player menu launches straight away.)
class LaunchSites : public QObject
{
    Q_OBJECT

public:
    LaunchSites(GameLauncher &launcher, const GameWindows &windows, SessionState &session,
                LobbyConnection &connection, const RoomListModel &rooms, QObject *parent = nullptr);

public Q_SLOTS:
    // `picStartGame`: hosts the game unless it already runs ("In game"); once started, the
    // room learns "In game". A game that could not start leaves the room as it was.
    void startGame();
    // The host's game started and this member is ready: joins it unless Rogue Spear runs.
    void autoJoinGame(const QString &address);
    // A double-click on a row of `ListView1` while logged in: joins a running game's server.
    void joinListedGame(int row);

private:
    GameLauncher &m_launcher;
    const GameWindows &m_windows;
    SessionState &m_session;
    LobbyConnection &m_connection;
    const RoomListModel &m_rooms;
};

} // namespace client
