#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"

#include "protocol/message.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

using protocol::Code;

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
        QVERIFY(!pair.connection.sendLobbyMessage(Code::ChatLine, {"early"}));
        pair.connection.connectToLobby(QStringLiteral("127.0.0.1"), pair.server.serverPort());
        QVERIFY(!pair.connection.sendLobbyMessage(Code::ChatLine, {"connecting"}));
        QVERIFY(pair.server.waitForNewConnection(5000));
        QTcpSocket *peer = pair.server.nextPendingConnection();
        QTRY_VERIFY(pair.connection.isConnected());
        QVERIFY(pair.connection.sendLobbyMessage(Code::RoomChat, {"hej"}));
        QTRY_VERIFY(peer->bytesAvailable() > 0);
        QTest::qWait(50);
        QCOMPARE(peer->readAll(), QByteArray("\xD6Mhej\x0F"));
    }

    void arrivingBytesReachTheDispatcher()
    {
        Pair pair;
        QVERIFY(open(pair));
        QStringList seen;
        pair.dispatcher.setHandler(Code::RemovePlayer,
                                   [&](const protocol::Message &m) { seen << m.field(0); });
        pair.peer->write("RNa\x0FRN");
        pair.peer->flush();
        QTRY_COMPARE(seen, QStringList{"a"});
        pair.peer->write("b\x0F");
        QTRY_COMPARE(seen, (QStringList{"a", "b"}));
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

    void ownCloseIsNoDrop()
    {
        Pair pair;
        QVERIFY(open(pair));
        QSignalSpy dropped(&pair.connection, &LobbyConnection::dropped);
        pair.connection.close();
        QVERIFY(pair.connection.isClosed());
        QTest::qWait(100);
        QCOMPARE(dropped.count(), 0);
        QVERIFY(!pair.connection.sendLobbyMessage(Code::KeepAlive));
    }

    void refusedConnectionFails()
    {
        // A port that was just free: nothing listens there.
        quint16 port = 0;
        {
            QTcpServer probe;
            QVERIFY(probe.listen(QHostAddress::LocalHost));
            port = probe.serverPort();
        }
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        QSignalSpy failed(&connection, &LobbyConnection::connectFailed);
        QSignalSpy dropped(&connection, &LobbyConnection::dropped);
        connection.connectToLobby(QStringLiteral("127.0.0.1"), port);
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(dropped.count(), 0);
    }
};

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
