// The quorvel-server command line: the listening line, refusals with clear messages and
// non-zero exits, and the account commands working on the database file.
#include "serverprocess.h"
#include "testclient.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>

using protocol::Code;

class TestExecutable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refusesToStart_data();
    void refusesToStart();
    void refusesNewerDatabase();
    void accountCommands();
    void optionsReachTheLobby();
};

void TestExecutable::refusesToStart_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");
    QTest::newRow("unknown option") << QStringList{"--colours"} << "Unknown option";
    QTest::newRow("port not a number") << QStringList{"--port", "http"} << "--port";
    QTest::newRow("port too large") << QStringList{"--port", "70000"} << "--port";
    QTest::newRow("bad registration") << QStringList{"--registration", "maybe"} << "--registration";
    QTest::newRow("bad listen address") << QStringList{"--listen", "nowhere"} << "--listen";
    QTest::newRow("bad idle limit") << QStringList{"--idle-timeout", "-1"} << "--idle-timeout";
    QTest::newRow("database is a folder")
        << QStringList{"--db", QStringLiteral(QUORVEL_BINARY_DIR), "--port", "0"}
        << "cannot open the database";
    QTest::newRow("account command incomplete")
        << QStringList{"account", "add", "Anna"} << "unknown account command";
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

void TestExecutable::refusesNewerDatabase()
{
    QTemporaryDir dir;
    const QString path = dir.filePath("lobby.sqlite");
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("newer"));
        db.setDatabaseName(path);
        QVERIFY(db.open());
        QVERIFY(QSqlQuery(db).exec(QStringLiteral("PRAGMA user_version = 99")));
        db.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("newer"));
    const ServerProcess::Result result = ServerProcess::run({"--db", path, "--port", "0"});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.err.contains(QLatin1String("newer than this server")), qPrintable(result.err));
}

void TestExecutable::accountCommands()
{
    QTemporaryDir dir;
    const QStringList db{"--db", dir.filePath("lobby.sqlite")};
    ServerProcess::Result r = ServerProcess::run(
        QStringList{"account", "add", "Anna", "first", "--email", "anna@example.org"} + db);
    QCOMPARE(r.exitCode, 0);
    r = ServerProcess::run(QStringList{"account", "add", "ANNA", "x"} + db);
    QCOMPARE(r.exitCode, 1);
    QVERIFY(r.err.contains(QLatin1String("exists")));
    QCOMPARE(ServerProcess::run(QStringList{"account", "password", "anna", "second"} + db).exitCode,
             0);
    QCOMPARE(ServerProcess::run(QStringList{"account", "password", "nobody", "x"} + db).exitCode,
             1);
    QCOMPARE(ServerProcess::run(
                 QStringList{"account", "moderator", "Anna", "on", "--colour", "0x0080FF"} + db)
                 .exitCode,
             0);
    r = ServerProcess::run(QStringList{"account", "list"} + db);
    QCOMPARE(r.exitCode, 0);
    QVERIFY2(r.out.contains(QLatin1String("1\tAnna\tyes\t33023\tanna@example.org")),
             qPrintable(r.out));

    // The lobby sees what the commands wrote: the new password, the flag and the colour.
    ServerProcess server;
    QVERIFY(server.start(db));
    TestClient old(server.port());
    QVERIFY(!old.login(QStringLiteral("Anna"), QStringLiteral("first")));
    TestClient anna(server.port());
    QVERIFY(anna.login(QStringLiteral("Anna"), QStringLiteral("second")));
    const std::optional<protocol::Message> self = anna.take(Code::AddPlayer);
    QVERIFY(self);
    QCOMPARE(self->field(5), QStringLiteral("True"));
    anna.send(Code::ChatLine, {QStringLiteral("hi")});
    const std::optional<protocol::Message> line = anna.take(Code::ChatLine);
    QVERIFY(line);
    QCOMPARE(line->field(1), QStringLiteral("33023"));
}

void TestExecutable::optionsReachTheLobby()
{
    QTemporaryDir dir;
    // Port in use: a clear refusal.
    QTcpServer occupied;
    QVERIFY(occupied.listen(QHostAddress::Any, 0));
    const ServerProcess::Result busy = ServerProcess::run(
        {"--db", dir.filePath("a.sqlite"), "--port", QString::number(occupied.serverPort())});
    QCOMPARE(busy.exitCode, 1);
    QVERIFY2(busy.err.contains(QLatin1String("cannot listen")), qPrintable(busy.err));

    ServerProcess server;
    QVERIFY(server.start({"--db", dir.filePath("b.sqlite"), "--versions", "V 7.0, V 7.1",
                          "--registration", "open", "--listen", "127.0.0.1"}));
    TestClient old(server.port());
    old.send(Code::Version, {QStringLiteral("V 6.0")});
    QVERIFY(old.take(Code::OldVersion));
    TestClient current(server.port());
    QVERIFY(current.greet(QStringLiteral("V 7.1")));
    current.send(Code::Login, {QStringLiteral("Someone"), QStringLiteral("pw")});
    QVERIFY(current.take(Code::LoginAccepted));
}

QTEST_GUILESS_MAIN(TestExecutable)
#include "tst_executable.moc"
