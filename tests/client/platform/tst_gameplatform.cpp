// ctest: xvfb
#include "client/platform/detachedprocessstarter.h"
#include "client/platform/proctcptable.h"
#include "client/platform/x11gamewindowfinder.h"
#include "support/gamefakes.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QFile>
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
    void readsProcNet_data()
    {
        QTest::addColumn<QByteArray>("tcp");
        QTest::addColumn<QByteArray>("tcp6");
        QTest::addColumn<QList<TcpRow>>("rows");
        const QByteArray head = "  sl  local_address rem_address   st tx_queue rx_queue\n";
        QTest::newRow("listen, established")
            << head + "   0: 00000000:092A 00000000:0000 0A 00000000:00000000\n"
                      "   1: 0100007F:A001 0A00A8C0:092A 01 00000000:00000000\n"
            << QByteArray()
            << QList<TcpRow>{{2, {0, 0, 0, 0}, 2346, {0, 0, 0, 0}, 0},
                             {5, {127, 0, 0, 1}, 40961, {192, 168, 0, 10}, 2346}};
        QTest::newRow("every state, garbage skipped")
            << head + "   0: 0100007F:0001 0100007F:0002 06 0\n"
                      "   1: 0100007F:0001 0100007F:0002 0C 0\n"
                      "   2: nonsense\n"
                      "   3: 0100007F:0001 XYZ:0002 01 0\n"
            << QByteArray()
            << QList<TcpRow>{{11, {127, 0, 0, 1}, 1, {127, 0, 0, 1}, 2},
                             {0, {127, 0, 0, 1}, 1, {127, 0, 0, 1}, 2}};
        QTest::newRow("IPv4-mapped and unspecified IPv6 rows")
            << head
            << head + "   0: 0000000000000000FFFF00000100007F:B000 "
                      "0000000000000000FFFF00000A00A8C0:092A 01 0\n"
                      "   1: 00000000000000000000000000000000:092A "
                      "00000000000000000000000000000000:0000 0A 0\n"
                      "   2: 000080FE00000000FF005452A4C0E2FE:B000 "
                      "0000000000000000FFFF00000A00A8C0:092A 01 0\n"
            << QList<TcpRow>{{5, {127, 0, 0, 1}, 45056, {192, 168, 0, 10}, 2346},
                             {2, {0, 0, 0, 0}, 2346, {0, 0, 0, 0}, 0}};
    }
    void readsProcNet()
    {
        QFETCH(QByteArray, tcp);
        QFETCH(QByteArray, tcp6);
        QFETCH(QList<TcpRow>, rows);
        QTemporaryDir net;
        for (const auto &[name, text] : {std::pair{"tcp", tcp}, std::pair{"tcp6", tcp6}}) {
            QFile file(net.filePath(name));
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(text);
        }
        const TcpTable::Result table = ProcTcpTable(net.path()).read();
        QCOMPARE(table.status, TcpTable::Status::Ok);
        QCOMPARE(table.rows, rows);

        QCOMPARE(ProcTcpTable(net.filePath("missing")).read().status,
                 TcpTable::Status::NotSupported);
    }

    // Windows programs go through Wine; native ones, whatever their name, do not; a missing
    // file or Wine command is told in words.
    void startsThroughWineOnlyWhenNeeded()
    {
        QTemporaryDir folder;
        const auto write = [&](const QString &name, const QByteArray &head) {
            QFile file(folder.filePath(name));
            file.open(QIODevice::WriteOnly);
            file.write(head);
            file.setPermissions(file.permissions() | QFile::ExeOwner);
            return file.fileName();
        };
        QVERIFY(DetachedProcessStarter::needsWine(write("game.exe", "MZ\x90")));
        QVERIFY(!DetachedProcessStarter::needsWine(write("native.exe", "\x7f"
                                                                       "ELF")));
        QVERIFY(!DetachedProcessStarter::needsWine(write("script.exe", "#!/bin/sh\n")));
        QVERIFY(!DetachedProcessStarter::needsWine(write("game", "MZ\x90")));

        DetachedProcessStarter starter("quorvel-no-such-wine --flag");
        QVERIFY(starter.startDetached(folder.filePath("game.exe"), {})
                    .contains("quorvel-no-such-wine"));
        QVERIFY(starter.startDetached(folder.filePath("gone.exe"), {}).contains("does not exist"));
        qint64 pid = 0;
        QCOMPARE(starter.startDetached(folder.filePath("script.exe"), {}, &pid), QString());
        QVERIFY(pid > 0);
    }
};

QTEST_MAIN(TestGamePlatform)
#include "tst_gameplatform.moc"
