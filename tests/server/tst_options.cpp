// The command line as the server reads it, and the login slow-down's schedule.
#include "server/clock.h"
#include "server/loginthrottle.h"
#include "server/serveroptions.h"

#include <QTest>

using server::AdminCommand;
using server::ServerOptions;

class TestOptions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaults();
    void lobbyOptions();
    void adminCommands_data();
    void adminCommands();
    void throttleSchedule();
};

void TestOptions::defaults()
{
    const auto parsed = server::parseCommandLine({"quorvel-server"});
    const auto *options = std::get_if<ServerOptions>(&parsed);
    QVERIFY(options);
    QCOMPARE(options->port, quint16(20000));
    QCOMPARE(options->httpPort, quint16(80));
    QCOMPARE(options->listenAddress, QHostAddress(QHostAddress::Any));
    QCOMPARE(options->lobby.versions, QStringList({"V 6.0"}));
    QVERIFY(!options->lobby.openRegistration);
    QCOMPARE(options->lobby.loginTimeoutMs, 30000);
    QCOMPARE(options->lobby.idleTimeoutMs, 95000);
    // The default database lives in the data folder the test environment points at.
    QVERIFY(options->databasePath.startsWith(qEnvironmentVariable("XDG_DATA_HOME")));
}

void TestOptions::lobbyOptions()
{
    const auto parsed = server::parseCommandLine(
        {"quorvel-server", "--listen", "::1", "--port", "0", "--http-port", "8080", "--db",
         "/tmp/x.sqlite", "--versions", "V 6.0,,V 6.1 ", "--registration", "open",
         "--login-timeout", "2.5", "--idle-timeout", "60"});
    const auto *options = std::get_if<ServerOptions>(&parsed);
    QVERIFY(options);
    QCOMPARE(options->listenAddress, QHostAddress(QStringLiteral("::1")));
    QCOMPARE(options->port, quint16(0));
    QCOMPARE(options->httpPort, quint16(8080));
    QCOMPARE(options->databasePath, QStringLiteral("/tmp/x.sqlite"));
    QCOMPARE(options->lobby.versions, QStringList({"V 6.0", "V 6.1"}));
    QVERIFY(options->lobby.openRegistration);
    QCOMPARE(options->lobby.loginTimeoutMs, 2500);
    QCOMPARE(options->lobby.idleTimeoutMs, 60000);
}

void TestOptions::adminCommands_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("detail"); // name/password/email/moderator/colour as text
    QTest::newRow("add") << QStringList{"account", "add", "Anna", "pw", "--email", "a@b.c"} << true
                         << int(AdminCommand::Kind::Add) << "Anna/pw/a@b.c/0/-";
    QTest::newRow("password") << QStringList{"account", "password", "Anna", "new"} << true
                              << int(AdminCommand::Kind::Password) << "Anna/new//0/-";
    QTest::newRow("moderator on with hex colour")
        << QStringList{"account", "moderator", "Anna", "on", "--colour", "0xFF"} << true
        << int(AdminCommand::Kind::Moderator) << "Anna///1/255";
    QTest::newRow("moderator off") << QStringList{"account", "moderator", "Anna", "off"} << true
                                   << int(AdminCommand::Kind::Moderator) << "Anna///0/-";
    QTest::newRow("list") << QStringList{"account", "list"} << true << int(AdminCommand::Kind::List)
                          << "///0/-";
    QTest::newRow("moderator maybe")
        << QStringList{"account", "moderator", "Anna", "maybe"} << false << 0 << "";
    QTest::newRow("colour too large")
        << QStringList{"account", "moderator", "Anna", "on", "--colour", "16777216"} << false << 0
        << "";
    QTest::newRow("add without password")
        << QStringList{"account", "add", "Anna"} << false << 0 << "";
    QTest::newRow("unknown verb") << QStringList{"account", "delete", "Anna"} << false << 0 << "";
    QTest::newRow("colour outside commands") << QStringList{"--colour", "1"} << false << 0 << "";
    QTest::newRow("stray argument") << QStringList{"serve"} << false << 0 << "";
}

void TestOptions::adminCommands()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, valid);
    QFETCH(int, kind);
    QFETCH(QString, detail);
    const auto parsed = server::parseCommandLine(QStringList{"quorvel-server"} + arguments);
    const auto *command = std::get_if<AdminCommand>(&parsed);
    if (!valid) {
        QVERIFY(std::holds_alternative<server::OptionsError>(parsed));
        return;
    }
    QVERIFY(command);
    QCOMPARE(int(command->kind), kind);
    const QString actual = QStringList{command->name, command->password, command->email,
                                       command->moderator ? "1" : "0",
                                       command->chatColour ? QString::number(*command->chatColour)
                                                           : QStringLiteral("-")}
                               .join(QLatin1Char('/'));
    QCOMPARE(actual, detail);
}

void TestOptions::throttleSchedule()
{
    server::ManualClock clock;
    server::LoginThrottle throttle(clock);
    const QString address = QStringLiteral("10.0.0.1");
    QList<qint64> delays;
    for (int i = 0; i < 10; ++i) {
        delays.append(throttle.delayFor(address));
        throttle.recordFailure(address);
    }
    QCOMPARE(delays, QList<qint64>({0, 0, 0, 1000, 2000, 4000, 8000, 16000, 30000, 30000}));
    // Other addresses are not slowed down by it.
    QCOMPARE(throttle.delayFor(QStringLiteral("10.0.0.2")), 0);
    // Forgotten after a quiet while, and at once after a success.
    clock.advance(server::LoginThrottle::kForgetMs);
    QCOMPARE(throttle.delayFor(address), 0);
    for (int i = 0; i < 5; ++i)
        throttle.recordFailure(address);
    QVERIFY(throttle.delayFor(address) > 0);
    throttle.recordSuccess(address);
    QCOMPARE(throttle.delayFor(address), 0);
}

QTEST_GUILESS_MAIN(TestOptions)
#include "tst_options.moc"
