// ctest: xvfb
#include "client/desktop/x11gamewindowfinder.h"
#include "client/desktop/x11keystate.h"
#include "client/game/findgameserver.h"
#include "client/platform/detachedprocessstarter.h"
#include "client/platform/proctcptable.h"
#include "support/gamefakes.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

class TestGamePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A real game window on the X server: found by its title and its class or, as Wine
    // names the class, its executable; not with the right title but another class.
    void findsWindowByTitleAndClass_data()
    {
        QTest::addColumn<QString>("windowClass"); // of the running stand-in
        QTest::addColumn<bool>("found");
        QTest::newRow("class") << "Rogue Spear" << true;
        QTest::newRow("Wine's class") << "ROGUESPEAR.EXE" << true;
        QTest::newRow("other class") << "Notepad" << false;
    }
    void findsWindowByTitleAndClass()
    {
        QFETCH(QString, windowClass);
        QFETCH(bool, found);
        ServerProcess game;
        QVERIFY(
            game.start(kFakeGame, {"-server", "0", "-bind", "127.0.0.1", "-class", windowClass}));
        X11GameWindowFinder finder;
        QVERIFY(finder.hasDisplay());
        const auto exists = [&] {
            return finder.windowExists("Rogue Spear", "Rogue Spear", "roguespear.exe");
        };
        // The window may be mapped a moment after the game says its port.
        QCOMPARE(waitUntil(exists, found ? 5000 : 300), found);
        game.killHard();
        QVERIFY(waitUntil([&] { return !exists(); }));
    }

    // Without an X11 display the game counts as running when its executable does.
    void findsProcessWithoutDisplay()
    {
        ServerProcess game;
        QVERIFY(
            game.start(kGameFolder + "/roguespear.exe", {"-server", "0", "-bind", "127.0.0.1"}));
        X11GameWindowFinder finder("unix:no-such-display");
        QVERIFY(!finder.hasDisplay());
        QVERIFY(finder.windowExists("Rogue Spear", "Rogue Spear", "RogueSpear.exe"));
        QVERIFY(!finder.windowExists("Black Ops", "Black Ops", "R6BO.exe"));
    }

    // Rows of /proc/net as the kernel writes them become rows of the table: states by their
    // Windows numbers, addresses octet by octet, IPv6 rows only when they stand for IPv4.
    void readsProcNet()
    {
        const QByteArray head = "  sl  local_address rem_address   st tx_queue rx_queue\n";
        QTemporaryDir net;
        for (const auto &[name, rows] :
             {std::pair{"tcp", "   0: 00000000:092A 00000000:0000 0A 0\n"
                               "   1: 0100007F:A001 0A00A8C0:092A 01 0\n"
                               "   2: nonsense\n"},
              std::pair{"tcp6", "   0: 0000000000000000FFFF00000100007F:B000 "
                                "0000000000000000FFFF00000A00A8C0:092A 06 0\n"
                                "   1: 000080FE00000000FF005452A4C0E2FE:B000 "
                                "0000000000000000FFFF00000A00A8C0:092A 01 0\n"}}) {
            QFile file(net.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(head + rows) > 0);
        }
        const TcpTable::Result table = ProcTcpTable(net.path()).read();
        QCOMPARE(table.status, TcpTable::Status::Ok);
        const QList<TcpRow> rows{{2, {0, 0, 0, 0}, 2346, {0, 0, 0, 0}, 0},
                                 {5, {127, 0, 0, 1}, 40961, {192, 168, 0, 10}, 2346},
                                 {11, {127, 0, 0, 1}, 45056, {192, 168, 0, 10}, 2346}};
        QCOMPARE(table.rows, rows);
        // Listening decides first, then an established connection to the game port; a closing
        // one does not count.
        QCOMPARE(GameServerScan::gameServerIn(rows), QString("host"));
        QCOMPARE(GameServerScan::gameServerIn(rows.mid(1)), QString("192.168.0.10"));
        QCOMPARE(GameServerScan::gameServerIn(rows.mid(2)), QString());
        QCOMPARE(ProcTcpTable(net.filePath("missing")).read().status,
                 TcpTable::Status::NotSupported);
    }

    // A Windows program goes through Wine (a missing Wine command is told in words); a native
    // one does not, whatever its name.
    void startsWindowsProgramsThroughWine()
    {
        QTemporaryDir folder;
        for (const auto &[name, head] :
             {std::pair{"game.exe", "MZ"}, std::pair{"native.exe", "\x7f"
                                                                   "ELF"}}) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly) && file.write(head) > 0);
        }
        QVERIFY(DetachedProcessStarter::needsWine(folder.filePath("game.exe")));
        QVERIFY(!DetachedProcessStarter::needsWine(folder.filePath("native.exe")));
        QVERIFY(DetachedProcessStarter("no-such-wine --quiet")
                    .startDetached(folder.filePath("game.exe"), {})
                    .contains("no-such-wine"));
    }

    // The hot key read from the X server's keyboard, pressed the way a user would press it
    // (by xdotool); the same physical key as the hot-key field captures.
    void readsKeysOfTheDisplay_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("virtualKey");
        QTest::newRow("F5") << "F5" << 116;
        QTest::newRow("Q") << "q" << 81;
    }
    void readsKeysOfTheDisplay()
    {
        QFETCH(QString, key);
        QFETCH(int, virtualKey);
        X11KeyState keys;
        QVERIFY(keys.isAvailable());
        QVERIFY(!keys.isKeyDown(virtualKey));
        QCOMPARE(QProcess::execute("xdotool", {"keydown", key}), 0);
        const bool down = waitUntil([&] { return keys.isKeyDown(virtualKey); }, 2000);
        const bool otherDown = keys.isKeyDown(virtualKey == 116 ? 117 : 116);
        QCOMPARE(QProcess::execute("xdotool", {"keyup", key}), 0);
        QVERIFY(down && !otherDown);
        QVERIFY(waitUntil([&] { return !keys.isKeyDown(virtualKey); }, 2000));
        QVERIFY(!X11KeyState("no-such-display:99").isAvailable());
    }
};

QTEST_MAIN(TestGamePlatform)
#include "tst_gameplatform.moc"
