#include "client/lobby/keepalive.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/session/sessionstate.h"
#include "support/scriptedserver.h"

#include <QTest>
#include <QTimer>

using namespace client;

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
        QTimer timer1;
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

        // The detection timer drives it.
        timer1.setInterval(5);
        timer1.start();
        QTRY_COMPARE(server.received(), expected + "PI\x0F");
    }

    void countsWhileDisconnectedAndSendsNothing()
    {
        LobbyDispatcher dispatcher;
        LobbyConnection connection(dispatcher);
        SessionState session;
        QTimer timer1;
        KeepAlive keepAlive(timer1, session, connection);
        for (int tick = 1; tick <= 4; ++tick)
            keepAlive.tick();
        // 1 -> 2, 3, 1 (would have sent), 2
        QCOMPARE(session.keepAliveTicks, 2);
    }
};

QTEST_GUILESS_MAIN(TestKeepAlive)
#include "tst_keepalive.moc"
