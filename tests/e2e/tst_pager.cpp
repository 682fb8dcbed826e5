// Two clients against the real lobby server: the player menu, buddies and ignoring, and a
// conversation in private messages, also one from an earlier run. (When a message sounds and marks
// its sender unread is the pager's unit test; the lobby chat and hiding to the tray are the chat's,
// the server's and the tray's.) ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/lobby/lobbyconnection.h"
#include "client/pager/conversationarchive.h"
#include "client/pager/frmpager.h"
#include "client/pager/pager.h"
#include "client/presence/chatlog.h"
#include "client/presence/frmmenu.h"
#include "client/presence/lobbychat.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/settings/options.h"
#include "protocol/chat.h"
#include "protocol/presence.h"
#include "support/lobbyclient.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>

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

// "Add buddie" (or "Remove buddie") in the menu on `name`, the question answered `answer`.
void changeBuddy(LobbyClient &client, const QString &name, Dialogs::Answer answer)
{
    clickPlayer(client, name, Qt::RightButton);
    client.dialogs.answers = {answer};
    client.app.windows().frmMenu()->mnuAddBuddie->trigger();
}

// Sends `text` from the client's pager to the partner on display, as if typed, ten seconds
// after the last one so that the client lets it through.
void typeMessage(LobbyClient &client, const QString &text, int afterSeconds = 10)
{
    FrmPager *pager = client.app.windows().frmPager();
    client.clock.advanceSeconds(afterSeconds);
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

// Goes away and waits until `watcher` sees it: by then the server has handled all the client
// sent before.
void roundTrip(LobbyClient &client, LobbyClient &watcher)
{
    client.app.connection().send(protocol::PlayerStatusToServer{Presence::Away, {}});
    QTRY_COMPARE(watcher.statusOf(client.name), "1");
}

} // namespace

class TestPager : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_server;
    QTemporaryDir m_serverHome;
    int m_pair = 0;
    // Each test's two players, logged in, under names no other test has used so that buddy
    // lists and rate limits start empty.
    std::unique_ptr<LobbyClient> ann, bob;

