// Statistics end to end: two clients in a room, the host starts the game and the member's
// follows, both through the real launcher with the stand-in game, which writes a results log
// after each round into its folder; each client uploads its rounds, which the server's page of
// each player shows. A reset from one player restarts his page only.
// ctest: xvfb
// ctest: lock=gameport
// ctest: timeout=180
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "client/stats/resultlogwatch.h"
#include "client/ui/picturebutton.h"
#include "support/lobbyclient.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <algorithm>

using namespace client;

namespace {

// A client whose game folder holds the stand-in game, playing rounds of four seconds between
// ann and bob, and whose games know the player by his lobby name.
struct Player : LobbyClient
{
    Player(const QString &name, const ServerProcess &server) : LobbyClient(name, server)
    {
        const QString &game = gameFolder;
        // The host's game shows its window only after the member's automatic join (which
        // follows the host's first seconds), so that the join does not take the host's window
        // on this shared display for a game of its own.
        ok = QFile::copy(kFakeGame, game + "/fakegame") &&
             writeFile(game + "/roguespear.exe",
                       "#!/bin/sh\n"
                       "[ \"$1\" = -server ] && sleep 6\n"
                       "exec \"$(dirname \"$0\")/fakegame\" \"$@\" -round 4 -gametype "
                       "'Team Survival' -player ann:1:20 -player bob:2:30\n") &&
             QFile::setPermissions(game + "/roguespear.exe",
                                   QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner) &&
             writeGamePlayerName(home.filePath("system.reg"), "Rogue Spear", name);
    }
    bool ok = false;

    FrmRoom *room() { return app.windows().frmRoom(); }
    // No results log is waiting to be read.
    bool logsSettled()
    {
        const QList<QTimer *> timers = app.findChild<ResultLogWatch *>()->findChildren<QTimer *>();
        return std::none_of(timers.cbegin(), timers.cend(),
                            [](QTimer *t) { return t->isActive(); });
    }
    QString page(const ServerProcess &server)
    {
        return server.webPage("/?p=stats&id=" + app.session().lobbyStatsId);
    }
};

bool showsRound(const QString &page)
{
    return page.contains("Training Grounds") && page.contains("Team Survival") &&
           !page.contains("No rounds yet.");
}

} // namespace

class TestStats : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundsUploadedAndReset()
    {
        ServerProcess server;
        QTemporaryDir serverHome;
        QVERIFY(startOpenLobby(server, serverHome));
        Player ann("ann", server), bob("bob", server);
        QVERIFY(ann.ok && bob.ok);
        QVERIFY(logIn({&ann, &bob}));
        for (Player *player : {&ann, &bob})
            player->clock.set(QDateTime::currentDateTime());
        QVERIFY(ann.page(server).contains("No rounds yet."));

        ann.createRoom("stats");
        QTRY_VERIFY(bob.app.rooms().findRoomRow("ann") >= 0);
        bob.doubleClickRoom("ann");
        QTRY_COMPARE(ann.app.room().memberNames(), (QStringList{"ann", "bob"}));
        bob.room()->Picture4->click();
        ann.room()->Picture4->click();
        QTRY_VERIFY(!ann.room()->picStartGame->isHidden());
        ann.room()->picStartGame->click();
        QTRY_COMPARE(bob.games.commandLines.size(), 1);
        QCOMPARE(ann.games.commandLines.size(), 1);

        // Detection finds the games within a tick of ten seconds and watches their folders.
        QTRY_VERIFY_WITH_TIMEOUT(ann.app.session().inGame && bob.app.session().inGame, 25000);
        QTRY_VERIFY_WITH_TIMEOUT(showsRound(ann.page(server)) && showsRound(bob.page(server)),
                                 30000);
        // The room is told the round, with the address of a page that shows it.
        static const QRegularExpression told("QUORVEL: Team Survival on Training Grounds, most "
                                             "kills: .* - http://\\S+/\\?p=stats&id=\\d+");
        for (Player *player : {&ann, &bob})
            QTRY_VERIFY(told.match(player->room()->txtRoomChat->toPlainText()).hasMatch());

        // Once the games are over and ann's last log is read (and so sent before the reset on
        // the same connection), ann resets.
        ann.games.endAll();
        bob.games.endAll();
        QTRY_VERIFY_WITH_TIMEOUT(!ann.app.session().inGame && !bob.app.session().inGame, 25000);
        QTRY_VERIFY(ann.logsSettled());
        ann.dialogs.answers = {Dialogs::Answer::Yes};
        ann.app.form().picResetStats->click();
        QTRY_VERIFY(ann.page(server).contains("No rounds yet."));
        QVERIFY(showsRound(bob.page(server)));
    }
};

QTEST_MAIN(TestStats)
#include "tst_stats.moc"
