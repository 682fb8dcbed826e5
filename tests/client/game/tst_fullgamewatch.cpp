#include "client/game/fullgamewatch.h"
#include "client/game/gameinfo.h"
#include "client/game/gamerowmenu.h"
#include "client/game/gameserverquery.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/sessionstate.h"
#include "support/clientfakes.h"
#include "support/serverprocess.h"
#include "support/statusquery.h"

#include <QAction>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

using namespace client;

namespace {

const QStringList kColumns{"Bob", "Full House", "", "In game", "       1", "Peaks"};

// The watch over the real status query, as the program wires it, with the tick counter in the
// test's hands; running-game rows on loopback addresses.
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
    // Moves the time on by `ms` in steps of a second, checking at each as the watch's timer
    // does, and lets every ask that goes out be answered.
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

    // At most five watches, only on full games, one per game, none while in a game.
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
        for (const char *address :
             {"127.0.0.1", "127.0.0.2", "127.0.0.3", "127.0.0.4", "127.0.0.5"})
            QVERIFY(rig.watch.watch(address));
        QVERIFY(!rig.watch.watch("127.0.0.1"));
        QVERIFY(!rig.watch.watch("127.0.0.6"));
        rig.watch.stop("127.0.0.3");
        QVERIFY(rig.watch.watch("127.0.0.6"));
        QCOMPARE(rig.watch.watched().size(), FullGameWatch::kMaxWatches);
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
        for (qint64 ms = 0; ms < afterMs; ms += 1000) {
            rig.ticks.set(rig.ticks.now() + 1000);
            rig.watch.check();
            rig.watch.gameAnswered("127.0.0.3", true); // only the other server answers
        }
        rig.watch.gameAnswered("127.0.0.3", false);
        QVERIFY(rig.freed.isEmpty() == (how == "in game"));
        QVERIFY(rig.watch.isWatching("127.0.0.2"));

        rig.ticks.set(rig.ticks.now() + 1000);
        rig.watch.check();
        QVERIFY(rig.watch.watched().isEmpty());
        rig.watch.gameAnswered("127.0.0.2", false);
        QCOMPARE(rig.freed.size(), how == "in game" ? 0 : 1);
    }

    // The row menu offers the watch on a full game only, and stopping it on a watched one; a
    // double-click on a full game asks, and Yes watches instead of joining.
    void rowMenuAndDoubleClick()
    {
        Rig rig;
        rig.addGames({"127.0.0.1"});
        rig.addGames({"127.0.0.2"}, false);
        const auto shown = [&](int row) {
            rig.menu.prepare(row);
            return QList<bool>{rig.menu.watchEntry()->isVisible(),
                               rig.menu.stopEntry()->isVisible()};
        };
        QCOMPARE(shown(1), (QList<bool>{false, false}));
        QCOMPARE(shown(0), (QList<bool>{true, false}));
        rig.menu.watchEntry()->trigger();
        QVERIFY(rig.watch.isWatching("127.0.0.1"));
        QCOMPARE(shown(0), (QList<bool>{false, true}));
        rig.menu.stopEntry()->trigger();
        QVERIFY(!rig.watch.isWatching("127.0.0.1"));

        rig.dialogs.answers = {Dialogs::Answer::No, Dialogs::Answer::Yes};
        QVERIFY(!rig.menu.answerDoubleClick(1));
        QVERIFY(!rig.menu.answerDoubleClick(0));
        QVERIFY(rig.menu.answerDoubleClick(0));
        QCOMPARE(rig.dialogs.asked.size(), 2);
        QVERIFY(rig.watch.isWatching("127.0.0.1"));
    }
};

QTEST_MAIN(TestFullGameWatch)
#include "tst_fullgamewatch.moc"
