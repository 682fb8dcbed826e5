#include "server/lobbyserver.h"

#include "protocol/message.h"
#include "server/connection.h"
#include "server/session.h"

#include <QTcpSocket>

namespace server {

using protocol::Code;

LobbyServer::LobbyServer(const LobbyConfig &config, AccountStore &accounts, BuddyStore &buddies,
                         DiagnosticStore &diagnostics, PasswordWorker &passwords,
                         const Clock &clock, QObject *parent)
    : QObject(parent), m_config(config), m_throttle(clock),
      m_login(m_config, m_lobby, m_rooms, accounts, buddies, passwords, m_throttle,
              [this](Session &session) { endSession(session); }),
      m_presence(m_lobby, accounts, buddies), m_chat(m_lobby, diagnostics, clock),
      m_roomHandler(m_lobby, m_rooms)
{
    m_presence.registerWith(m_router);
    m_chat.registerWith(m_router);
    m_roomHandler.registerWith(m_router);
    // Thousands of clients may connect at once after a restart.
    m_server.setListenBacklogSize(1024);
    m_server.setMaxPendingConnections(1024);
    connect(&m_server, &QTcpServer::pendingConnectionAvailable, this,
            &LobbyServer::acceptConnections);
}

LobbyServer::~LobbyServer()
{
    // Sessions are children; they go before the members their handlers point into.
    const QList<Session *> sessions = findChildren<Session *>(Qt::FindDirectChildrenOnly);
    qDeleteAll(sessions);
}

bool LobbyServer::listen(const QHostAddress &address, quint16 port)
{
    return m_server.listen(address, port);
}

void LobbyServer::acceptConnections()
{
    while (QTcpSocket *socket = m_server.nextPendingConnection()) {
        auto *connection = new Connection(socket);
        auto *session = new Session(connection, this);
        connect(connection, &Connection::messageReceived, session,
                [this, session](const protocol::Message &message) { dispatch(*session, message); });
        connect(connection, &Connection::closed, session, [this, session] {
            endSession(*session);
            session->deleteLater();
        });
        connect(session, &Session::loginDeadlinePassed, session, [this, session] {
            if (!session->isLoggedIn())
                endSession(*session);
        });
        session->startLoginDeadline(m_config.loginTimeoutMs);
    }
}

void LobbyServer::dispatch(Session &session, const protocol::Message &message)
{
    switch (session.stage()) {
    case Session::Stage::New:
    case Session::Stage::Versioned:
        if (message.code == Code::Version)
            m_login.handleVersion(session, message);
        else if (message.code == Code::Login)
            m_login.handleLogin(session, message);
        return;
    case Session::Stage::LoggedIn:
        m_router.route(session, message);
        return;
    case Session::Stage::Ended:
        return;
    }
}

void LobbyServer::endSession(Session &session)
{
    if (session.stage() == Session::Stage::Ended)
        return;
    const bool wasLoggedIn = session.isLoggedIn();
    session.setStage(Session::Stage::Ended);
    session.stopLoginDeadline();
    if (wasLoggedIn) {
        m_lobby.remove(&session);
        m_roomHandler.leaveOnDeparture(session);
        m_lobby.broadcast(protocol::buildMessage(Code::RemovePlayer, {session.player().name}));
    }
    session.connection().closeAfterFlush();
}

} // namespace server
