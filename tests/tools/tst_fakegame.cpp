#include "fakegameprocess.h"

#include <QNetworkDatagram>
#include <QTest>
#include <QUdpSocket>

namespace {

// Sends one datagram and returns the first answer, or nothing within the time.
QByteArray ask(quint16 port, const QByteArray &request, int waitMs = 2000)
{
    QUdpSocket socket;
    socket.bind(QHostAddress::LocalHost, 0);
    socket.writeDatagram(request, QHostAddress::LocalHost, port);
    return socket.waitForReadyRead(waitMs) ? socket.receiveDatagram().data() : QByteArray();
}

} // namespace

class TestFakeGame : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(kFakeGame), "build the fakegame target first"); }

    // The reply carries what the options say as key/value pairs in the game's order (the
    // parts of `order` appear in turn); each reply has the next query id; other queries get
    // no answer. What the client reads from a full reply is shown by the game-info tests.
    void replyFollowsOptions()
    {
        FakeGame game;
        QVERIFY(game.start({"-no-timelimit", "-password"}));
        QCOMPARE(ask(game.port, "\\info\\", 200), QByteArray());
        const QByteArray reply = ask(game.port, "\\status\\");
        const QList<QByteArray> order{"\\gamename\\roguespear\\gamever\\",
                                      "\\hostport\\" + QByteArray::number(game.port) + "\\",
                                      "\\numplayers\\0\\", "\\password\\1\\rs_serverlocked\\0\\",
                                      "\\rs_highbandwidth\\0\\final\\\\queryid\\1.1"};
        qsizetype from = 0;
        for (const QByteArray &part : order) {
            from = reply.indexOf(part, from);
            QVERIFY2(from >= 0, (part + " in " + reply).constData());
            from += part.size();
        }
        QVERIFY2(reply.startsWith(order[0]) && reply.endsWith(order.last()), reply.constData());
        QVERIFY2(!reply.contains("timelimit") && !reply.contains("player_"), reply.constData());
        QVERIFY(ask(game.port, "\\status\\").endsWith("\\queryid\\2.1"));
    }

    void refusesBadCommandLines_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("no -server") << QStringList{"-hostname", "x"};
        QTest::newRow("port not a number") << QStringList{"-server", "abc"};
        QTest::newRow("player without ping") << QStringList{"-server", "0", "-player", "Bob:1"};
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
