// The game as players run it: the Windows stand-in under real Wine, installed in a fresh
// prefix's drive_c below a folder with spaces, its file name in mixed case, and a client that
// knows nothing but that folder (no WINEPREFIX). It joins a hosted game, its round is counted
// under the name the game keeps in Wine's registry, and a Wine that cannot run the game says
// why.
// ctest: xvfb
// ctest: lock=gameport
// ctest: timeout=900
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/game/gameinfo.h"
#include "client/game/gamelauncher.h"
#include "client/game/gameserverquery.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "support/lobbyclient.h"

#include <QElapsedTimer>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTest>
#include <QTreeView>

using namespace client;

namespace {

const QString kWinGame =
    QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/wingame/RogueSpear.exe");
const QString kGameName = QStringLiteral("Åsa Wine");

} // namespace

class TestWine : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temp;
    QString m_realWine;
    QString m_prefix;
    QString m_folder; // the game's, below drive_c
    bool m_prepared = false;

    // Runs a Wine tool in the test's prefix to its end; whether it ended well.
    bool runInPrefix(const QString &program, const QStringList &arguments)
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("WINEPREFIX", m_prefix);
        process.setProcessEnvironment(environment);
        process.start(program, arguments);
        return process.waitForFinished(300000) && process.exitStatus() == QProcess::NormalExit &&
               process.exitCode() == 0;
    }
    // The `wine` the client finds first. Working, it is the real one, which hands the game what
    // its own settings would: rounds of a few seconds and the player's name. Broken, it is a
    // Wine without its 32-bit part.
    bool installWine(bool working)
    {
        const QByteArray wine = m_realWine.toUtf8();
        return writeScript(
            m_temp.filePath("bin/wine"),
            working ? "case \"$1\" in *.exe|*.EXE) exec '" + wine + "' \"$@\" -round 6 -name '" +
                          kGameName.toUtf8() + "' -gametype 'Team Survival' -player '" +
                          kGameName.toUtf8() + ":1:20' -player bob:2:30;; esac\nexec '" + wine +
                          "' \"$@\""
                    : "echo 'it looks like wine32 is missing, you should install it.' >&2\n"
                      "echo 'wine: Bad EXE format for Z:\\\\game.exe.' >&2\nexit 1");
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (!QFile::exists(kWinGame))
            QSKIP("RogueSpear.exe is not built: x86_64-w64-mingw32-g++ was not found");
        m_realWine = QStandardPaths::findExecutable("wine");
        if (m_realWine.isEmpty() || QStandardPaths::findExecutable("wineserver").isEmpty())
            QSKIP("wine is not installed (scripts/setup.sh installs it)");
        QVERIFY(m_temp.isValid());
        qunsetenv("WINEPREFIX");
        qputenv("WINEDEBUG", "-all");
        // Without Mono and Gecko, which a new prefix would otherwise offer to install.
        qputenv("WINEDLLOVERRIDES", "mscoree,mshtml=");
        qputenv("LC_ALL", "C.UTF-8");
        qputenv("PATH", QFile::encodeName(m_temp.filePath("bin")) + ':' + qgetenv("PATH"));

        m_prefix = m_temp.filePath("prefix");
        m_prepared = true;
        QElapsedTimer made;
        made.start();
        QVERIFY(runInPrefix("wineboot", {"-i"}));
        qInfo("Wine prefix made in %.1f s", double(made.elapsed()) / 1000);
        m_folder = m_prefix + "/drive_c/Red Storm Games/Rogue Spear";
        QVERIFY(QDir().mkpath(m_folder));
        QVERIFY(QFile::copy(kWinGame, m_folder + "/RogueSpear.exe"));
    }
    void cleanupTestCase()
    {
        if (m_prepared)
            runInPrefix("wineserver", {"-k"});
    }

    // bob hosts with the native stand-in; ann, whose game is the Windows one, joins as a
    // ready member and is in game as a client of bob's; bob's lobby sees her playing; her
    // round is counted under the name her game keeps; closing her game brings her back.
    void joinsAHostedGameUnderWine()
    {
        QVERIFY(installWine(true));
        ServerProcess server;
        QTemporaryDir serverHome;
        QVERIFY(startOpenLobby(server, serverHome));
        LobbyClient ann("ann", server), bob("bob", server);
        QVERIFY(writeFile(ann.dataFolder() + "/settingRS.txt",
                          "0\r\n1\r\n1\r\n0\r\n0\r\n" + m_folder.toUtf8() + "\r\n\r\n"));
        const QString &bobsGame = bob.gameFolder;
        QVERIFY(QFile::copy(kFakeGame, bobsGame + "/fakegame"));
        QVERIFY(writeScript(bobsGame + "/roguespear.exe",
                            "exec \"$(dirname \"$0\")/fakegame\" \"$@\" -class Host"));
        QVERIFY(logIn({&ann, &bob}));
        ann.clock.set(QDateTime::currentDateTime());

        bob.app.form().picCreateRoom->click();
        bob.app.windows().frmMakeRoom()->Text1->insert("wine");
        bob.app.windows().frmMakeRoom()->Picture3->click();
        QTRY_VERIFY(ann.app.rooms().findRoomRow("bob") >= 0);
        Q_EMIT ann.app.form().ListView1->activated(
            ann.app.rooms().index(ann.app.rooms().findRoomRow("bob"), 0));
        QTRY_COMPARE(bob.app.room().memberNames().size(), 2);
        ann.app.windows().frmRoom()->Picture4->click();
        bob.app.windows().frmRoom()->Picture4->click();
        QTRY_VERIFY(!bob.app.windows().frmRoom()->picStartGame->isHidden());
        bob.app.windows().frmRoom()->picStartGame->click();

        QTRY_COMPARE_WITH_TIMEOUT(ann.games.commandLines.size(), 1, 20000);
        QCOMPARE(ann.games.commandLines.at(0),
                 (QStringList{m_folder + "/RogueSpear.exe", "-client", "127.0.0.1", "2346"}));
        QTRY_VERIFY_WITH_TIMEOUT(ann.app.session().inGame, 90000);
        QTRY_VERIFY_WITH_TIMEOUT(QStringList({"4", "5"}).contains(bob.statusOf("ann")), 15000);
        QVERIFY(ann.dialogs.asked.isEmpty());

        const auto page = [&] {
            return server.webPage("/?p=stats&id=" + ann.app.session().lobbyStatsId);
        };
        QTRY_VERIFY_WITH_TIMEOUT(page().contains("Team Survival"), 60000);
        // Her own row is the one under the game's name.
        static const QRegularExpression own("class=\"own\"[^<]*>(<[^>]*>[^<]*)*?<td>" + kGameName +
                                            "</td>");
        QVERIFY2(own.match(page()).hasMatch(), qPrintable(page()));

        ann.games.endAll();
        QTRY_VERIFY_WITH_TIMEOUT(!ann.app.session().inGame, 25000);
        QVERIFY(ann.app.form().isVisible());
        bob.games.endAll();
    }

    // A game hosted under Wine answers the client's status query in the game's code page: the
    // game-info window reads its host name and players as they were given.
    void hostUnderWineAnswersStatus()
    {
        qputenv("WINEPREFIX", QFile::encodeName(m_prefix));
        const auto noPrefix = qScopeGuard([] { qunsetenv("WINEPREFIX"); });
        ServerProcess game;
        QVERIFY(game.start(m_realWine,
                           {m_folder + "/RogueSpear.exe", "-server", "0", "-bind", "127.0.0.1",
                            "-hostname", "Zoë's game", "-maxplayers", "8", "-player", "Zoë:1:40",
                            "-player", "Al:2:55"},
                           60000)); // a Wine that is busy ending the last game starts slowly
        RoomListModel rooms;
        GameInfo info;
        SystemTickCount ticks;
        GameServerQuery query(rooms, info, ticks);
        query.setQueryPort(game.port());
        query.queryGameInfo("127.0.0.1");
        QTRY_COMPARE(info.labels().roomName, QStringLiteral("Room name: Zoë's game"));
        QCOMPARE(info.labels().players, QStringLiteral("Players: 2/8"));
        QCOMPARE(info.getSpelare(), QStringLiteral("\\Zoë\\"));
    }

    // A Wine that cannot run the game: the user reads what it said and what to install.
    void wineWithout32BitSupportIsTold()
    {
        QVERIFY(installWine(false));
        AppHarness h;
        QVERIFY(writeFile(h.dataFolder() + "/settingRS.txt",
                          "0\r\n1\r\n1\r\n0\r\n0\r\n" + m_folder.toUtf8() + "\r\n\r\n"));
        QVERIFY(h.app.start());
        h.dialogs.asked.clear();
        QVERIFY(h.app.launcher().launchGameClient("127.0.0.1"));
        QTRY_COMPARE(h.dialogs.asked.size(), 1);
        QVERIFY2(h.dialogs.asked.at(0).contains("wine32 is missing") &&
                     h.dialogs.asked.at(0).contains("apt install wine32"),
                 qPrintable(h.dialogs.asked.at(0)));
    }
};

QTEST_MAIN(TestWine)
#include "tst_wine.moc"
