#include "client/game/launchsites.h"

#include "client/game/gamelauncher.h"
#include "client/game/gamewindows.h"
#include "client/lobby/lobbyconnection.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"
#include "protocol/rooms.h"

namespace client {

LaunchSites::LaunchSites(GameLauncher &launcher, const GameWindows &windows, SessionState &session,
                         LobbyConnection &connection, const RoomListModel &rooms, QObject *parent)
    : QObject(parent), m_launcher(launcher), m_windows(windows), m_session(session),
      m_connection(connection), m_rooms(rooms)
{
    connect(&launcher, &GameLauncher::gameServerRunning, this, &LaunchSites::hostedGameRunning);
}

void LaunchSites::hostedGameRunning()
{
    // Only a room this user hosts and that is not in game yet (the in-game tick may have been
    // first).
    if (m_session.serverStatus != protocol::roomStatusText(protocol::RoomStatus::InChat))
        return;
    m_session.serverStatus = protocol::roomStatusText(protocol::RoomStatus::InGame);
    m_connection.send(protocol::RoomStatusToServer{protocol::RoomStatus::InGame});
}

void LaunchSites::autoJoinGame(const QString &address)
{
    if (!m_windows.rogueSpear())
        m_launcher.launchGameClient(address);
}

void LaunchSites::joinListedGame(int row)
{
    if (m_session.isOnline() && row >= 0 && row < m_rooms.rowCount() &&
        m_rooms.icon(row) == RoomListModel::RunningGame)
        m_launcher.launchGameClient(m_rooms.tag(row));
}

} // namespace client
