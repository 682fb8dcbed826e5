// The lobby options as the server reads them, and the login slow-down's schedule.
#include "server/clock.h"
#include "server/loginthrottle.h"
#include "server/serveroptions.h"

#include <QTest>

class TestOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lobbyOptions()
    {
        const auto parsed = server::parseCommandLine(
            {"quorvel-server", "--listen", "::1", "--port", "0", "--http-port", "8080", "--db",
             "/tmp/x.sqlite", "--versions", "V 6.0,,V 6.1 ", "--registration", "open",
             "--login-timeout", "2.5", "--idle-timeout", "60", "--hash-cost", "minimal"});
        const auto *options = std::get_if<server::ServerOptions>(&parsed);
        QVERIFY(options);
        QCOMPARE(options->listenAddress, QHostAddress("::1"));
        QCOMPARE(options->port, quint16(0));
        QCOMPARE(options->httpPort, quint16(8080));
        QCOMPARE(options->databasePath, "/tmp/x.sqlite");
        QCOMPARE(options->lobby.versions, QStringList({"V 6.0", "V 6.1"}));
        QVERIFY(options->lobby.openRegistration);
        QCOMPARE(options->lobby.loginTimeoutMs, 2500); // seconds on the command line
        QCOMPARE(options->lobby.idleTimeoutMs, 60000);
        QCOMPARE(options->hashCost, server::HashCost::Minimal);
    }

    void throttleSchedule()
    {
        server::ManualClock clock;
        server::LoginThrottle throttle(clock);
        const QString address = "10.0.0.1";
        QList<qint64> delays;
        for (int i = 0; i < 10; ++i) {
            delays.append(throttle.delayFor(address));
            throttle.recordFailure(address);
        }
        QCOMPARE(delays, QList<qint64>({0, 0, 0, 1000, 2000, 4000, 8000, 16000, 30000, 30000}));
        // Other addresses are not slowed down by it.
        QCOMPARE(throttle.delayFor("10.0.0.2"), 0);
        // Forgotten after a quiet while, and at once after a success.
        clock.advance(server::LoginThrottle::kForgetMs);
        QCOMPARE(throttle.delayFor(address), 0);
        for (int i = 0; i < 5; ++i)
            throttle.recordFailure(address);
        QVERIFY(throttle.delayFor(address) > 0);
        throttle.recordSuccess(address);
        QCOMPARE(throttle.delayFor(address), 0);
    }
};

QTEST_GUILESS_MAIN(TestOptions)
#include "tst_options.moc"
