// The quorvel-server command line: the listening line, refusals with clear messages and
// non-zero exits, and the account commands working on the database file.
#include "lobbytest.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTest>

class TestExecutable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesToStart_data();
    void refusesToStart();
    void accountCommandsAndOptionsReachTheLobby();

private:
    QTcpServer m_occupied;
    QTemporaryDir m_dir;
};

void TestExecutable::refusesToStart_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QVERIFY(m_occupied.listen(QHostAddress::Any, 0));
    const QString newer = m_dir.filePath("newer.sqlite");
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("newer"));
        db.setDatabaseName(newer);
        QVERIFY(db.open());
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("PRAGMA user_version = 99")));
    }
    QSqlDatabase::removeDatabase(QStringLiteral("newer"));
    QTest::newRow("unknown option") << QStringList{"--colours"} << "Unknown option";
    QTest::newRow("port not a number") << QStringList{"--port", "http"} << "--port";
    QTest::newRow("port too large") << QStringList{"--port", "70000"} << "--port";
    QTest::newRow("bad registration") << QStringList{"--registration", "maybe"} << "--registration";
    QTest::newRow("bad listen address") << QStringList{"--listen", "nowhere"} << "--listen";
    QTest::newRow("bad idle limit") << QStringList{"--idle-timeout", "-1"} << "--idle-timeout";
    QTest::newRow("database is a folder")
        << QStringList{"--db", m_dir.path(), "--port", "0"} << "cannot open the database";
    QTest::newRow("database from a newer server")
        << QStringList{"--db", newer, "--port", "0"} << "newer than this server";
    QTest::newRow("port in use") << QStringList{"--db", m_dir.filePath("a.sqlite"), "--port",
                                                QString::number(m_occupied.serverPort())}
                                 << "cannot listen";
    QTest::newRow("add without password")
        << QStringList{"account", "add", "Anna"} << "unknown account command";
    QTest::newRow("unknown verb") << QStringList{"account", "delete", "A"} << "unknown account";
    QTest::newRow("moderator maybe")
        << QStringList{"account", "moderator", "A", "maybe"} << "unknown account";
    QTest::newRow("colour too large")
        << QStringList{"account", "moderator", "A", "on", "--colour", "16777216"}
        << "--colour takes a number";
    QTest::newRow("colour outside commands") << QStringList{"--colour", "1"} << "--colour belongs";
    QTest::newRow("stray argument") << QStringList{"serve"} << "unexpected argument serve";
}

void TestExecutable::refusesToStart()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);
    const ServerProcess::Result result = ServerProcess::run(arguments);
    QVERIFY(result.exitCode > 0);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QVERIFY(!result.out.contains(QLatin1String("listening")));
}

void TestExecutable::accountCommandsAndOptionsReachTheLobby()
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
        QCOMPARE(ServerProcess::run(QStringList{"account"} + command + db).exitCode, exitCode);
    const ServerProcess::Result list = ServerProcess::run(QStringList{"account", "list"} + db);
    QCOMPARE(list.exitCode, 0);
    QVERIFY2(list.out.contains(QLatin1String("1\tAnna\tyes\t33023\tanna@example.org")),
             qPrintable(list.out));

    // The lobby sees what the commands wrote, and takes the versions and registration given.
    ServerProcess server;
    QVERIFY(server.start(db + QStringList{"--versions", "V 7.0, V 7.1", "--registration", "open",
                                          "--listen", "127.0.0.1"}));
    TestClient old(server.port());
    old.send(Code::Version, {QStringLiteral("V 6.0")});
    QVERIFY(old.take(Code::OldVersion));
    const QString version = QStringLiteral("V 7.1");
    QVERIFY(!TestClient(server.port()).login("Anna", "first", version));
    TestClient anna(server.port());
    QVERIFY(anna.login(QStringLiteral("Anna"), QStringLiteral("second"), version));
    QCOMPARE(anna.take(Code::AddPlayer).value_or(Message{}).field(5), QStringLiteral("True"));
    anna.send(Code::ChatLine, {QStringLiteral("hi")});
    QCOMPARE(anna.take(Code::ChatLine).value_or(Message{}).field(1), QStringLiteral("33023"));
    QVERIFY(TestClient(server.port()).login("Someone", "pw", version));
}

QTEST_GUILESS_MAIN(TestExecutable)
#include "tst_executable.moc"
