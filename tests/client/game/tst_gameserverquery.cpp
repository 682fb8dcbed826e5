#include "client/game/frmgameinfo.h"
#include "client/game/gameinfo.h"
#include "client/game/gameserverquery.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/roomlisthandlers.h"
#include "client/rooms/roomlistmodel.h"
#include "manualtickcount.h"
#include "protocol/message.h"
#include "udpresponder.h"

#include <QAbstractItemModel>
#include <QLabel>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <memory>

namespace {

const QString kFakeGame = QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/fakegame");

// Everything one query needs, wired as the program wires it.
struct Lobby
{
    RoomListModel rooms;
    GameInfo info;
    ManualTickCount ticks;
    GameServerQuery query{rooms, info, ticks};

    int addGameRow(const QString &address)
    {
        return rooms.appendRow({"N/A", "N/A", "", "In game", "N/A", ""}, address,
                               RoomListModel::RunningGame);
    }
    QStringList row(const QString &address) const
    {
        const int r = rooms.findRowByTag(address);
        QStringList texts;
        for (int c = 0; c < RoomListModel::ColumnCount; ++c)
            texts << rooms.text(r, RoomListModel::Column(c));
        return texts;
    }
};

const QStringList kUntouched{"N/A", "N/A", "", "In game", "N/A", ""};

// Responders on several loopback addresses that share one port, as game servers do.
std::vector<std::unique_ptr<UdpResponder>> respondersOn(const QStringList &addresses)
{
    for (int attempt = 0; attempt < 20; ++attempt) {
        std::vector<std::unique_ptr<UdpResponder>> responders;
        quint16 port = 0;
        for (const QString &address : addresses) {
            auto responder = std::make_unique<UdpResponder>();
            if (!responder->bind(QHostAddress(address), port))
                break;
            port = responder->port();
            responders.push_back(std::move(responder));
        }
        if (responders.size() == size_t(addresses.size()))
            return responders;
    }
    return {};
}

// A running fakegame and the port its status query answers on.
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

QString labelText(QWidget *window, const char *name)
{
    auto *label = window->findChild<QLabel *>(QLatin1String(name));
    return label ? label->text() : QStringLiteral("<missing %1>").arg(QLatin1String(name));
}

} // namespace

