// Statistics end to end: the client starts its game through the real launcher with the
// stand-in game, which writes a results log after each round into its folder; the client
// finds the game, watches that folder and uploads the rounds, with its own record found by the
// name the game knows it by, and the real server's page of the player shows them.
// ctest: xvfb
// ctest: lock=gameport
// ctest: timeout=180
#include "client/game/gamelauncher.h"
#include "client/session/sessionstate.h"
#include "support/lobbyclient.h"

#include <QTest>

using namespace client;

class TestStats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundsUploaded()
    {
        ServerProcess server;
        QTemporaryDir serverHome;
        QVERIFY(startOpenLobby(server, serverHome));
        LobbyClient ann("ann", server);
        // The stand-in game plays rounds of four seconds between ann and bob.
        const QString game = ann.home.filePath("RogueSpear");
        QVERIFY(QFile::copy(kFakeGame, game + "/fakegame"));
        QVERIFY(
            writeFile(game + "/roguespear.exe",
                      "#!/bin/sh\nexec \"$(dirname \"$0\")/fakegame\" \"$@\" -round 4 -gametype "
                      "'Team Survival' -player ann:1:20 -player bob:2:30\n"));
        QVERIFY(QFile::setPermissions(game + "/roguespear.exe",
                                      QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(writeGamePlayerName(ann.home.filePath("system.reg"), "Rogue Spear", "ann"));
        QVERIFY(logIn({&ann}));
        ann.clock.set(QDateTime::currentDateTime());

        QVERIFY(ann.app.launcher().launchGameServer());
        // Detection finds the game within a tick of ten seconds.
        QTRY_VERIFY_WITH_TIMEOUT(ann.app.session().inGame, 25000);
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                const QString page =
                    server.webPage("/?p=stats&id=" + ann.app.session().lobbyStatsId);
                return page.contains("Training Grounds") && page.contains("Team Survival") &&
                       !page.contains("No rounds yet.");
            }(),
            30000);
    }
};

QTEST_MAIN(TestStats)
#include "tst_stats.moc"