private Q_SLOTS:
    void initTestCase() { QVERIFY(startOpenLobby(m_server, m_serverHome)); }

    void init()
    {
        ++m_pair;
        ann = std::make_unique<LobbyClient>(QStringLiteral("ann%1").arg(m_pair), m_server);
        bob = std::make_unique<LobbyClient>(QStringLiteral("bob%1").arg(m_pair), m_server);
        QVERIFY(logIn({ann.get(), bob.get()}));
    }

    void cleanup()
    {
        ann.reset();
        bob.reset();
    }

    void menuFollowsThePlayer_data()
    {
        QTest::addColumn<bool>("buddy");
        QTest::addColumn<Presence>("presence");
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("notifications"); // the buddy-notification option
        QTest::addColumn<QString>("code");
        QTest::addColumn<bool>("gameEntries");

        QTest::newRow("away") << false << Presence::Away << "" << true << "1" << false;
        QTest::newRow("game without address")
            << false << Presence::Playing << "" << true << "4" << false;
        QTest::newRow("buddy in a game")
            << true << Presence::Playing << "10.0.0.5" << true << "5" << true;
        QTest::newRow("buddy in a game, not told")
            << true << Presence::Playing << "10.0.0.5" << false << "5" << true;
    }

    void menuFollowsThePlayer()
    {
        QFETCH(bool, buddy);
        QFETCH(Presence, presence);
        QFETCH(QString, address);
        QFETCH(bool, notifications);
        QFETCH(QString, code);
        QFETCH(bool, gameEntries);
        FrmMenu *menu = ann->app.windows().frmMenu();
        clickPlayer(*ann, ann->name, Qt::RightButton);
        QVERIFY(!menu->mnuChatPopup->isVisible()); // none on oneself

        ann->app.options().setBuddyNotifications(notifications);
        if (buddy) {
            changeBuddy(*ann, bob->name, Dialogs::Answer::Yes);
            QCOMPARE(ann->dialogs.asked.last(),
                     "Do you want to add '" + bob->name + "' to your buddylist? [Yes/No]");
        }
        bob->app.connection().send(protocol::PlayerStatusToServer{presence, address});
        QTRY_COMPARE(ann->statusOf(bob->name), code);
        // A buddy going into a game is told on the desktop, if the user wants that.
        const bool told = notifications && buddy && presence == Presence::Playing;
        QCOMPARE(ann->tray.messages,
                 told ? QStringList{"QUORVEL: " + bob->name + " has started a game"}
                      : QStringList());
        // A click on that note joins the buddy's game, as the menu's Join Game does.
        ann->app.options().setPathRS(kGameFolder);
        ann->tray.clickMessage();
        QCOMPARE(ann->games.commandLines.value(0).mid(1),
                 told ? QStringList({"-client", address, "2346"}) : QStringList());

        clickPlayer(*ann, bob->name, Qt::RightButton);
        QVERIFY(menu->mnuChatPopup->isVisible());
        QCOMPARE(menu->mnuAddBuddie->text(), buddy ? "Remove buddie" : "Add buddie");
        QCOMPARE(menu->mnuGameInfo->isEnabled(), gameEntries);
        QCOMPARE(menu->mnuJoinGame->isEnabled(), gameEntries);
        menu->mnuChatPopup->hide();
    }

    // Buddies are kept by the server: the next login shows one bold and above the others, and
    // a removed one plain again. Answering No changes nothing.
    void buddiesSurviveANewLogin()
    {
        for (const auto &[answer, expected] :
             {std::pair{Dialogs::Answer::No, "7"}, std::pair{Dialogs::Answer::Yes, "8"},
              std::pair{Dialogs::Answer::Yes, "7"}}) {
            changeBuddy(*ann, bob->name, answer);
            roundTrip(*ann, *ann); // the server has the change before the next login
            ann = std::make_unique<LobbyClient>(ann->name, m_server);
            QVERIFY(logIn({ann.get()}));
            QTRY_COMPARE(ann->statusOf(bob->name), expected);
            const int row = ann->app.players().findEntry(bob->name);
            QCOMPARE(ann->app.players().isBold(row), QString(expected) == "8");
            QVERIFY(ann->tray.messages.isEmpty()); // a buddy online at the login is no news
        }
    }

    // A message opens nothing on the receiver but sounds and marks the sender unread; opening
    // the conversation clears the mark, and the reply reaches the sender's open window quietly.
    // The partner leaving hides the window, and what is sent to him then goes nowhere.
    void aConversation()
    {
        clickPlayer(*ann, bob->name, Qt::LeftButton);
        FrmPager *annPager = ann->app.windows().frmPager();
        QVERIFY(annPager->isVisible());
        QCOMPARE(annPager->Label2->text(), "Page " + bob->name + "  (Online)");
        typeMessage(*ann, QStringLiteral("  hello there "));
        QVERIFY(annPager->txtSkicka->text().isEmpty());

        // The sender sees the server's copy under his own name.
        const QString line = ann->name + ":  hello there\r\n";
        QTRY_COMPARE(historyWith(*bob, ann->name), line);
        QTRY_COMPARE(historyWith(*ann, bob->name), line);
        clickPlayer(*bob, ann->name, Qt::LeftButton);
        FrmPager *bobPager = bob->app.windows().frmPager();
        QCOMPARE(bobPager->txtHistory->toPlainText(), QString(line).replace("\r\n", "\n"));
        // The partner's avatar comes from the lobby's own avatar pages.
        QTRY_COMPARE(bobPager->picUser->pixmap().size(), QSize(150, 150));
        typeMessage(*bob, QStringLiteral("hi"));
        const QString both = line + bob->name + ":  hi\r\n";
        QTRY_COMPARE(historyWith(*ann, bob->name), both);
        QCOMPARE(annPager->txtHistory->toPlainText(), QString(both).replace("\r\n", "\n"));
        // The pager shares the chat's pace of one line per three seconds: too soon, it stays,
        // and the send button counts down the wait as the chat's does.
        typeMessage(*bob, QStringLiteral("too soon"), 0);
        QCOMPARE(bobPager->txtSkicka->text(), "too soon");
        QCOMPARE(bobPager->Picture3->text(), "4");
        QVERIFY(!bobPager->Picture3->isEnabled());

        const qint64 bobIndex = ann->app.pager().current();
        bob.reset();
        QTRY_VERIFY(!annPager->isVisible());
        annPager->show();
        typeMessage(*ann, QStringLiteral("still there?"));
        QVERIFY(annPager->txtSkicka->text().isEmpty());
        roundTrip(*ann, *ann);
        QCOMPARE(ann->app.pager().history(bobIndex), both);
    }

    // Ann ignores Bob and talks with Cy, then starts again on her files. The pager shows her
    // conversation with Cy from before, grey under "Earlier conversation"; Bob's entry is marked
    // and his lobby line, room line and private message, sent before Cy's, never show.
    void ignoringAndConversationsAcrossARestart()
    {
        LobbyClient cy(QStringLiteral("cy%1").arg(m_pair), m_server);
        QVERIFY(logIn({&cy}) && waitUntil([&] { return !ann->statusOf(cy.name).isEmpty(); }));
        clickPlayer(*ann, bob->name, Qt::RightButton);
        FrmMenu *menu = ann->app.windows().frmMenu();
        QVERIFY(menu->mnuIgnore->isVisible() && !menu->mnuStopIgnoring->isVisible());
        menu->mnuIgnore->trigger();
        menu->mnuChatPopup->hide();
        clickPlayer(*ann, cy.name, Qt::LeftButton);
        typeMessage(*ann, QStringLiteral("see you"));
        QTRY_COMPARE(
            ConversationArchive(ann->dataFolder() + "/pm", ann->clock).earlierLines(cy.name).size(),
            1);

        ann = std::make_unique<LobbyClient>(ann->name, m_server, ann->dataFolder());
        QVERIFY(logIn({ann.get()}));
        QTRY_VERIFY(!ann->statusOf(bob->name).isEmpty() && !ann->statusOf(cy.name).isEmpty());
        QAbstractItemModel *list = ann->app.form().ListView2->model();
        const QModelIndexList marked =
            list->match(list->index(0, 0), Qt::ToolTipRole, "ignored", -1, Qt::MatchExactly);
        QCOMPARE(marked.size(), 1);
        QCOMPARE(marked.first().data().toString(), bob->name);
        clickPlayer(*ann, cy.name, Qt::LeftButton);
        const QPlainTextEdit *history = ann->app.windows().frmPager()->txtHistory;
        QCOMPARE(history->toPlainText(), "Earlier conversation\n" + ann->name + ":  see you\n");
        const auto colourOf = [history](int block) {
            const QTextBlock line = history->document()->findBlockByNumber(block);
            return line.begin().fragment().charFormat().foreground().color();
        };
        QVERIFY(colourOf(1) != QColor(Qt::black) && colourOf(1) == colourOf(0));
        ann->app.windows().frmPager()->hide(); // so that a message sounds

        ann->createRoom(QStringLiteral("quiet"));
        for (LobbyClient *member : {bob.get(), &cy}) {
            QTRY_VERIFY(member->app.rooms().findRoomRow(ann->name) >= 0);
            member->doubleClickRoom(ann->name);
        }
        QTRY_COMPARE(ann->app.room().memberNames().size(), 3);
        // Cy speaks once the server has passed on Bob's lines: Ann gets his before hers.
        for (LobbyClient *speaker : {bob.get(), &cy}) {
            const QString text = "from " + speaker->name;
            speaker->app.connection().send(protocol::ChatLineToServer{text});
            speaker->app.connection().send(protocol::PrivateMessageToServer{ann->name, text});
            speaker->app.roomSession().sendChat(text);
            QTRY_VERIFY(cy.app.room().chatLines().contains(speaker->name + ": " + text));
        }
        QTRY_COMPARE(ann->app.room().chatLines(), QStringList{cy.name + ": from " + cy.name});
        QCOMPARE(ann->app.chat().log().lines().last().text, "from " + cy.name);
        QVERIFY(!ann->app.form().txtChat->toPlainText().contains("from " + bob->name));
        QCOMPARE(historyWith(*ann, bob->name), "");
        QCOMPARE(historyWith(*ann, cy.name), cy.name + ":  from " + cy.name + "\r\n");
        QCOMPARE(ann->player.played.filter("A_CRHRN1").size(), 1); // Cy's message
    }
};

QTEST_MAIN(TestPager)
#include "tst_pager.moc"