class TestGameServerQuery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(kFakeGame), "build the fakegame target first"); }

    void gameInfoWindowShowsFakeGame_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("labels");

        const QStringList example{"-hostname", "My Game",       "-map",        "Training",
                                  "-gametype", "Team Survival", "-maxplayers", "16",
                                  "-locked",   "-timelimit",    "600",         "-player",
                                  "Bob:1:40",  "-player",       "Al:2:55"};
        QStringList labels{"Room name: My Game", "Map: Training", "Game type: Team Survival",
                           "Players: 2/16",      "Password: NO",  "Locked: YES",
                           "Timelimit: 10 min"};
        QTest::newRow("example") << example << labels;
        QStringList noLimit = example;
        noLimit.removeAt(noLimit.indexOf("-timelimit") + 1);
        noLimit.replace(noLimit.indexOf("-timelimit"), "-no-timelimit");
        labels[6] = QStringLiteral("Timelimit: none");
        QTest::newRow("no time limit") << noLimit << labels;
    }
    void gameInfoWindowShowsFakeGame()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, labels);

        FakeGame game;
        QVERIFY(game.start(arguments));
        Lobby lobby;
        lobby.query.setQueryPort(game.port);
        FrmGameInfo window(lobby.info);
        connect(&lobby.info, &GameInfo::showRequested, &window, &QWidget::show);

        lobby.query.queryGameInfo(QStringLiteral("127.0.0.1"));
        QTRY_VERIFY(window.isVisible());

        QCOMPARE(window.objectName(), QStringLiteral("frmGameInfo"));
        QCOMPARE(window.windowTitle(), QStringLiteral("Game Info"));
        QVERIFY(window.windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(
            (QStringList{labelText(&window, "roomNameLabel"), labelText(&window, "mapLabel"),
                         labelText(&window, "gameTypeLabel"), labelText(&window, "playersLabel"),
                         labelText(&window, "passwordLabel"), labelText(&window, "lockedLabel"),
                         labelText(&window, "timeLimitLabel")}),
            labels);
        QCOMPARE(window.roomNameLabel->toolTip(), QStringLiteral("My Game"));

        auto *list = window.findChild<QTreeView *>(QStringLiteral("playerList"));
        QVERIFY(list);
        const QAbstractItemModel *players = list->model();
        QCOMPARE(players->rowCount(), 2);
        QCOMPARE(players->index(0, 0).data().toString(), QStringLiteral("Bob"));
        QCOMPARE(players->index(0, 1).data().toString(), QStringLiteral("40"));
        QCOMPARE(players->index(1, 0).data().toString(), QStringLiteral("Al"));
        QCOMPARE(players->index(1, 1).data().toString(), QStringLiteral("55"));
        // The game-info query leaves the room list alone.
        QCOMPARE(lobby.query.nextPingSlot(), 0);
    }

    // A ping reply fills only the row of the address that answered; the ping is the time
    // between request and reply, right-aligned in eight characters.
    void pingFillsItsRow_data()
    {
        QTest::addColumn<qint64>("elapsed");
        QTest::addColumn<QString>("ping");

        QTest::newRow("7 ms") << qint64(7) << QStringLiteral("       7");
        QTest::newRow("0 ms") << qint64(0) << QStringLiteral("       0");
        QTest::newRow("seven digits") << qint64(1234567) << QStringLiteral(" 1234567");
        QTest::newRow("eight digits") << qint64(12345678) << QStringLiteral("12345678");
    }
    void pingFillsItsRow()
    {
        QFETCH(qint64, elapsed);
        QFETCH(QString, ping);

        auto responders = respondersOn({"127.0.0.2", "127.0.0.3"});
        QVERIFY(!responders.empty());
        responders[0]->setReply(exampleReply());
        Lobby lobby;
        lobby.query.setQueryPort(responders[0]->port());
        lobby.addGameRow(QStringLiteral("127.0.0.3"));
        lobby.addGameRow(QStringLiteral("127.0.0.2"));

        lobby.ticks.set(5000);
        lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        lobby.ticks.set(5000 + elapsed);
        QTRY_COMPARE(lobby.row(QStringLiteral("127.0.0.2")),
                     (QStringList{"Bob", "My Game", ping, "In game", "       2", "Training"}));
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.3")), kUntouched);
        QCOMPARE(lobby.query.nextPingSlot(), 1);
        QCOMPARE(lobby.query.localPort(1), quint16(0)); // released after its reply
        QCOMPARE(responders[0]->requests.size(), 1);
        QCOMPARE(responders[0]->requests[0].data(), QByteArray("\\status\\"));
    }

    // Datagrams without "queryid" are not replies; the socket still takes the real one.
    void replyWithoutQueryIdIgnored_data()
    {
        QTest::addColumn<bool>("gameInfoSlot");
        QTest::newRow("ping") << false;
        QTest::newRow("game info") << true;
    }
    void replyWithoutQueryIdIgnored()
    {
        QFETCH(bool, gameInfoSlot);

        auto responders = respondersOn({"127.0.0.2"});
        QVERIFY(!responders.empty());
        UdpResponder &server = *responders[0];
        Lobby lobby;
        lobby.query.setQueryPort(server.port());
        lobby.addGameRow(QStringLiteral("127.0.0.2"));
        QSignalSpy changed(&lobby.info, &GameInfo::changed);
        QSignalSpy shown(&lobby.info, &GameInfo::showRequested);

        if (gameInfoSlot)
            lobby.query.queryGameInfo(QStringLiteral("127.0.0.2"));
        else
            lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        QTRY_COMPARE(server.requests.size(), 1);
        const quint16 clientPort = quint16(server.requests[0].senderPort());

        QByteArray noId = exampleReply();
        noId.replace("queryid", "queryXX");
        server.sendTo(noId, clientPort);
        QTest::qWait(100);
        QCOMPARE(changed.size(), 0);
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.2")), kUntouched);

        server.sendTo(exampleReply(), clientPort);
        QTRY_COMPARE(changed.size(), 1);
        QCOMPARE(shown.size(), gameInfoSlot ? 1 : 0);
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.2"))[0],
                 gameInfoSlot ? QStringLiteral("N/A") : QStringLiteral("Bob"));
    }

    // A reply from an address without a row is parsed but fills nothing, and its socket goes,
    // so the real server's late answer finds no one listening.
    void replyFromUnknownAddressDropped()
    {
        auto responders = respondersOn({"127.0.0.2", "127.0.0.4"});
        QVERIFY(!responders.empty());
        UdpResponder &server = *responders[0];
        UdpResponder &stranger = *responders[1];
        Lobby lobby;
        lobby.query.setQueryPort(server.port());
        lobby.addGameRow(QStringLiteral("127.0.0.2"));
        QSignalSpy changed(&lobby.info, &GameInfo::changed);

        lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        QTRY_COMPARE(server.requests.size(), 1);
        const quint16 clientPort = quint16(server.requests[0].senderPort());
        QCOMPARE(lobby.query.localPort(1), clientPort);

        stranger.sendTo(exampleReply(), clientPort);
        QTRY_COMPARE(changed.size(), 1);
        QCOMPARE(lobby.info.getTestArray(2, 3), QStringLiteral("\\My Game\\"));
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.2")), kUntouched);
        QCOMPARE(lobby.query.localPort(1), quint16(0));

        server.sendTo(exampleReply(), clientPort);
        QTest::qWait(100);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.2")), kUntouched);
    }

    // Slots are used in turn from 1 to 100; the 101st ping takes slot 1 again and its old
    // socket, still waiting for a server that never answered, is gone.
    void hundredAndFirstPingReusesSlotOne()
    {
        auto responders = respondersOn({"127.0.0.2", "127.0.0.3"});
        QVERIFY(!responders.empty());
        UdpResponder &silent = *responders[0];
        UdpResponder &answering = *responders[1];
        answering.setReply(exampleReply());
        Lobby lobby;
        lobby.query.setQueryPort(silent.port());
        lobby.addGameRow(QStringLiteral("127.0.0.2"));
        lobby.addGameRow(QStringLiteral("127.0.0.3"));

        for (int i = 1; i <= 100; ++i) {
            lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
            QCOMPARE(lobby.query.nextPingSlot(), i);
        }
        QTRY_COMPARE(silent.requests.size(), 100);
        const quint16 firstSlotPort = lobby.query.localPort(1);
        const quint16 secondSlotPort = lobby.query.localPort(2);

        lobby.query.pingGameServer(QStringLiteral("127.0.0.3"));
        QCOMPARE(lobby.query.nextPingSlot(), 1);
        QTRY_COMPARE(lobby.row(QStringLiteral("127.0.0.3"))[0], QStringLiteral("Bob"));

        silent.sendTo(exampleReply(), firstSlotPort);
        QTest::qWait(100);
        QCOMPARE(lobby.row(QStringLiteral("127.0.0.2")), kUntouched);
        silent.sendTo(exampleReply(), secondSlotPort);
        QTRY_COMPARE(lobby.row(QStringLiteral("127.0.0.2"))[0], QStringLiteral("Bob"));
    }

    // Refresh pings the running-game rows in list order and leaves rooms alone.
    void refreshPingsOnlyRunningGames()
    {
        auto responders = respondersOn({"127.0.0.2", "127.0.0.3", "127.0.0.4"});
        QVERIFY(!responders.empty());
        Lobby lobby;
        lobby.query.setQueryPort(responders[0]->port());
        lobby.addGameRow(QStringLiteral("127.0.0.3"));
        lobby.rooms.appendRow({"Host", "Room", "", "In chat", "       1", ""},
                              QStringLiteral("127.0.0.2"), RoomListModel::OpenRoom);
        lobby.addGameRow(QStringLiteral("127.0.0.4"));

        lobby.query.refreshPings();
        QCOMPARE(lobby.query.nextPingSlot(), 2);
        QTRY_COMPARE(responders[1]->requests.size(), 1);
        QTRY_COMPARE(responders[2]->requests.size(), 1);
        QTest::qWait(50);
        QCOMPARE(responders[0]->requests.size(), 0);
        QCOMPARE(quint16(responders[1]->requests[0].senderPort()), lobby.query.localPort(1));
        QCOMPARE(quint16(responders[2]->requests[0].senderPort()), lobby.query.localPort(2));
    }

    // Replies with many players, few keys or random bytes never crash, and texts too short
    // to carry their backslashes leave the columns as they were.
    void oddRepliesKeepTheListWhole_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QStringList>("row");

        QByteArray forty = exampleReply();
        forty.truncate(forty.indexOf("\\player_0"));
        forty.replace("\\numplayers\\2", "\\numplayers\\40");
        for (int j = 0; j < 40; ++j)
            forty += QStringLiteral("\\player_%1\\P%1\\team_%1\\1\\ping_%1\\%2")
                         .arg(j)
                         .arg(j + 20)
                         .toLatin1();
        forty += "\\final\\\\queryid\\2.1";
        QTest::newRow("forty players")
            << forty << QStringList{"P0", "My Game", "       3", "In game", "      40", "Training"};
        QTest::newRow("only a query id")
            << QByteArray("\\queryid\\1.1")
            << QStringList{"N/A", "N/A", "       3", "In game", "        ", ""};
        QTest::newRow("empty values")
            << QByteArray("\\hostname\\\\hostport\\\\mapname\\\\gametype\\\\numplayers\\\\"
                          "maxplayers\\\\final\\\\queryid\\1.1")
            << QStringList{"N/A", "", "       3", "In game", "        ", ""};
        QByteArray junk(900, Qt::Uninitialized);
        QRandomGenerator random(11);
        for (char &byte : junk)
            byte = char(random.bounded(256));
        QTest::newRow("random bytes")
            << junk.insert(300, "queryid")
            << QStringList{"N/A", "N/A", "       3", "In game", "        ", ""};
    }
    void oddRepliesKeepTheListWhole()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QStringList, row);

        auto responders = respondersOn({"127.0.0.2"});
        QVERIFY(!responders.empty());
        responders[0]->setReply(reply);
        Lobby lobby;
        lobby.query.setQueryPort(responders[0]->port());
        lobby.addGameRow(QStringLiteral("127.0.0.2"));
        lobby.ticks.set(100);
        lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        lobby.ticks.set(103);
        QTRY_COMPARE(lobby.row(QStringLiteral("127.0.0.2")), row);
    }

    // Wired as the program wires it: a room that closes because its game runs becomes a
    // running-game row, which is queried at once and filled from the game's answer.
    void roomWhoseGameRunsGetsFilled()
    {
        FakeGame game;
        QVERIFY(game.start({"-hostname", "Night Ops", "-map", "Alcatraz", "-player", "Eve:1:12"}));
        Lobby lobby;
        lobby.query.setQueryPort(game.port);
        LobbyDispatcher dispatcher;
        RoomListHandlers handlers(lobby.rooms, dispatcher, {});
        connect(&handlers, &RoomListHandlers::gameRowAdded, &lobby.query,
                &GameServerQuery::pingGameServer);

        dispatcher.receive(protocol::buildMessage(
            protocol::Code::AddRoom, {"Eve", "Room", "127.0.0.1", "In chat", "2", "0"}));
        dispatcher.receive(protocol::buildMessage(protocol::Code::RemoveRoom, {"Eve", "1"}));
        QCOMPARE(lobby.query.nextPingSlot(), 1);
        QTRY_COMPARE(lobby.row(QStringLiteral("127.0.0.1"))[5], QStringLiteral("Alcatraz"));
        QStringList row = lobby.row(QStringLiteral("127.0.0.1"));
        QVERIFY2(QRegularExpression(QStringLiteral("^ {7}[0-9]$")).match(row[2]).hasMatch(),
                 qPrintable(row[2])); // the manual tick count stands still: 0 ms
        row[2].clear();
        QCOMPARE(row, (QStringList{"Eve", "Night Ops", "", "In game", "       1", "Alcatraz"}));
        QCOMPARE(lobby.rooms.icon(0), RoomListModel::RunningGame);
    }
};

QTEST_MAIN(TestGameServerQuery)
#include "tst_gameserverquery.moc"
