#include "client/lobby/lobbyconnection.h"

#include "client/lobby/lobbydispatcher.h"
#include "protocol/message.h"

#include <QTcpSocket>

namespace client {

LobbyConnection::LobbyConnection(LobbyDispatcher &dispatcher, QObject *parent)
    : QObject(parent), m_dispatcher(dispatcher), m_socket(new QTcpSocket(this))
{
    m_socket->setObjectName(QStringLiteral("tcpClient"));
    connect(m_socket, &QTcpSocket::connected, this, [this] {
        m_open = true;
        Q_EMIT connected();
    });
    connect(m_socket, &QTcpSocket::readyRead, this,
            [this] { m_dispatcher.receive(m_socket->readAll()); });
    connect(m_socket, &QTcpSocket::errorOccurred, this, &LobbyConnection::onError);
    connect(m_socket, &QTcpSocket::disconnected, this, &LobbyConnection::onDisconnected);
}

void LobbyConnection::connectToLobby(const QString &host, quint16 port)
{
    close();
    m_socket->connectToHost(host, port);
}

void LobbyConnection::close()
{
    m_open = false;
    m_socket->abort();
}

bool LobbyConnection::isConnected() const
{
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

bool LobbyConnection::isClosed() const
{
    return m_socket->state() == QAbstractSocket::UnconnectedState;
}

bool LobbyConnection::sendBytes(const QByteArray &bytes)
{
    if (!isConnected())
        return false;
    m_socket->write(bytes);
    return true;
}

bool LobbyConnection::sendLobbyMessage(protocol::Code code, const QStringList &fields)
{
    return sendBytes(protocol::buildMessage(code, fields));
}

void LobbyConnection::onError(QAbstractSocket::SocketError error)
{
    if (error == QAbstractSocket::RemoteHostClosedError)
        return; // the disconnected signal follows and is the drop
    if (m_open) {
        // Aborted while open: close our side and treat it as a drop.
        m_open = false;
        m_socket->abort();
        Q_EMIT dropped();
        return;
    }
    Q_EMIT connectFailed(error);
}

void LobbyConnection::onDisconnected()
{
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT dropped();
}

} // namespace client
