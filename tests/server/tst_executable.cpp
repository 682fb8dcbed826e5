// The quorvel-server command line: the options as read, the listening line, refusals with
// clear messages and non-zero exits, the account commands working on the database file, and
// what the lobby acknowledged surviving a kill.
#include "lobbytest.h"
#include "server/admin/serveroptions.h"

#include <QSqlQuery>
#include <QTcpServer>

class TestExecutable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesToStart_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char *tag, const QStringList &arguments, const char *message) {
            QTest::newRow(tag) << arguments << QString::fromUtf8(message);
        };
        QVERIFY(m_occupied.listen(QHostAddress::Any, 0));
        const QString newer = m_dir.filePath("newer.sqlite");
        {
            server::Database database;
            QVERIFY(database.open(newer));
            QVERIFY(QSqlQuery(database.handle()).exec("PRAGMA user_version = 99"));
        }
        row("unknown option", {"--colours"}, "Unknown option");
        row("port too large", {"--port", "70000"}, "--port");
        row("bad registration", {"--registration", "maybe"}, "--registration");
        row("bad listen address", {"--listen", "nowhere"}, "--listen");
        row("bad idle limit", {"--idle-timeout", "-1"}, "--idle-timeout");
        row("bad hash cost", {"--hash-cost", "none"}, "--hash-cost");
        row("no registrations an hour", {"--registration-per-hour", "0"}, "--registration-per");
        row("web address not http", {"--web-address", "ftp://lobby"}, "--web-address");
        row("web address with a query", {"--web-address", "http://lobby/?p=1"}, "--web-address");
        row("database is a folder", {"--db", m_dir.path(), "--port", "0"},
            "cannot open the database");
        row("database from a newer server", {"--db", newer, "--port", "0"},
            "newer than this server");
        row("port in use",
            {"--db", m_dir.filePath("a.sqlite"), "--port",
             QString::number(m_occupied.serverPort())},
            "cannot listen");
        row("add without password", {"account", "add", "Anna"}, "unknown account command");
        row("moderator maybe", {"account", "moderator", "A", "maybe"}, "unknown account");
        row("colour too large", {"account", "moderator", "A", "on", "--colour", "16777216"},
            "--colour takes a number");
        row("colour outside commands", {"--colour", "1"}, "--colour belongs");
        row("stray argument", {"serve"}, "unexpected argument serve");
    }

    void refusesToStart()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const ServerProcess::Result result = ServerProcess::run(kLobbyServer, arguments);
        QVERIFY(result.exitCode > 0);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        QVERIFY(!result.out.contains(QLatin1String("listening")));
    }

    void commandsOptionsAndRestart()
    {
        QTemporaryDir dir;
        const QStringList db{"--db", dir.filePath("lobby.sqlite")};
        const auto account = [&](const QStringList &command) {
            return ServerProcess::run(kLobbyServer, QStringList{"account"} + command + db);
        };
        QCOMPARE(account({"add", "Anna", "first", "--email", "anna@example.org"}).exitCode, 0);
        QCOMPARE(account({"add", "ANNA", "x"}).exitCode, 1); // exists
        QCOMPARE(account({"password", "anna", "second"}).exitCode, 0);
        QCOMPARE(account({"password", "nobody", "x"}).exitCode, 1);
        QCOMPARE(account({"moderator", "Anna", "on", "--colour", "0x0080FF"}).exitCode, 0);
        const ServerProcess::Result list = account({"list"});
        QVERIFY2(list.out.contains("1\tAnna\tyes\t33023\tanna@example.org"), qPrintable(list.out));

        // The lobby sees what the commands wrote, and takes the versions and registration given.
        const QStringList options =
            db + QStringList{"--versions",     "V 7.0, V 7.1", "--port",   "0",
                             "--registration", "open",         "--listen", "127.0.0.1"};
        ServerProcess server;
        QVERIFY(server.start(kLobbyServer, options));
        const auto login = [&](const QString &name, const QString &password) {
            return TestClient(server.port()).login(name, password, "V 7.1");
        };
        TestClient old(server.port());
        old.send(Code::Version, {"V 6.0"});
        QVERIFY(old.take(Code::OldVersion));
        QVERIFY(!login("Anna", "first"));
        auto anna = std::make_unique<TestClient>(server.port());
        QVERIFY(anna->login("Anna", "second", "V 7.1"));
        QCOMPARE(anna->fields(Code::AddPlayer).value(0).value(5), "True");
        anna->send(Code::ChatLine, {"hi"});
        QCOMPARE(anna->fields(Code::ChatLine).value(0).value(1), "33023");

        // What it acknowledged survives SIGKILL: an account made by a login, and a buddy change
        // whose reading the echo of a later line shows.
        const auto registered = login("Someone", "pw");
        QVERIFY(registered);
        anna->send(Code::BuddyAdd, {registered->field(0)});
        anna->send(Code::ChatLine, {"done"});
        QVERIFY(anna->take(Code::ChatLine));
        server.killHard();
        QVERIFY(server.start(kLobbyServer, options + QStringList{"--hash-cost", "minimal"}));
        anna = std::make_unique<TestClient>(server.port());
        QVERIFY(anna->login("Anna", "second", "V 7.1"));
        QCOMPARE(login("Someone", "pw").value_or(Message{}).fields, registered->fields);
        const QList<Message> announced = anna->takeCount(Code::AddPlayer, 2);
        QCOMPARE(namesOf(announced), QStringList({"Anna", "Someone"}));
        QCOMPARE(announced[1].field(4), "1");
        QVERIFY(login("Later", "pw"));
        // Passwords are hashed at the standard cost unless the lobby is told otherwise.
        server::Database database;
        QVERIFY(database.open(db[1]));
        for (const server::Account &a : server::AccountStore(database).all())
            QVERIFY2(a.passwordHash.startsWith(a.name == "Later" ? "$argon2id$v=19$m=8,t=1,"
                                                                 : "$argon2id$v=19$m=19456,t=2,"),
                     a.passwordHash.constData());
    }

    // What the run above cannot show: the listen address and port, and how the lists and
    // times are read.
    void lobbyOptions()
    {
        const auto parsed = server::parseCommandLine(
            {"quorvel-server", "--listen", "::1", "--port", "0", "--http-port", "8080",
             "--versions", "V 6.0,,V 6.1 ", "--login-timeout", "2.5", "--idle-timeout", "60",
             "--registration-per-hour", "10", "--web-address", "https://lobby.example.org/"});
        const auto *options = std::get_if<server::ServerOptions>(&parsed);
        QVERIFY(options);
        QCOMPARE(options->listenAddress, QHostAddress("::1"));
        QCOMPARE(options->port, quint16(0));
        QCOMPARE(options->httpPort, quint16(8080));
        QCOMPARE(options->lobby.versions, QStringList({"V 6.0", "V 6.1"}));
        QCOMPARE(options->lobby.loginTimeoutMs, 2500); // seconds on the command line
        QCOMPARE(options->lobby.idleTimeoutMs, 60000);
        QCOMPARE(options->lobby.registrationsPerHour, 10);
        QCOMPARE(options->webAddress, "https://lobby.example.org/");
    }

private:
    QTcpServer m_occupied;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestExecutable)
#include "tst_executable.moc"
