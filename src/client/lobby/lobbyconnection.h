#pragma once

#include <QByteArray>

#include <QAbstractSocket>
#include <QObject>
#include <chrono>

class QTcpSocket;
class QTimer;

namespace client {

class LobbyDispatcher;

// The lobby connection `tcpClient`: one TCP socket to the lobby server. Arriving bytes go to
// the dispatcher. The socket's signals are reduced to what the session reacts to:
// - `connected`: the connection is made;
// - `dropped`: the server or the network closed an open connection, or it was aborted while
//   open (the socket is closed then); never raised by the client's own `close`;
// - `connectFailed`: a connection attempt failed (refused, unreachable), or no connection was
//   made within the connect timeout (a server that never answers; the kernel alone would take
//   about two minutes to give up).
class LobbyConnection : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kConnectTimeout{20000};

    explicit LobbyConnection(LobbyDispatcher &dispatcher,
                             std::chrono::milliseconds connectTimeout = kConnectTimeout,
                             QObject *parent = nullptr);

    // Closes any earlier connection first. A dispatcher stopped by "OV" starts afresh, without
    // the bytes left of the old stream.
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

    QTcpSocket *socket() const { return m_socket; }

Q_SIGNALS:
    void connected();
    void dropped();
    void connectFailed(QAbstractSocket::SocketError error);

private:
    bool sendBytes(const QByteArray &bytes);
    void onError(QAbstractSocket::SocketError error);
    void onDisconnected();
    void onConnectTimeout();

    LobbyDispatcher &m_dispatcher;
    QTcpSocket *m_socket;
    QTimer *m_connectTimer;
    bool m_open = false; // connected and not yet closed or dropped
};

} // namespace client
