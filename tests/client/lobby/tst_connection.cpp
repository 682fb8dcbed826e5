#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"

#include "protocol/chat.h"
#include "protocol/rooms.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using namespace client;

class TestConnection : public QObject
{
    Q_OBJECT

private:
    // A connection to a listening server, and the server's end of it.
    struct Pair
    {
        QTcpServer server;
        LobbyDispatcher dispatcher;
        LobbyConnection connection{dispatcher};
        QTcpSocket *peer = nullptr;
    };

    static bool open(Pair &pair)
    {
        if (!pair.server.listen(QHostAddress::LocalHost))
            return false;
        QSignalSpy connected(&pair.connection, &LobbyConnection::connected);
        pair.connection.connectToLobby(QStringLiteral("127.0.0.1"), pair.server.serverPort());
        if (!pair.server.waitForNewConnection(5000))
            return false;
        pair.peer = pair.server.nextPendingConnection();
        return connected.wait(5000) || connected.count() == 1;
    }

private Q_SLOTS:
    void sendsNothingUnlessConnected()
    {
        Pair pair;
        QVERIFY(pair.server.listen(QHostAddress::LocalHost));
        // Not connected at all, then while the connection is still being made.
        QVERIFY(!pair.connection.send(protocol::ChatLineToServer{"early"}));
        pair.connection.connectToLobby(QStringLiteral("127.0.0.1"), pair.server.serverPort());
        QVERIFY(!pair.connection.send(protocol::ChatLineToServer{"connecting"}));
        QVERIFY(pair.server.waitForNewConnection(5000));
        QTcpSocket *peer = pair.server.nextPendingConnection();
        QTRY_VERIFY(pair.connection.isConnected());
        QVERIFY(pair.connection.send(protocol::RoomChat{"hej"}));
        QTRY_VERIFY(peer->bytesAvailable() > 0);
        QTest::qWait(50);
        QCOMPARE(peer->readAll(), QByteArray("\xD6Mhej\x0F"));
    }

    void peerCloseIsADrop()
    {
        Pair pair;
        QVERIFY(open(pair));
        QSignalSpy dropped(&pair.connection, &LobbyConnection::dropped);
        pair.peer->disconnectFromHost();
        QTRY_COMPARE(dropped.count(), 1);
        QVERIFY(!pair.connection.isConnected());
        QTest::qWait(50);
        QCOMPARE(dropped.count(), 1);
    }
};

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
