#include "client/lobby/keepalive.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/onlinetimer.h"
#include "client/session/sessionstate.h"
#include "support/scriptedserver.h"

#include <QTest>

using namespace client;
using namespace std::chrono_literals;

class TestKeepAlive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyThirdTick()
    {
        ScriptedServer server;
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        SessionState session;
        OnlineTimer timer1(session, 5ms);
        KeepAlive keepAlive(timer1, session, connection);
        connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
        QTRY_VERIFY(connection.isConnected());

        QByteArray expected;
        for (int tick = 1; tick <= 9; ++tick) {
            keepAlive.tick();
            if (tick % 3 == 0)
                expected += "PI\x0F";
            QTest::qWait(20);
            QCOMPARE(server.received(), expected);
        }
        QCOMPARE(session.keepAliveTicks, 1);

        // `Timer1` drives it while logged in, and only then.
        QVERIFY(!timer1.isActive());
        session.setOnline(true);
        QTRY_COMPARE(server.received(), expected + "PI\x0F");
        session.setOnline(false);
        QVERIFY(!timer1.isActive());
    }

    void countsWhileDisconnectedAndSendsNothing()
    {
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        SessionState session;
        OnlineTimer timer1(session);
        KeepAlive keepAlive(timer1, session, connection);
        for (int tick = 1; tick <= 4; ++tick)
            keepAlive.tick();
        // 1 -> 2, 3, 1 (would have sent), 2
        QCOMPARE(session.keepAliveTicks, 2);
    }
};

QTEST_GUILESS_MAIN(TestKeepAlive)
#include "tst_keepalive.moc"
