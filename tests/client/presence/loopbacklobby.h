#pragma once

#include <QByteArray>
#include <QObject>
#include <QPointer>

class LobbyConnection;
class QTcpServer;
class QTcpSocket;

// A lobby server for one test: a QTcpServer on loopback that accepts one client and records the
// bytes it sends, so a test can compare them exactly.
class LoopbackLobby : public QObject
{
    Q_OBJECT

public:
    LoopbackLobby();

    // Connects `connection` to this server; true once both sides are connected.
    bool accept(LobbyConnection &connection);

    // Everything the client has sent and that has arrived so far.
    QByteArray received();
    // Waits until the received bytes end with `tail` (or a few seconds pass); returns all
    // bytes received since the last call to `received` or `receivedThrough`.
    QByteArray receivedThrough(const QByteArray &tail);

private:
    QTcpServer *m_server;
    QPointer<QTcpSocket> m_peer;
    QByteArray m_bytes;
};
