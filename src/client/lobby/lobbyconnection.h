#pragma once

#include "protocol/codes.h"

#include <QAbstractSocket>
#include <QObject>
#include <QStringList>

class QTcpSocket;

namespace client {

class LobbyDispatcher;

// The lobby connection `tcpClient`: one TCP socket to the lobby server. Arriving bytes go to
// the dispatcher. The socket's signals are reduced to what the session reacts to:
// - `connected`: the connection is made;
// - `dropped`: the server or the network closed an open connection, or it was aborted while
//   open (the socket is closed then); never raised by the client's own `close`;
// - `connectFailed`: a connection attempt failed (refused, unreachable, timed out).
class LobbyConnection : public QObject
{
    Q_OBJECT

public:
    LobbyConnection(LobbyDispatcher &dispatcher, QObject *parent = nullptr);

    void connectToLobby(const QString &host, quint16 port);
    // Closes the connection from this side; raises no `dropped`.
    void close();

    // The socket is connected (the only state in which anything is sent).
    bool isConnected() const;
    bool isClosed() const;

    // Sends a server-bound message struct (protocol's login.h, presence.h, chat.h, rooms.h,
    // stats.h) while connected; otherwise drops it silently. True when it was handed to the
    // socket.
    template <typename T> bool send(const T &message) { return sendBytes(message.encode()); }

    // The old path: code + fields spelled out, under the same rule. Left for the login and the
    // lobby chat until they send message structs.
    bool sendLobbyMessage(protocol::Code code, const QStringList &fields = {});

    QTcpSocket *socket() const { return m_socket; }

Q_SIGNALS:
    void connected();
    void dropped();
    void connectFailed(QAbstractSocket::SocketError error);

private:
    bool sendBytes(const QByteArray &bytes);
    void onError(QAbstractSocket::SocketError error);
    void onDisconnected();

    LobbyDispatcher &m_dispatcher;
    QTcpSocket *m_socket;
    bool m_open = false; // connected and not yet closed or dropped
};

} // namespace client
