#include "client/game/ingamedetection.h"

#include "client/game/findgameserver.h"
#include "client/game/gamewindows.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/onlinetimer.h"
#include "client/platform/folderwatcher.h"
#include "client/session/sessionstate.h"
#include "client/settings/options.h"
#include "protocol/presence.h"
#include "protocol/rooms.h"

namespace client {

InGameDetection::InGameDetection(OnlineTimer &timer1, SessionState &session,
                                 LobbyConnection &connection, GameServerScan &scan,
                                 const GameWindows &windows, FolderWatcher &watcher,
                                 const Options &options, QObject *parent)
    : QObject(parent), m_session(session), m_connection(connection), m_scan(scan),
      m_windows(windows), m_watcher(watcher), m_options(options)
{
    connect(&timer1, &OnlineTimer::tick, this, &InGameDetection::tick);
}

void InGameDetection::tick()
{
    using protocol::RoomStatus;
    const QString ip = m_scan.findGameServer();

    if (!ip.isEmpty() && !m_session.inGame) {
        Q_EMIT gameStarted();
        m_session.inGame = true;
        watchGameFolder();
        m_connection.send(protocol::PlayerStatusToServer{protocol::Presence::Playing, ip});
    } else if (ip.isEmpty() && m_session.inGame) {
        m_connection.send(protocol::PlayerStatusToServer{protocol::Presence::Lobby, {}});
        Q_EMIT gameEnded();
        m_session.inGame = false;
        m_watcher.stopNotify();
    }

    const QString inGame = protocol::roomStatusText(RoomStatus::InGame);
    const QString inChat = protocol::roomStatusText(RoomStatus::InChat);
    if (m_session.serverStatus == inGame && !m_session.inGame) {
        m_session.serverStatus = inChat;
        m_connection.send(protocol::RoomStatusToServer{RoomStatus::InChat});
    }
    if (m_session.serverStatus == inChat && m_session.inGame) {
        m_session.serverStatus = inGame;
        m_connection.send(protocol::RoomStatusToServer{RoomStatus::InGame});
    }
}

void InGameDetection::watchGameFolder()
{
    m_watcher.stopNotify();
    if (m_windows.rogueSpear())
        m_watcher.startNotify(m_options.pathRS().trimmed());
    else if (m_windows.blackOps())
        m_watcher.startNotify(m_options.pathBlackOps().trimmed());
}

} // namespace client
