#include "client/game/frmgameinfo.h"
#include "client/game/gameinfo.h"
#include "client/game/gameserverquery.h"
#include "client/rooms/roomlistmodel.h"
#include "support/clientfakes.h"
#include "udpresponder.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>
#include <memory>

using namespace client;

namespace {

// Drops "\key\value" from a reply.
QString without(QString reply, const QString &key)
{
    const qsizetype at = reply.indexOf(u'\\' + key + u'\\');
    return reply.remove(at, reply.indexOf(u'\\', at + key.size() + 2) - at);
}

QString example()
{
    return QString::fromLatin1(exampleReply());
}

// The reply with each key of `values` given a new value.
QString with(QString reply, const QList<std::pair<QString, QString>> &values)
{
    for (const auto &[key, value] : values) {
        const qsizetype start = reply.indexOf(u'\\' + key + u'\\') + key.size() + 2;
        reply.replace(start, reply.indexOf(u'\\', start) - start, value);
    }
    return reply;
}

const QStringList kUntouched{"N/A", "N/A", "", "In game", "N/A", ""};

// Everything one query needs, wired as the program wires it, and game servers on several
// loopback addresses that share one port, as game servers do.
struct Lobby
{
    RoomListModel rooms;
    GameInfo info;
    ManualTickCount ticks;
    GameServerQuery query{rooms, info, ticks};
    std::vector<std::unique_ptr<UdpResponder>> servers;

    // Binds a responder on each of `addresses` and adds a running-game row for each of `rows`.
    bool start(const QStringList &addresses, const QStringList &rows)
    {
        for (int attempt = 0; attempt < 20 && servers.size() < size_t(addresses.size());
             ++attempt) {
            servers.clear();
            for (const QString &address : addresses) {
                auto server = std::make_unique<UdpResponder>();
                if (!server->socket.bind(QHostAddress(address), servers.empty() ? 0 : port()))
                    break;
                servers.push_back(std::move(server));
            }
        }
        if (servers.size() != size_t(addresses.size()))
            return false;
        query.setQueryPort(port());
        for (const QString &address : rows)
            rooms.appendRow(kUntouched, address, RoomListModel::RunningGame);
        return true;
    }
    quint16 port() const { return servers.front()->socket.localPort(); }
    QStringList row(const QString &address) const
    {
        const int r = rooms.findRowByTag(address);
        QStringList texts;
        for (int c = 0; c < RoomListModel::ColumnCount; ++c)
            texts << rooms.text(r, RoomListModel::Column(c));
        return texts;
    }
    // The port the query's request to `server` came from.
    quint16 clientPort(int server) const
    {
        return quint16(servers[server]->requests.value(0).senderPort());
    }
};

} // namespace

