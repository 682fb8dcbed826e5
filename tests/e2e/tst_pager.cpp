// Two clients against the real lobby server: the player menu and buddies, private messages
// in both directions, and the server's rate limit on them.
// ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/lobby/lobbyconnection.h"
#include "client/options/options.h"
#include "client/pager/frmpager.h"
#include "client/pager/pager.h"
#include "client/presence/frmmenu.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"
#include "protocol/presence.h"
#include "support/lobbyclient.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QTreeView>

using namespace client;
using protocol::Presence;

namespace {

// Clicks `name` in the client's player list with `button`, as the user does.
void clickPlayer(LobbyClient &client, const QString &name, Qt::MouseButton button)
{
    QTreeView *list = client.app.form().ListView2;
    const QModelIndexList found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole,
                                                       name, 1, Qt::MatchExactly);
    QVERIFY2(!found.isEmpty(), qPrintable(name));
    QTest::mouseClick(list->viewport(), button, {}, list->visualRect(found.first()).center());
}

// Sends `text` from the client's pager to the partner on display, as if typed.
void typeMessage(LobbyClient &client, const QString &text)
{
    FrmPager *pager = client.app.windows().frmPager();
    pager->txtSkicka->setText(text);
    QTest::mouseClick(pager->Picture3, Qt::LeftButton);
}

// The history of the client's conversation with `name`.
QString historyWith(LobbyClient &client, const QString &name)
{
    PlayerListModel &players = client.app.players();
    const int row = players.findEntry(name);
    return row < 0
               ? QString()
               : client.app.pager().history(players.text(row, PlayerListModel::Index).toLongLong());
}

// Both log in and see each other in the lobby.
bool meet(LobbyClient &a, LobbyClient &b, const QString &nameA, const QString &nameB)
{
    return a.app.start() && b.app.start() &&
           waitUntil([&] { return !a.statusOf(nameB).isEmpty() && !b.statusOf(nameA).isEmpty(); },
                     10000);
}

} // namespace

