// The quorvel-server command line: the options as read, the listening line, refusals with
// clear messages and non-zero exits, the account commands working on the database file, and
// what the lobby acknowledged surviving a kill.
#include "lobbytest.h"
#include "server/serveroptions.h"

#include <QSqlDatabase>
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
        QVERIFY(m_occupied.listen(QHostAddress::Any, 0));
        const QString newer = m_dir.filePath("newer.sqlite");
        {
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "newer");
            db.setDatabaseName(newer);
            QVERIFY(db.open());
            QVERIFY(QSqlQuery(db).exec("PRAGMA user_version = 99"));
        }
        QSqlDatabase::removeDatabase("newer");
        QTest::newRow("unknown option") << QStringList{"--colours"} << "Unknown option";
        QTest::newRow("port not a number") << QStringList{"--port", "http"} << "--port";
        QTest::newRow("port too large") << QStringList{"--port", "70000"} << "--port";
        QTest::newRow("bad registration")
            << QStringList{"--registration", "maybe"} << "--registration";
        QTest::newRow("bad listen address") << QStringList{"--listen", "nowhere"} << "--listen";
        QTest::newRow("bad idle limit") << QStringList{"--idle-timeout", "-1"} << "--idle-timeout";
        QTest::newRow("bad hash cost") << QStringList{"--hash-cost", "none"} << "--hash-cost";
        QTest::newRow("database is a folder")
            << QStringList{"--db", m_dir.path(), "--port", "0"} << "cannot open the database";
        QTest::newRow("database from a newer server")
            << QStringList{"--db", newer, "--port", "0"} << "newer than this server";
        QTest::newRow("port in use") << QStringList{"--db", m_dir.filePath("a.sqlite"), "--port",
                                                    QString::number(m_occupied.serverPort())}
                                     << "cannot listen";
        QTest::newRow("add without password")
            << QStringList{"account", "add", "Anna"} << "unknown account command";
        QTest::newRow("moderator maybe")
            << QStringList{"account", "moderator", "A", "maybe"} << "unknown account";
        QTest::newRow("colour too large")
            << QStringList{"account", "moderator", "A", "on", "--colour", "16777216"}
            << "--colour takes a number";
        QTest::newRow("colour outside commands")
            << QStringList{"--colour", "1"} << "--colour belongs";
        QTest::newRow("stray argument") << QStringList{"serve"} << "unexpected argument serve";
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
        const QList<std::pair<QStringList, int>> commands{
            {{"add", "Anna", "first", "--email", "anna@example.org"}, 0},
            {{"add", "ANNA", "x"}, 1}, // exists
            {{"password", "anna", "second"}, 0},
            {{"password", "nobody", "x"}, 1},
            {{"moderator", "Anna", "on", "--colour", "0x0080FF"}, 0},
        };
        for (const auto &[command, exitCode] : commands)
            QCOMPARE(
                ServerProcess::run(kLobbyServer, QStringList{"account"} + command + db).exitCode,
                exitCode);
        const ServerProcess::Result list =
            ServerProcess::run(kLobbyServer, QStringList{"account", "list"} + db);
        QCOMPARE(list.exitCode, 0);
        QVERIFY2(list.out.contains(QLatin1String("1\tAnna\tyes\t33023\tanna@example.org")),
                 qPrintable(list.out));

        // The lobby sees what the commands wrote, and takes the versions and registration given.
        const QStringList options =
            db + QStringList{"--versions",     "V 7.0, V 7.1", "--port",   "0",
                             "--registration", "open",         "--listen", "127.0.0.1"};
        ServerProcess server;
        QVERIFY(server.start(kLobbyServer, options));
        TestClient old(server.port());
        old.send(Code::Version, {"V 6.0"});
        QVERIFY(old.take(Code::OldVersion));
        const QString version = "V 7.1";
        QVERIFY(!TestClient(server.port()).login("Anna", "first", version));
        auto anna = std::make_unique<TestClient>(server.port());
        QVERIFY(anna->login("Anna", "second", version));
        QCOMPARE(anna->take(Code::AddPlayer).value_or(Message{}).field(5), "True");
        anna->send(Code::ChatLine, {"hi"});
        QCOMPARE(anna->take(Code::ChatLine).value_or(Message{}).field(1), "33023");

        // What it acknowledged survives SIGKILL: an account made by a login, and a buddy change
        // whose reading the echo of a later line shows.
        const auto registered = TestClient(server.port()).login("Someone", "pw", version);
        QVERIFY(registered);
        anna->send(Code::BuddyAdd, {registered->field(0)});
        anna->send(Code::ChatLine, {"done"});
        QVERIFY(anna->take(Code::ChatLine));
        server.killHard();
        QVERIFY(server.start(kLobbyServer, options + QStringList{"--hash-cost", "minimal"}));
        anna = std::make_unique<TestClient>(server.port());
        QVERIFY(anna->login("Anna", "second", version));
        QCOMPARE(
            TestClient(server.port()).login("Someone", "pw", version).value_or(Message{}).fields,
            registered->fields);
        const QList<Message> announced = anna->takeCount(Code::AddPlayer, 2);
        QCOMPARE(namesOf(announced), QStringList({"Anna", "Someone"}));
        QCOMPARE(announced[1].field(4), "1");
        QVERIFY(TestClient(server.port()).login("Later", "pw", version));
        // Passwords are hashed at the standard cost unless the lobby is told otherwise.
        server::Database database;
        QVERIFY(database.open(db[1]));
        for (const server::Account &account : server::AccountStore(database).all())
            QVERIFY2(account.passwordHash.startsWith(account.name == "Later"
                                                         ? "$argon2id$v=19$m=8,t=1,"
                                                         : "$argon2id$v=19$m=19456,t=2,"),
                     account.passwordHash.constData());
    }

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

private:
    QTcpServer m_occupied;
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestExecutable)
#include "tst_executable.moc"
