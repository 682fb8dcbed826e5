#include "server/lobby/lobbyserver.h"

#include "protocol/login.h"
#include "protocol/presence.h"
#include "server/core/serverlog.h"
#include "server/net/connection.h"
#include "server/net/session.h"

#include "server/store/buddystore.h"

#include <QTcpSocket>

namespace server {

LobbyServer::LobbyServer(const LobbyConfig &config, AccountStore &accounts, BuddyStore &buddies,
                         DiagnosticStore &diagnostics, PasswordWorker &passwords,
                         const Clock &clock, QObject *parent)
    : QObject(parent), m_config(config), m_buddies(buddies),
      m_refusals(lcLobby, m_config.refusalSummaryMs), m_throttle(clock),
      m_registrations(clock, m_config.registrationsPerHour), m_limits(clock),
      m_presenceBroadcaster(m_lobby, m_config.presenceSpacingMs),
      m_login(m_config, m_lobby, m_rooms, accounts, buddies, passwords, m_throttle, m_registrations,
              m_refusals, [this](Session &session) { endSession(session); }),
      m_presence(m_presenceBroadcaster, accounts, buddies, m_limits),
      m_chat(m_lobby, diagnostics, m_limits),
      m_roomHandler(m_lobby, m_rooms, m_limits, m_config.readySpacingMs)
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
    while (QTcpSocket *socket = m_server.nextPendingConnection())
        accept(socket);
}

void LobbyServer::accept(QTcpSocket *socket)
{
    auto *connection = new Connection(socket);
    connection->setMaxUnsent(m_config.maxUnsentBytes);
    const QString address = connection->peerAddress();
    if (!mayConnect(address)) {
        connection->setParent(this);
        connect(connection, &Connection::closed, connection, &QObject::deleteLater);
        connection->closeAfterFlush();
        return;
    }
    ++m_connections;
    ++m_connectionsPerAddress[address];
    auto *session = new Session(connection, this);
    qCDebug(lcLobby).noquote() << sessionTag(*session) << "connected";
    connect(session, &QObject::destroyed, this, [this, address] {
        --m_connections;
        if (--m_connectionsPerAddress[address] <= 0)
            m_connectionsPerAddress.remove(address);
    });
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

bool LobbyServer::mayConnect(const QString &address)
{
    if (m_connections >= m_config.maxConnections) {
        m_refusals.refused(address, QStringLiteral("connection: the lobby holds %1 connections")
                                        .arg(m_config.maxConnections));
        return false;
    }
    if (m_connectionsPerAddress.value(address) >= m_config.maxConnectionsPerAddress) {
        m_refusals.refused(address, QStringLiteral("connection: %1 connections from this address")
                                        .arg(m_config.maxConnectionsPerAddress));
        return false;
    }
    return true;
}

void LobbyServer::dispatch(Session &session, const protocol::Message &message)
{
    switch (session.stage()) {
    case Session::Stage::New:
    case Session::Stage::Versioned:
        if (message.code == protocol::Version::kCode) {
            if (const auto version = protocol::Version::decode(message))
                m_login.handleVersion(session, *version);
        } else if (message.code == protocol::Login::kCode) {
            if (const auto login = protocol::Login::decode(message))
                m_login.handleLogin(session, *login);
        }
        return;
    case Session::Stage::LoggedIn:
        // Buddy changes are written in batches, but before anything that could answer a
        // later message: whoever sees that answer can rely on the change being stored.
        if (message.code != protocol::BuddyAdd::kCode &&
            message.code != protocol::BuddyRemove::kCode)
            m_buddies.flush();
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
    qCDebug(lcLobby).noquote() << sessionTag(session) << "ended";
    if (wasLoggedIn) {
        m_lobby.remove(&session);
        m_presenceBroadcaster.forget(session);
        m_roomHandler.leaveOnDeparture(session);
        m_lobby.broadcast(protocol::RemovePlayer{session.player().name}.encode());
    }
    session.connection().closeAfterFlush();
}

} // namespace server
