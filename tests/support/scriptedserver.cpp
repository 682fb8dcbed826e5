#include "scriptedserver.h"

#include "wait.h"

ScriptedServer::ScriptedServer(QObject *parent) : QObject(parent)
{
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            if (m_client)
                m_client->deleteLater();
            m_client = socket;
            m_received.clear();
            m_written = 0;
            ++m_connections;
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
                if (socket == m_client)
                    m_received += socket->readAll();
            });
            connect(socket, &QTcpSocket::bytesWritten, this, [this, socket](qint64 bytes) {
                if (socket == m_client)
                    m_written += bytes;
            });
        }
    });
}

bool ScriptedServer::expect(const QByteArray &bytes, int timeoutMs)
{
    waitUntil([&] { return m_received.size() >= bytes.size(); }, timeoutMs);
    if (!m_received.startsWith(bytes)) {
        qWarning() << "expected" << bytes << "received" << m_received;
        return false;
    }
    m_received.remove(0, bytes.size());
    return true;
}

bool ScriptedServer::waitForConnection(int n, int timeoutMs)
{
    return waitUntil([&] { return m_connections >= n; }, timeoutMs);
}

void ScriptedServer::send(const QByteArray &bytes)
{
    if (m_client) {
        m_client->write(bytes);
        m_client->flush();
    }
}

void ScriptedServer::dropClient()
{
    if (m_client)
        m_client->disconnectFromHost();
}

void ScriptedServer::stopAnswering()
{
    // The kernel drops a connection request without a word while the listening socket's
    // accept queue is full: listen again with the smallest queue, never accept, and fill the
    // queue with one connection of our own.
    const quint16 listeningPort = port();
    m_server.close();
    m_server.setListenBacklogSize(0);
    m_server.setMaxPendingConnections(0);
    m_server.listen(QHostAddress::LocalHost, listeningPort);
    m_backlogFiller.connectToHost(QHostAddress::LocalHost, listeningPort);
    m_backlogFiller.waitForConnected(5000);
}