class TestPager : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_server;
    QTemporaryDir m_serverHome;
    int m_pair = 0;

    // Names no other test has used, so that buddy lists and rate limits start empty.
    std::pair<QString, QString> freshNames()
    {
        ++m_pair;
        return {QStringLiteral("ann%1").arg(m_pair), QStringLiteral("bob%1").arg(m_pair)};
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(startOpenLobby(m_server, m_serverHome)); }

    void menuFollowsThePlayer_data()
    {
        QTest::addColumn<bool>("onSelf");
        QTest::addColumn<bool>("buddy");
        QTest::addColumn<int>("presence");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("buddyCaption");
        QTest::addColumn<bool>("gameEntries");
        QTest::addColumn<bool>("notifications"); // the buddy-notification option

        QTest::newRow("oneself: no menu") << true << false << 3 << ""
                                          << "7"
                                          << "" << false << true;
        QTest::newRow("lobby") << false << false << 3 << ""
                               << "7"
                               << "Add buddie" << false << true;
        QTest::newRow("buddy in a game") << false << true << 2 << "10.0.0.5"
                                         << "5"
                                         << "Remove buddie" << true << true;
        QTest::newRow("buddy in a game, not told") << false << true << 2 << "10.0.0.5"
                                                   << "5"
                                                   << "Remove buddie" << true << false;
        QTest::newRow("game without address") << false << false << 2 << ""
                                              << "4"
                                              << "Add buddie" << false << true;
        QTest::newRow("away") << false << false << 1 << ""
                              << "1"
                              << "Add buddie" << false << true;
    }

    void menuFollowsThePlayer()
    {
        QFETCH(bool, onSelf);
        QFETCH(bool, buddy);
        QFETCH(int, presence);
        QFETCH(QString, address);
        QFETCH(QString, code);
        QFETCH(QString, buddyCaption);
        QFETCH(bool, gameEntries);
        QFETCH(bool, notifications);
        const auto [annName, bobName] = freshNames();
        LobbyClient ann(annName, m_server);
        LobbyClient bob(bobName, m_server);
        QVERIFY(meet(ann, bob, annName, bobName));
        ann.app.options().setBuddyNotifications(notifications);

        if (buddy) {
            clickPlayer(ann, bobName, Qt::RightButton);
            ann.dialogs.answers = {Dialogs::Answer::Yes};
            ann.app.windows().frmMenu()->mnuAddBuddie->trigger();
            QCOMPARE(ann.dialogs.asked.last(),
                     "Do you want to add '" + bobName + "' to your buddylist? [Yes/No]");
            QCOMPARE(ann.statusOf(bobName), "8");
        }
        bob.app.connection().send(protocol::PlayerStatusToServer{Presence(presence), address});
        QTRY_COMPARE(ann.statusOf(bobName), code);
        // A buddy going into a game is told on the desktop, if the user wants that.
        const bool told = notifications && buddy && presence == 2;
        QCOMPARE(ann.tray.messages,
                 told ? QStringList{"QUORVEL: " + bobName + " has started a game"} : QStringList());

        clickPlayer(ann, onSelf ? annName : bobName, Qt::RightButton);
        FrmMenu *menu = ann.app.windows().frmMenu();
        QCOMPARE(menu->mnuChatPopup->isVisible(), !onSelf);
        if (onSelf)
            return;
        QCOMPARE(menu->mnuPrivateMessage->text(), "Send PM");
        QVERIFY(menu->mnuViewStats->isEnabled());
        QCOMPARE(menu->mnuAddBuddie->text(), buddyCaption);
        QCOMPARE(menu->mnuGameInfo->isEnabled(), gameEntries);
        QCOMPARE(menu->mnuJoinGame->isEnabled(), gameEntries);
        menu->mnuChatPopup->hide();
    }

    // Buddies are kept by the server: a new login shows them bold and above the others, and
    // a removed one as a plain player again. Answering No changes nothing.
    void buddiesSurviveANewLogin()
    {
        const auto [annName, bobName] = freshNames();
        LobbyClient bob(bobName, m_server);
        for (const auto &[answers, expected] : {std::pair{QList{Dialogs::Answer::No}, "7"},
                                                std::pair{QList{Dialogs::Answer::Yes}, "8"},
                                                std::pair{QList{Dialogs::Answer::Yes}, "7"}}) {
            LobbyClient ann(annName, m_server);
            QVERIFY(meet(ann, bob, annName, bobName));
            clickPlayer(ann, bobName, Qt::RightButton);
            ann.dialogs.answers = answers;
            ann.app.windows().frmMenu()->mnuAddBuddie->trigger();
            QCOMPARE(ann.statusOf(bobName), expected);
            const int row = ann.app.players().findEntry(bobName);
            QCOMPARE(ann.app.players().isBold(row), QString(expected) == "8");
            // A buddy already online at the login is no news.
            QVERIFY(ann.tray.messages.isEmpty());
            // The next login is a new client; the server has the change by then, since
            // a message behind it on the same connection has come back.
            ann.app.connection().send(protocol::PlayerStatusToServer{Presence::Away, {}});
            QTRY_COMPARE(bob.statusOf(annName), "1");
            bob.app.players().clearList(); // forget ann, so `meet` waits for her next login
        }
        LobbyClient ann(annName, m_server);
        QVERIFY(meet(ann, bob, annName, bobName));
        QCOMPARE(ann.statusOf(bobName), "7");
    }

    void privateMessagesBothWays()
    {
        const auto [annName, bobName] = freshNames();
        LobbyClient ann(annName, m_server);
        LobbyClient bob(bobName, m_server);
        QVERIFY(meet(ann, bob, annName, bobName));

        clickPlayer(ann, bobName, Qt::LeftButton);
        FrmPager *annPager = ann.app.windows().frmPager();
        QVERIFY(annPager->isVisible());
        QCOMPARE(annPager->Label2->text(), "Page " + bobName + "  (Online)");
        ann.clock.advanceSeconds(10);
        typeMessage(ann, QStringLiteral("  hello there "));
        QVERIFY(annPager->txtSkicka->text().isEmpty());

        // The receiver hears it, and the sender's entry is marked unread; the sender sees the
        // server's copy under his own name.
        const QString line = annName + ":  hello there\r\n";
        QTRY_COMPARE(historyWith(bob, annName), line);
        QTRY_COMPARE(historyWith(ann, bobName), line);
        const auto pagerSounds = [](LobbyClient &client) {
            return client.player.played.filter(QStringLiteral("A_CRHRN1.WAV")).size();
        };
        QCOMPARE(pagerSounds(bob), 1);
        const int annRow = bob.app.players().findEntry(annName);
        QCOMPARE(bob.app.players().icon(annRow), int(Icons::UnreadMessage));

        // Opening the conversation clears the mark; the reply reaches the open window quietly.
        clickPlayer(bob, annName, Qt::LeftButton);
        QCOMPARE(bob.app.players().icon(bob.app.players().findEntry(annName)),
                 int(Icons::OpenRoom));
        QCOMPARE(bob.app.windows().frmPager()->txtHistory->toPlainText(),
                 QString(line).replace("\r\n", "\n"));
        // The partner's avatar comes from the lobby's own avatar pages.
        QTRY_COMPARE(bob.app.windows().frmPager()->picUser->pixmap().size(), QSize(150, 150));
        bob.clock.advanceSeconds(10);
        typeMessage(bob, QStringLiteral("hi"));
        QTRY_VERIFY(historyWith(ann, bobName).endsWith(bobName + ":  hi\r\n"));
        QVERIFY(annPager->txtHistory->toPlainText().endsWith(bobName + ":  hi\n"));
        QCOMPARE(pagerSounds(ann), 0);
    }

    // The other player leaving hides the window on him; what is sent to him afterwards goes
    // nowhere, and the window opens again on the same history.
    void partnerLeaving()
    {
        const auto [annName, bobName] = freshNames();
        LobbyClient ann(annName, m_server);
        auto bob = std::make_unique<LobbyClient>(bobName, m_server);
        QVERIFY(meet(ann, *bob, annName, bobName));
        clickPlayer(ann, bobName, Qt::LeftButton);
        FrmPager *pager = ann.app.windows().frmPager();
        ann.clock.advanceSeconds(10);
        typeMessage(ann, QStringLiteral("bye?"));
        QTRY_VERIFY(!historyWith(ann, bobName).isEmpty());
        const qint64 bobIndex = ann.app.pager().current();

        bob.reset();
        QTRY_VERIFY(!pager->isVisible());
        pager->show();
        ann.clock.advanceSeconds(10);
        typeMessage(ann, QStringLiteral("still there?"));
        QVERIFY(pager->txtSkicka->text().isEmpty());
        ann.app.connection().send(protocol::PlayerStatusToServer{Presence::Away, {}});
        QTRY_COMPARE(ann.statusOf(annName), "1");
        QCOMPARE(ann.app.pager().history(bobIndex), annName + ":  bye?\r\n");
        QCOMPARE(pager->txtHistory->toPlainText(), annName + ":  bye?\n");
    }

    // The client lets one message through per more than three seconds; the server at most five
    // in ten seconds, counted with the lobby chat.
    void rateLimits()
    {
        const auto [annName, bobName] = freshNames();
        LobbyClient ann(annName, m_server);
        LobbyClient bob(bobName, m_server);
        QVERIFY(meet(ann, bob, annName, bobName));
        clickPlayer(ann, bobName, Qt::LeftButton);
        FrmPager *pager = ann.app.windows().frmPager();

        for (int n = 1; n <= 6; ++n) {
            ann.clock.advanceSeconds(4);
            typeMessage(ann, QString::number(n));
            QVERIFY(pager->txtSkicka->text().isEmpty());
        }
        typeMessage(ann, QStringLiteral("too soon"));
        QCOMPARE(pager->txtSkicka->text(), "too soon");

        ann.app.connection().send(protocol::PlayerStatusToServer{Presence::Away, {}});
        QTRY_COMPARE(bob.statusOf(annName), "1");
        QCOMPARE(historyWith(bob, annName).count('\n'), 5);
        QVERIFY(!historyWith(bob, annName).contains(annName + ":  6"));
    }
};

QTEST_MAIN(TestPager)
#include "tst_pager.moc"
