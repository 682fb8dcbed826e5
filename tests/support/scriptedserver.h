#pragma once

#include "protocol/login.h"
#include "support/wait.h"

#include <QByteArray>
#include <QList>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>
#include <functional>

// A lobby server stand-in for tests: listens on an ephemeral loopback port, keeps the
// latest accepted connection, collects what it receives and sends exact bytes.
class ScriptedServer : public QObject
{
    Q_OBJECT

public:
    explicit ScriptedServer(QObject *parent = nullptr);

    quint16 port() const { return m_server.serverPort(); }
    int connectionCount() const { return m_connections; }

    // Waits until `bytes` has been received (from the current connection) and removes it
    // from the front of what was received. False on timeout or different bytes.
    bool expect(const QByteArray &bytes, int timeoutMs = 5000);
    // Waits for the n-th connection.
    bool waitForConnection(int n, int timeoutMs = 5000);
    void send(const QByteArray &bytes);
    // Closes the current connection from the server's side.
    void dropClient();
    // From now on a connection attempt is neither accepted nor refused: it hangs, as with a
    // server that never answers.
    void stopAnswering();

    QByteArray received() const { return m_received; }
    // How many bytes of what was sent the current connection has taken so far.
    qint64 written() const { return m_written; }

private:
    QTcpServer m_server;
    QPointer<QTcpSocket> m_client;
    QTcpSocket m_backlogFiller;
    QByteArray m_received;
    qint64 m_written = 0;
    int m_connections = 0;
};

// What `client` (a lobby connection) sent to `server` while `action` ran, "(lost)" when that
// cannot be told. A keep-alive before and after marks the stretch.
template <typename Connection>
QByteArray sentDuring(ScriptedServer &server, Connection &client,
                      const std::function<void()> &action)
{
    const auto mark = [&] {
        const qsizetype before = server.received().size();
        client.send(protocol::KeepAlive{});
        return waitUntil([&] {
            return server.received().size() > before && server.received().endsWith("PI\x0F");
        })
                   ? server.received().size()
                   : -1;
    };
    const qsizetype from = mark();
    action();
    const qsizetype to = mark();
    return from < 0 || to < 0 ? "(lost)" : server.received().mid(from, to - from - 3);
}
