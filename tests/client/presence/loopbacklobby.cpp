#include "loopbacklobby.h"

#include "client/lobby/lobbyconnection.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

LoopbackLobby::LoopbackLobby() : m_server(new QTcpServer(this))
{
    m_server->listen(QHostAddress::LocalHost, 0);
}

bool LoopbackLobby::accept(LobbyConnection &connection)
{
    QSignalSpy connected(&connection, &LobbyConnection::connected);
    connection.connectToLobby(QStringLiteral("127.0.0.1"), m_server->serverPort());
    if (!m_server->waitForNewConnection(5000))
        return false;
    m_peer = m_server->nextPendingConnection();
    if (!m_peer)
        return false;
    connect(m_peer, &QTcpSocket::readyRead, this, [this] { m_bytes += m_peer->readAll(); });
    return connected.count() > 0 || connected.wait(5000);
}

QByteArray LoopbackLobby::received()
{
    QCoreApplication::processEvents();
    return std::exchange(m_bytes, {});
}

QByteArray LoopbackLobby::receivedThrough(const QByteArray &tail)
{
    QDeadlineTimer deadline(5000);
    while (!m_bytes.endsWith(tail) && !deadline.hasExpired())
        QTest::qWait(5);
    return std::exchange(m_bytes, {});
}
