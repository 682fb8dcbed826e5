#include "client/lobby/lobbyconnection.h"

#include "client/lobby/lobbydispatcher.h"
#include "protocol/message.h"

#include <QTcpSocket>
#include <QTimer>

namespace client {

LobbyConnection::LobbyConnection(LobbyDispatcher &dispatcher,
                                 std::chrono::milliseconds connectTimeout, QObject *parent)
    : QObject(parent), m_dispatcher(dispatcher), m_socket(new QTcpSocket(this)),
      m_connectTimer(new QTimer(this))
{
    m_socket->setObjectName(QStringLiteral("tcpClient"));
    m_connectTimer->setSingleShot(true);
    m_connectTimer->setInterval(connectTimeout);
    connect(m_connectTimer, &QTimer::timeout, this, &LobbyConnection::onConnectTimeout);
    connect(m_socket, &QTcpSocket::connected, this, [this] {
        m_connectTimer->stop();
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
    if (m_dispatcher.isHalted())
        m_dispatcher.clear();
    m_socket->connectToHost(host, port);
    m_connectTimer->start();
}

void LobbyConnection::close()
{
    m_connectTimer->stop();
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
    m_connectTimer->stop();
    Q_EMIT connectFailed(error);
}

void LobbyConnection::onConnectTimeout()
{
    if (m_open)
        return;
    m_socket->abort();
    Q_EMIT connectFailed(QAbstractSocket::SocketTimeoutError);
}

void LobbyConnection::onDisconnected()
{
    if (!m_open)
        return;
    m_open = false;
    Q_EMIT dropped();
}

} // namespace client
