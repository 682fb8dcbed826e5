#include "support/serverprocess.h"
#include "support/statusquery.h"

#include <QFile>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

class TestFakeGame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(kFakeGame), "build the fakegame target first"); }

    // The reply carries what the options say as key/value pairs in the game's order: the
    // parts of `order` appear in turn. Each reply has the next query id; other queries get
    // no answer.
    void replyFollowsOptions_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("order");
        QTest::addColumn<QByteArray>("lacks");

        QTest::newRow("example")
            << QStringList{"-hostname", "My Game", "-map",        "Peaks",   "-gametype",
                           "Survival",  "-locked", "-maxplayers", "16",      "-timelimit",
                           "600",       "-player", "Bob:1:40",    "-player", "Al:2:55"}
            << QByteArray("\\hostname\\My Game\\hostport\\|\\mapname\\Peaks\\gametype\\Survival"
                          "\\numplayers\\2\\maxplayers\\16\\|\\password\\0\\rs_serverlocked\\1\\"
                          "|\\timelimit\\600\\player_0\\Bob\\team_0\\1\\ping_0\\40\\player_1\\Al"
                          "\\team_1\\2\\ping_1\\55\\final\\\\queryid\\1.1")
            << QByteArray("\\player_2\\");
        QTest::newRow("no time limit, password, nobody")
            << QStringList{"-no-timelimit", "-password"}
            << QByteArray("\\numplayers\\0\\|\\password\\1\\rs_serverlocked\\0\\|"
                          "\\rs_highbandwidth\\0\\final\\\\queryid\\1.1")
            << QByteArray("timelimit");
    }
    void replyFollowsOptions()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, order);
        QFETCH(QByteArray, lacks);

        ServerProcess game;
        QVERIFY(
            game.start(kFakeGame, QStringList{"-server", "0", "-bind", "127.0.0.1"} + arguments));
        // An answer to the other query would come first.
        const QByteArray reply = askStatus(game.port(), {"\\info\\", "\\status\\"});
        QVERIFY2(reply.startsWith("\\gamename\\roguespear\\gamever\\"), reply.constData());
        qsizetype from = 0;
        for (const QByteArray &part : order.split('|')) {
            from = reply.indexOf(part, from);
            QVERIFY2(from >= 0, (part + " in " + reply).constData());
            from += part.size();
        }
        QVERIFY2(reply.endsWith("\\queryid\\1.1") && !reply.contains(lacks), reply.constData());
        QVERIFY(reply.contains("\\hostport\\" + QByteArray::number(game.port()) + "\\"));
        QVERIFY(askStatus(game.port(), {"\\status\\"}).endsWith("\\queryid\\2.1"));
    }

    // Players who join over TCP count until they leave; with every slot taken, one more is
    // turned away.
    void joinedPlayersCountUpToTheSlots()
    {
        ServerProcess game;
        QVERIFY(game.start(kFakeGame, {"-server", "0", "-bind", "127.0.0.1", "-maxplayers", "2",
                                       "-player", "Bob:1:40"}));
        const auto says = [&](const QByteArray &part) {
            return askStatus(game.port(), {"\\status\\"}).contains(part);
        };
        QTcpSocket first, second;
        first.connectToHost(QHostAddress::LocalHost, game.port());
        QTRY_VERIFY(says("\\numplayers\\2\\") && says("\\player_1\\Player 1\\"));
        second.connectToHost(QHostAddress::LocalHost, game.port());
        QTRY_COMPARE(second.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(says("\\numplayers\\2\\"));
        first.disconnectFromHost();
        QTRY_VERIFY(says("\\numplayers\\1\\"));
    }

    // After each round the game in its folder writes RSResults<round>.log: a header of seven
    // 'Key' 'Value' lines, then twelve lines per player with each value at its column, up to
    // a closing character; CR LF line ends.
    void writesResultsLogAfterRound()
    {
        QTemporaryDir folder;
        const QString game = folder.filePath("roguespear.exe");
        QVERIFY(QFile::copy(kFakeGame, game));
        ServerProcess process;
        QVERIFY(
            process.start(game, {"-server", "0", "-bind", "127.0.0.1", "-round", "1", "-gametype",
                                 "Survival", "-player", "Bob:1:40", "-player", "Al:2:55"}));
        QFile log(folder.filePath("RSResults1.log"));
        QVERIFY(QTest::qWaitFor([&] { return log.exists(); }, 5000));
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = log.readAll().split('\n');
        QCOMPARE(lines.size(), 7 + 2 * 12 + 1);
        QVERIFY(lines.first().endsWith('\r') && lines.last().isEmpty());
        // {line, column, value}: the game type, then the fields of both records.
        const QList<std::tuple<int, int, QByteArray>> fields{
            {5, 14, "Survival"}, {9, 15, "1"},   {11, 17, "2"}, {12, 16, "Bob"}, {13, 20, "1"},
            {21, 15, "2"},       {24, 16, "Al"}, {25, 20, "0"}, {29, 24, "Bob"}};
        for (const auto &[line, column, value] : fields)
            QCOMPARE(lines.at(line - 1).chopped(2).mid(column - 1), value);
    }

    void refusesBadCommandLines()
    {
        for (const QStringList &arguments :
             {QStringList{"-hostname", "x"}, QStringList{"-server", "abc"},
              QStringList{"-server", "0", "-player", "Bob:1"}, QStringList{"-client", "1.2.3.4"},
              QStringList{"-server", "0", "-round", "0"},
              QStringList{"-server", "0", "-round", "99999999"}}) {
            const ServerProcess::Result result = ServerProcess::run(kFakeGame, arguments);
            QCOMPARE(result.exitCode, 2);
            // (Qt may warn first about the session it runs in.)
            QVERIFY2(result.err.contains("fakegame: "), qPrintable(arguments.join(u' ')));
        }
    }
};

QTEST_GUILESS_MAIN(TestFakeGame)
#include "tst_fakegame.moc"
