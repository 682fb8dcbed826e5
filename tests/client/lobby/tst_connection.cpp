// The lobby connection: nothing goes out unless it is connected, and the keep-alive goes out
// on every third tick of the detection timer.
#include "client/lobby/keepalive.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/onlinetimer.h"
#include "client/session/sessionstate.h"
#include "support/scriptedserver.h"

#include "protocol/chat.h"
#include "protocol/rooms.h"

#include <QTest>

using namespace client;
using namespace std::chrono_literals;

class TestConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every third tick sends "PI", connected or not; the detection timer drives the ticks while
    // logged in, and only then.
    void keepAliveEveryThirdTick()
    {
        ScriptedServer server;
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        SessionState session;
        OnlineTimer timer1(session, 5ms);
        KeepAlive keepAlive(timer1, session, connection);
        for (int tick = 1; tick <= 4; ++tick)
            keepAlive.tick();
        QCOMPARE(session.keepAliveTicks, 2); // 1 -> 2, 3, 1 (would have sent), 2

        // Nothing goes out unless connected: not at all, nor while the connection is made.
        QVERIFY(!connection.send(protocol::ChatLineToServer{"early"}));
        connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
        QVERIFY(!connection.send(protocol::ChatLineToServer{"connecting"}));
        QTRY_VERIFY(connection.isConnected());
        QVERIFY(connection.send(protocol::RoomChat{"hej"}));
        QByteArray expected = "\xD6Mhej\x0F"; // what went out before would come first
        for (int tick = 1; tick <= 6; ++tick) {
            keepAlive.tick();
            // A line after each tick shows which tick sent what.
            const protocol::ChatLineToServer line{QString::number(tick)};
            connection.send(line);
            expected += (tick % 3 == 2 ? "PI\x0F" : "") + line.encode();
        }
        QVERIFY(server.expect(expected));
        QVERIFY(!timer1.isActive());
        session.setOnline(true);
        QVERIFY(server.expect("PI\x0F"));
        session.setOnline(false);
        QVERIFY(!timer1.isActive());
    }
};

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
