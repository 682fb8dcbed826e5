#include "client/game/fullgamewatch.h"
#include "client/game/gameinfo.h"
#include "client/game/gamerowmenu.h"
#include "client/game/gameserverquery.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"
#include "support/clientfakes.h"
#include "support/serverprocess.h"
#include "support/statusquery.h"

#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

using namespace client;

namespace {

const QStringList kColumns{"Bob", "Full House", "", "In game", "       1", "Peaks"};

// The watch and its row menu over the real status query, wired as in the program, the tick
// counter in the test's hands.
struct Rig
{
    RoomListModel rooms;
    GameInfo info;
    ManualTickCount ticks;
    SessionState session;
    GameServerQuery query{rooms, info, ticks};
    FullGameWatch watch{rooms, session, ticks};
    FakeDialogs dialogs;
    QTreeView view;
    GameRowMenu menu{view, rooms, watch, session, dialogs};
    QSignalSpy asked{&watch, &FullGameWatch::statusWanted};
    QSignalSpy answered{&query, &GameServerQuery::gameAnswered};
    QSignalSpy freed{&watch, &FullGameWatch::roomFreed};

    Rig()
    {
        // Nothing answers there, unless a test points the query at a game.
        query.setQueryPort(9);
        QObject::connect(&watch, &FullGameWatch::statusWanted, &query,
                         &GameServerQuery::pingGameServer);
        QObject::connect(&query, &GameServerQuery::gameAnswered, &watch,
                         &FullGameWatch::gameAnswered);
    }
    // A running-game row for each address, full unless said otherwise.
    void addGames(const QStringList &addresses, bool full = true)
    {
        for (const QString &address : addresses)
            rooms.setFull(rooms.appendRow(kColumns, address, RoomListModel::RunningGame), full);
    }
    // Moves the time on by `ms` a second at a time, as the watch's timer checks, letting each
    // ask be answered.
    bool advance(qint64 ms)
    {
        for (qint64 step = 0; step < ms; step += 1000) {
            ticks.set(ticks.now() + 1000);
            watch.check();
            if (!QTest::qWaitFor([&] { return answered.size() >= asked.size(); }, 5000))
                return false;
        }
        return true;
    }
};

} // namespace

class TestFullGameWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY2(QFile::exists(kFakeGame), "build the fakegame target first"); }

    // A stand-in game with one slot, taken by a stand-in player. The watch asks at once and
    // every 15 s; it stays quiet while the game is full and fires within 20 s of the player
    // leaving, whenever in the interval he leaves. Then the watch is over and asks no more.
    void firesWithinTwentySecondsOfASlotFreeing_data()
    {
        QTest::addColumn<int>("leaveAfterMs");
        QTest::newRow("just after an ask") << 16000;
        QTest::newRow("just before an ask") << 29000;
    }
    void firesWithinTwentySecondsOfASlotFreeing()
    {
        QFETCH(int, leaveAfterMs);
        ServerProcess game, player;
        QVERIFY(game.start(kFakeGame, {"-server", "0", "-bind", "127.0.0.1", "-maxplayers", "1"}));
        QVERIFY(player.start(kFakeGame, {"-client", "127.0.0.1", QString::number(game.port())}));
        Rig rig;
        rig.query.setQueryPort(game.port());
        rig.addGames({"127.0.0.1"}, false);
        rig.query.pingGameServer("127.0.0.1");
        QTRY_VERIFY(rig.rooms.isFull(0));
        rig.answered.clear();

        QVERIFY(rig.watch.watch("127.0.0.1"));
        QCOMPARE(rig.asked.size(), 1);
        QVERIFY(rig.advance(leaveAfterMs));
        QCOMPARE(rig.asked.size(), 1 + leaveAfterMs / 15000);
        QVERIFY(rig.freed.isEmpty());

        player.killHard();
        QTRY_VERIFY(askStatus(game.port(), {"\\status\\"}).contains("\\numplayers\\0\\"));
        const qint64 leftAt = rig.ticks.now();
        while (rig.freed.isEmpty() && rig.ticks.now() - leftAt <= 30000)
            QVERIFY(rig.advance(1000));
        QCOMPARE(rig.freed.size(), 1);
        QVERIFY(rig.ticks.now() - leftAt <= 20000);
        QVERIFY(!rig.watch.isWatching("127.0.0.1") && !rig.rooms.isFull(0));
        const qsizetype asks = rig.asked.size();
        QVERIFY(rig.advance(30000));
        QCOMPARE(rig.asked.size(), asks);
    }

    // At most five watches, only on full games, one per game, none while in a game. A
    // double-click on a full game asks first: No goes on to join, Yes watches.
    void whatMayBeWatched()
    {
        Rig rig;
        rig.addGames(
            {"127.0.0.1", "127.0.0.2", "127.0.0.3", "127.0.0.4", "127.0.0.5", "127.0.0.6"});
        rig.addGames({"127.0.0.7"}, false);
        rig.rooms.appendRow(kColumns, "127.0.0.8", RoomListModel::OpenRoom);
        QVERIFY(!rig.watch.watch("127.0.0.7") && !rig.watch.watch("127.0.0.8"));
        rig.session.inGame = true;
        QVERIFY(!rig.watch.watch("127.0.0.1"));
        rig.session.inGame = false;
        rig.dialogs.answers = {Dialogs::Answer::No, Dialogs::Answer::Yes};
        QVERIFY(!rig.menu.answerDoubleClick(6) && !rig.menu.answerDoubleClick(0));
        QVERIFY(rig.menu.answerDoubleClick(0) && rig.dialogs.asked.size() == 2);
        for (const char *address : {"127.0.0.2", "127.0.0.3", "127.0.0.4", "127.0.0.5"})
            QVERIFY(rig.watch.watch(address));
        QVERIFY(!rig.watch.watch("127.0.0.1") && !rig.watch.watch("127.0.0.6"));
        rig.watch.stop("127.0.0.3");
        QVERIFY(rig.watch.watch("127.0.0.6"));
    }

    // A watch ends without a word when its game is gone from the list or its server has left
    // three asks unanswered, and every watch ends once the user is in a game, whose answers
    // with room meanwhile raise nothing. Watches on other games go on.
    void endsQuietly_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("afterMs");
        QTest::newRow("game gone") << "gone" << 0;
        QTest::newRow("no answer") << "silent" << 44000;
        QTest::newRow("user in a game") << "in game" << 0;
    }
    void endsQuietly()
    {
        QFETCH(QString, how);
        QFETCH(int, afterMs);
        Rig rig;
        rig.addGames({"127.0.0.2", "127.0.0.3"});
        QVERIFY(rig.watch.watch("127.0.0.2") && rig.watch.watch("127.0.0.3"));
        if (how == "gone")
            rig.rooms.removeRow(rig.rooms.findRowByTag("127.0.0.2"));
        rig.session.inGame = how == "in game";
        const auto step = [&](bool full) {
            rig.watch.gameAnswered("127.0.0.3", full); // only the other server answers
            rig.ticks.set(rig.ticks.now() + 1000);
            rig.watch.check();
        };
        for (qint64 ms = 0; ms < afterMs; ms += 1000)
            step(true); // still full
        QVERIFY(rig.watch.isWatching("127.0.0.2"));
        step(false);
        QVERIFY(rig.watch.watched().isEmpty());
        rig.watch.gameAnswered("127.0.0.2", false);
        QCOMPARE(rig.freed.size(), how == "in game" ? 0 : 1);
    }
};

QTEST_MAIN(TestFullGameWatch)
#include "tst_fullgamewatch.moc"
