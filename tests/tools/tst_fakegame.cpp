#include <QNetworkDatagram>
#include <QProcess>
#include <QTest>
#include <QUdpSocket>

namespace {

const QString kFakeGame = QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/fakegame");

// A fakegame answering on 127.0.0.1 and any free port.
struct FakeGame
{
    QProcess process;
    quint16 port = 0;

    bool start(const QStringList &arguments)
    {
        process.start(kFakeGame, QStringList{"-server", "0", "-bind", "127.0.0.1"} + arguments);
        if (!process.waitForStarted() || !process.waitForReadyRead(5000))
            return false;
        const QList<QByteArray> words = process.readLine().trimmed().split(' ');
        port = words.size() == 3 ? words[2].toUShort() : 0;
        return port != 0;
    }
    ~FakeGame()
    {
        process.kill();
        process.waitForFinished();
    }
};

// Sends one datagram and returns the first answer, or nothing within the time.
QByteArray ask(quint16 port, const QByteArray &request, int waitMs = 2000)
{
    QUdpSocket socket;
    socket.bind(QHostAddress::LocalHost, 0);
    socket.writeDatagram(request, QHostAddress::LocalHost, port);
    if (!socket.waitForReadyRead(waitMs))
        return {};
    return socket.receiveDatagram().data();
}

} // namespace

class TestFakeGame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(kFakeGame), "build the fakegame target first"); }

    // The reply carries what the options say, as key/value pairs in the game's order.
    void replyFollowsOptions_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("contains");
        QTest::addColumn<QByteArray>("lacks");

        QTest::newRow("example")
            << QStringList{"-hostname", "My Game", "-map",        "Peaks",   "-gametype",
                           "Survival",  "-locked", "-maxplayers", "16",      "-timelimit",
                           "600",       "-player", "Bob:1:40",    "-player", "Al:2:55"}
            << QByteArray("\\hostname\\My Game\\hostport\\") +
                   "|\\mapname\\Peaks\\gametype\\Survival\\numplayers\\2\\maxplayers\\16\\" +
                   "|\\password\\0\\rs_serverlocked\\1\\" +
                   "|\\timelimit\\600\\player_0\\Bob\\team_0\\1\\ping_0\\40" +
                   "\\player_1\\Al\\team_1\\2\\ping_1\\55\\final\\\\queryid\\1.1"
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
        QFETCH(QByteArray, contains);
        QFETCH(QByteArray, lacks);

        FakeGame game;
        QVERIFY(game.start(arguments));
        const QByteArray reply = ask(game.port, "\\status\\");
        QVERIFY2(reply.startsWith("\\gamename\\roguespear\\gamever\\"), reply.constData());
        qsizetype from = 0;
        for (const QByteArray &part : contains.split('|')) {
            const qsizetype at = reply.indexOf(part, from);
            QVERIFY2(at >= 0, (part + " in " + reply).constData());
            from = at + part.size();
        }
        QVERIFY2(!reply.contains(lacks), reply.constData());
        QVERIFY(reply.contains(QByteArray("\\hostport\\") + QByteArray::number(game.port) + "\\"));
    }

    void answersOnlyTheStatusQuery()
    {
        FakeGame game;
        QVERIFY(game.start({}));
        QCOMPARE(ask(game.port, "\\info\\", 200), QByteArray());
        QVERIFY(ask(game.port, "\\status\\").endsWith("\\queryid\\1.1"));
        QVERIFY(ask(game.port, "\\status\\").endsWith("\\queryid\\2.1"));
    }

    void refusesBadCommandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no -server") << QStringList{"-hostname", "x"};
        QTest::newRow("port not a number") << QStringList{"-server", "abc"};
        QTest::newRow("player without ping") << QStringList{"-server", "0", "-player", "Bob:1"};
        QTest::newRow("bad address") << QStringList{"-server", "0", "-bind", "nowhere"};
    }
    void refusesBadCommandLines()
    {
        QFETCH(QStringList, arguments);
        QProcess process;
        process.start(kFakeGame, arguments);
        QVERIFY(process.waitForFinished(5000));
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardError().startsWith("fakegame: "));
    }
};

QTEST_GUILESS_MAIN(TestFakeGame)
#include "tst_fakegame.moc"
