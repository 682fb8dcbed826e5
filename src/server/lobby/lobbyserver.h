#pragma once

#include "server/core/serverlog.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/chathandler.h"
#include "server/lobby/lobby.h"
#include "server/lobby/lobbyconfig.h"
#include "server/lobby/loginhandler.h"
#include "server/lobby/loginthrottle.h"
#include "server/lobby/presencebroadcaster.h"
#include "server/lobby/presencehandler.h"
#include "server/lobby/registrationcap.h"
#include "server/lobby/roomhandler.h"
#include "server/lobby/roomregistry.h"
#include "server/net/messagerouter.h"

#include <QHostAddress>
#include <QObject>
#include <QTcpServer>

namespace server {

class AccountStore;
class BuddyStore;
class Clock;
class DiagnosticStore;
class PasswordWorker;
class Session;

// The lobby service on one TCP port: accepts connections, gives each a session, passes
// what they send to the handler of its area, and announces every departure. Everything runs
// on the event loop of the thread it lives on.
//
// The lobby and the rooms are readable for other services of the process (the web pages),
// and router() takes further message handlers (the statistics uploads).
class LobbyServer : public QObject
{
    Q_OBJECT

public:
    LobbyServer(const LobbyConfig &config, AccountStore &accounts, BuddyStore &buddies,
                DiagnosticStore &diagnostics, PasswordWorker &passwords, const Clock &clock,
                QObject *parent = nullptr);
    ~LobbyServer() override;

    bool listen(const QHostAddress &address, quint16 port);
    QString errorString() const { return m_server.errorString(); }
    quint16 serverPort() const { return m_server.serverPort(); }

    const Lobby &lobby() const { return m_lobby; }
    const RoomRegistry &rooms() const { return m_rooms; }
    MessageRouter &router() { return m_router; }
    // Rate limits per account, for handlers added through router() too.
    AccountLimits &limits() { return m_limits; }

private:
    void acceptConnections();
    // Serves a socket accepted on the port; takes ownership of it.
    void accept(QTcpSocket *socket);
    // False (and logged) when the caps on connections per address or overall are reached.
    bool mayConnect(const QString &address);
    void dispatch(Session &session, const protocol::Message &message);
    // Ends a session once: the player leaves his room and the lobby hears "RN".
    void endSession(Session &session);

    LobbyConfig m_config;
    BuddyStore &m_buddies;
    QTcpServer m_server;
    Lobby m_lobby;
    RoomRegistry m_rooms;
    RefusalLog m_refusals;
    LoginThrottle m_throttle;
    RegistrationCap m_registrations;
    AccountLimits m_limits;
    QHash<QString, int> m_connectionsPerAddress;
    int m_connections = 0;
    MessageRouter m_router;
    PresenceBroadcaster m_presenceBroadcaster;
    LoginHandler m_login;
    PresenceHandler m_presence;
    ChatHandler m_chat;
    RoomHandler m_roomHandler;
};

} // namespace server