class TestGameQuery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A second reply that lacks a key (or the key after it) keeps the first reply's value.
    void missingKeysKeepEarlierValues_data()
    {
        QTest::addColumn<QString>("second");
        QTest::addColumn<QList<int>>("keptRows");

        const QString renamed = with(example(), {{"hostname", "Other"}, {"mapname", "Peaks"}});
        QTest::newRow("no mapname") << without(renamed, "mapname") << QList<int>{5, 6};
        QTest::newRow("no players: the time limit keeps")
            << renamed.left(renamed.indexOf("\\player_0")) + "\\final\\\\queryid\\1.1"
            << QList<int>{18};
        QTest::newRow("keys out of order: the misplaced one keeps")
            << without(renamed, "gametype").replace("\\gamename\\", "\\gametype\\CTF\\gamename\\")
            << QList<int>{6, 7};
    }
    void missingKeysKeepEarlierValues()
    {
        QFETCH(QString, second);
        QFETCH(QList<int>, keptRows);

        GameInfo first, fresh, both;
        first.addInfo(example(), false);
        fresh.addInfo(second, false);
        both.addInfo(example(), false);
        both.addInfo(second, false);
        for (int row = 1; row <= 18; ++row) {
            const QString expected =
                keptRows.contains(row) ? first.getTestArray(2, row) : fresh.getTestArray(2, row);
            QVERIFY2(both.getTestArray(2, row) == expected, qPrintable(QString::number(row)));
        }
    }

    // "numplayers" is read as a number and truncated; no more than sixteen players are
    // read, missing ones empty; the players of an earlier reply never carry over. (A word for a
    // number is 0: see the time limit in the game-info window.)
    void playerCount_data()
    {
        QTest::addColumn<QString>("numplayers");
        QTest::addColumn<int>("listed");
        QTest::addColumn<int>("count");
        QTest::newRow("fraction truncated") << "2.9" << 3 << 2;
        QTest::newRow("huge, one listed") << "99999999999" << 1 << std::numeric_limits<int>::max();
    }
    void playerCount()
    {
        QFETCH(QString, numplayers);
        QFETCH(int, listed);
        QFETCH(int, count);

        const QString reply = with(example(), {{"numplayers", numplayers}});
        GameInfo info;
        info.addInfo(example(), false);
        info.addInfo(reply.left(reply.indexOf("\\player_0")) +
                         QString::fromLatin1(playerKeys(listed)),
                     false);
        QCOMPARE(info.table().playerCount(), count);
        QStringList expected, held;
        for (int j = 0; j < std::min(count, 16); ++j)
            expected << (j < listed ? QStringLiteral("\\P%1\\").arg(j) : QString());
        for (const StatusTable::Player &player : info.table().players())
            held << player.name;
        QCOMPARE(held, expected);
        QCOMPARE(info.playersModel()->rowCount(), expected.size());
    }

    // A reply shown in the game-info window: seven labels, their tool tips and the players.
    void gameInfoWindow_data()
    {
        QTest::addColumn<QString>("reply");
        QTest::addColumn<QStringList>("texts");
        const QStringList texts{"Room name: My Game", "Map: Training", "Game type: Team Survival",
                                "Players: 2/16",      "Password: NO",  "Locked: YES",
                                "Timelimit: 10 min"};
        const auto row = [&](const char *tag, const QString &reply,
                             const QList<std::pair<int, QString>> &changes = {}) {
            QStringList changed = texts;
            for (const auto &[at, text] : changes)
                changed[at] = text;
            QTest::newRow(tag) << reply << changed;
        };
        row("example", example());
        row("no time limit", without(example(), "timelimit"), {{6, "Timelimit: none"}});
        row("empty password flag, unlocked, 90 s",
            with(example(), {{"password", ""}, {"rs_serverlocked", "0"}, {"timelimit", "90"}}),
            {{4, "Password: YES"}, {5, "Locked: NO"}, {6, "Timelimit: 1.5 min"}});
        const QString name(40, u'n'), map(36, u'm');
        row("long names cut to 35, word for a limit",
            with(example(), {{"hostname", name}, {"mapname", map}, {"timelimit", "x"}}),
            {{0, "Room name: " + name.left(35)},
             {1, "Map: " + map.left(35)},
             {6, "Timelimit: 0 min"}});
    }
    void gameInfoWindow()
    {
        QFETCH(QString, reply);
        QFETCH(QStringList, texts);
        GameInfo info;
        FrmGameInfo window(info);
        info.addInfo(reply, true);
        QStringList labels;
        for (const QLabel *label :
             {window.roomNameLabel, window.mapLabel, window.gameTypeLabel, window.playersLabel,
              window.passwordLabel, window.lockedLabel, window.timeLimitLabel})
            labels << label->text();
        QCOMPARE(labels, texts);
        QCOMPARE(window.roomNameLabel->toolTip(), withoutBackslashes(info.getTestArray(2, 3)));
        QCOMPARE(window.mapLabel->toolTip(), withoutBackslashes(info.getTestArray(2, 6)));
        QStringList players;
        for (int r = 0; r < window.playerList->model()->rowCount(); ++r)
            players << window.playerList->model()->index(r, 0).data().toString()
                    << window.playerList->model()->index(r, 1).data().toString();
        QCOMPARE(players, (QStringList{"Bob", "40", "Al", "55"}));
        // The table keeps the values with their backslashes; column 1 names the keys.
        QCOMPARE((QStringList{info.getTestArray(1, 3), info.getTestArray(2, 1), info.getSpelare()}),
                 (QStringList{"hostname\\", "\\roguespear\\", "\\Bob\\"}));
    }

    // Stray datagrams: one without "queryid" is no reply, and the game-info socket still takes
    // the real one after it; a ping's reply from an address without a row is parsed but fills
    // nothing, and its socket goes, so the real server's late answer finds no one.
    void strayDatagrams()
    {
        Lobby lobby;
        QVERIFY(lobby.start({"127.0.0.2", "127.0.0.4"}, {"127.0.0.2"}));
        QSignalSpy changed(&lobby.info, &GameInfo::changed);
        QSignalSpy shown(&lobby.info, &GameInfo::showRequested);
        lobby.query.queryGameInfo(QStringLiteral("127.0.0.2"));
        QTRY_COMPARE(lobby.servers[0]->requests.size(), 1);
        const quint16 infoPort = lobby.clientPort(0);
        const QString stray = with(example(), {{"hostname", "Stray"}});
        lobby.servers[0]->sendTo(stray.toLatin1().replace("queryid", "queryXX"), infoPort);
        lobby.servers[0]->sendTo(exampleReply(), infoPort);
        QTRY_COMPARE(shown.size(), 1);
        QCOMPARE(lobby.info.getTestArray(2, 3), QStringLiteral("\\My Game\\"));

        lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        QTRY_COMPARE(lobby.servers[0]->requests.size(), 2);
        const quint16 pingPort = quint16(lobby.servers[0]->requests[1].senderPort());
        lobby.servers[1]->sendTo(exampleReply(), pingPort);
        QTRY_COMPARE(changed.size(), 2);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(lobby.row("127.0.0.2"), kUntouched);
        QUdpSocket probe; // binds only where nothing listens any more
        QVERIFY(!probe.bind(QHostAddress::LocalHost, infoPort));
        QVERIFY(probe.bind(QHostAddress::LocalHost, pingPort));
    }

    // The game-info window opens only for the answer of the server asked last, from its game
    // port: not for another address, another port, or an earlier server.
    void gameInfoTakesOnlyTheServerAsked_data()
    {
        QTest::addColumn<QString>("asked");
        QTest::addColumn<QString>("from");
        QTest::addColumn<bool>("otherPort");
        QTest::addColumn<bool>("shown");
        QTest::newRow("the server asked") << "127.0.0.2"
                                          << "127.0.0.2" << false << true;
        QTest::newRow("another address") << "127.0.0.2"
                                         << "127.0.0.4" << false << false;
        QTest::newRow("another port") << "127.0.0.2"
                                      << "127.0.0.2" << true << false;
        QTest::newRow("the server asked before") << "127.0.0.4"
                                                 << "127.0.0.2" << false << false;
    }
    void gameInfoTakesOnlyTheServerAsked()
    {
        QFETCH(QString, asked);
        QFETCH(QString, from);
        QFETCH(bool, otherPort);
        QFETCH(bool, shown);
        Lobby lobby;
        QVERIFY(lobby.start({"127.0.0.2", "127.0.0.4"}, {}));
        QSignalSpy showRequested(&lobby.info, &GameInfo::showRequested);
        lobby.query.queryGameInfo(QStringLiteral("127.0.0.2"));
        QTRY_COMPARE(lobby.servers[0]->requests.size(), 1);
        lobby.query.queryGameInfo(asked);
        const quint16 infoPort = lobby.clientPort(0);

        UdpResponder elsewhere;
        QVERIFY(elsewhere.socket.bind(QHostAddress(from), 0));
        UdpResponder &sender = otherPort ? elsewhere : *lobby.servers[from == "127.0.0.2" ? 0 : 1];
        sender.socket.writeDatagram(exampleReply(), QHostAddress::LocalHost, infoPort);
        // A reply that counts, sent after it, marks the end of the wait.
        lobby.servers[asked == "127.0.0.2" ? 0 : 1]->sendTo(
            with(example(), {{"hostname", "Last"}}).toLatin1(), infoPort);
        QTRY_COMPARE(lobby.info.getTestArray(2, 3), QStringLiteral("\\Last\\"));
        QCOMPARE(showRequested.size(), shown ? 2 : 1);
    }

    // Slots are used in turn from 1 to 100; the 101st ping takes slot 1 again and its old
    // socket, still waiting for a server that never answered, is gone.
    void hundredAndFirstPingReusesSlotOne()
    {
        Lobby lobby;
        QVERIFY(lobby.start({"127.0.0.2", "127.0.0.3"}, {"127.0.0.2", "127.0.0.3"}));
        UdpResponder &silent = *lobby.servers[0];
        lobby.servers[1]->reply = exampleReply();
        for (int i = 1; i <= 100; ++i)
            lobby.query.pingGameServer(QStringLiteral("127.0.0.2"));
        QCOMPARE(lobby.query.nextPingSlot(), 100);
        QTRY_COMPARE(silent.requests.size(), 100);
        const quint16 firstSlotPort = lobby.query.localPort(1);
        const quint16 secondSlotPort = lobby.query.localPort(2);

        lobby.query.pingGameServer(QStringLiteral("127.0.0.3"));
        QCOMPARE(lobby.query.nextPingSlot(), 1);
        QTRY_COMPARE(lobby.row("127.0.0.3")[0], QStringLiteral("Bob"));
        QUdpSocket probe; // binds only when nothing listens there any more
        QVERIFY(probe.bind(QHostAddress::LocalHost, firstSlotPort));
        QCOMPARE(lobby.row("127.0.0.2"), kUntouched);
        silent.sendTo(exampleReply(), secondSlotPort);
        QTRY_COMPARE(lobby.row("127.0.0.2")[0], QStringLiteral("Bob"));
    }

    // Refresh pings the running-game rows in list order and leaves rooms alone. A "\status\"
    // ping's reply fills the row of the address that answered, the ping being the time between
    // request and reply right-aligned in eight characters, and its socket goes. Texts too
    // short to carry their backslashes leave the columns as they were.
    void refreshFillsTheRowsThatAnswer()
    {
        Lobby lobby;
        QVERIFY(lobby.start({"127.0.0.2", "127.0.0.3", "127.0.0.4"}, {"127.0.0.2"}));
        lobby.rooms.appendRow({"Host", "Room", "", "In chat", "       1", ""},
                              QStringLiteral("127.0.0.4"), RoomListModel::OpenRoom);
        lobby.rooms.appendRow(kUntouched, QStringLiteral("127.0.0.3"), RoomListModel::RunningGame);
        lobby.ticks.set(5000);
        lobby.query.refreshPings();
        QTRY_VERIFY(lobby.servers[0]->requests.size() == 1 &&
                    lobby.servers[1]->requests.size() == 1);
        QCOMPARE(lobby.servers[0]->requests[0].data(), QByteArray("\\status\\"));
        QCOMPARE(lobby.clientPort(0), lobby.query.localPort(1));
        QCOMPARE(lobby.clientPort(1), lobby.query.localPort(2));
        // Sent before the last one, a request to the room would be there by now.
        QVERIFY(lobby.servers[2]->requests.isEmpty() &&
                !lobby.servers[2]->socket.hasPendingDatagrams());

        lobby.ticks.set(5007);
        lobby.servers[1]->sendTo("\\hostname\\\\hostport\\\\mapname\\\\gametype\\\\numplayers\\\\"
                                 "maxplayers\\\\final\\\\queryid\\1.1",
                                 lobby.clientPort(1));
        QTRY_COMPARE(lobby.row("127.0.0.3"),
                     (QStringList{"N/A", "", "       7", "In game", "        ", ""}));
        QCOMPARE(lobby.row("127.0.0.2"), kUntouched);
        lobby.servers[0]->sendTo(exampleReply(), lobby.clientPort(0));
        QTRY_COMPARE(lobby.row("127.0.0.2"), (QStringList{"Bob", "My Game", "       7", "In game",
                                                          "       2", "Training"}));
        QCOMPARE(lobby.query.localPort(1), quint16(0));
    }
};

QTEST_MAIN(TestGameQuery)
#include "tst_gameserverquery.moc"
