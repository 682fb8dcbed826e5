// Rooms against the real lobby server, three clients in one process: a host opens a room,
// members join (one after a wrong password), chat, get ready, lock and unlock it, the host
// starts the game and the ready member's game follows, and the host's leaving closes the room
// everywhere. Starting the game is recorded at the launch signals.
// ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "protocol/rooms.h"
#include "support/lobbyclient.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTreeView>

using namespace client;

namespace {

struct Player : LobbyClient
{
    using LobbyClient::LobbyClient;

    FrmRoom *window() { return app.windows().isRoomLoaded() ? app.windows().frmRoom() : nullptr; }
    QStringList members() { return app.room().memberNames(); }
    bool canCreateRoom() { return !app.form().picCreateRoom->isHidden(); }
    RoomListModel &rooms() { return app.rooms(); }
    int roomRow(const QString &host) { return rooms().findRoomRow(host); }

    void say(const QString &line)
    {
        window()->txtRoomChatSend->setText(line);
        QTest::keyClick(window()->txtRoomChatSend, Qt::Key_Return);
    }
};

} // namespace

class TestRooms : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_server;
    QTemporaryDir m_serverHome;

private Q_SLOTS:
    void initTestCase() { QVERIFY(startOpenLobby(m_server, m_serverHome)); }

    void aRoomFromOpeningToClosing()
    {
        Player ann("ann", m_server), bob("bob", m_server), cy("cy", m_server);
        const QList<Player *> everyone{&ann, &bob, &cy};
        // The host's game: it runs until the test ends.
        QVERIFY(writeScript(ann.gameFolder + "/roguespear.exe", "exec sleep 600"));
        QVERIFY(logIn({&ann, &bob, &cy}));

        // Cy waits in a room of her own, where a line of another room must not show. A blank
        // name cannot be made; spaces around a name stay.
        cy.app.form().picCreateRoom->click();
        QTest::keyClicks(cy.app.windows().frmMakeRoom()->Text1, "  ");
        QVERIFY(!cy.app.windows().frmMakeRoom()->Picture3->isEnabled());
        cy.createRoom("waiting  ");
        // Twenty letters of code page 1252 that are not ASCII.
        const QString name = QString::fromUtf8("ÄÖÜäöüßéèêñçåøæÆØÅÉÈ");
        ann.createRoom(name + "xyz"); // the box takes twenty characters
        QVERIFY(!ann.canCreateRoom());
        QCOMPARE(ann.window()->Label1->text(), "Room: " + name + "     Host: ann");
        QCOMPARE(ann.app.session().serverStatus, "In chat");
        for (Player *player : everyone)
            QTRY_VERIFY(player->roomRow("ann") >= 0 &&
                        player->rooms().text(player->roomRow("ann"), RoomListModel::RoomName) ==
                            name);

        QTRY_VERIFY(bob.roomRow("cy") >= 0);
        QCOMPARE(bob.rooms().text(bob.roomRow("cy"), RoomListModel::RoomName), "  waiting  ");
        bob.doubleClickRoom("ann");
        QCOMPARE(bob.window()->Label1->text(), "Room: " + name + "     Host: ann");
        QVERIFY(bob.window()->chkLock->isHidden() && !ann.window()->chkLock->isHidden());
        for (Player *player : {&ann, &bob})
            QTRY_COMPARE(player->members(), (QStringList{"ann", "bob"}));

        // Room chat reaches the room's members only.
        bob.say("hello");
        QVERIFY(bob.window()->txtRoomChatSend->text().isEmpty());
        for (Player *player : {&ann, &bob})
            QTRY_COMPARE(player->app.room().chatLines(), QStringList{"bob: hello"});
        QCOMPARE(ann.window()->txtRoomChat->toPlainText(), "bob: hello");
        cy.window()->picLeaveRoom->click();
        QVERIFY(cy.app.room().chatLines().isEmpty());
        QVERIFY(cy.canCreateRoom() && !cy.window());
        QTRY_VERIFY(ann.roomRow("cy") < 0);

        // Locked: a wrong password is refused, the right one lets her in.
        ann.window()->txtPassword->setText("abc");
        ann.window()->chkLock->click();
        QTRY_COMPARE(cy.rooms().icon(cy.roomRow("ann")), RoomListModel::LockedRoom);
        cy.doubleClickRoom("ann"); // the password asked for, and cancelled
        QVERIFY(cy.canCreateRoom() && !cy.window());
        cy.dialogs.inputs = {"wrong"};
        cy.doubleClickRoom("ann");
        QTRY_VERIFY(cy.dialogs.asked.contains("Wrong password"));
        QVERIFY(cy.canCreateRoom() && !cy.window());
        cy.dialogs.inputs = {"abc"};
        cy.doubleClickRoom("ann");
        for (Player *player : everyone)
            QTRY_COMPARE(player->members(), (QStringList{"ann", "bob", "cy"}));
        ann.window()->chkLock->click();
        QTRY_COMPARE(bob.rooms().icon(bob.roomRow("ann")), RoomListModel::OpenRoom);

        // Ready states travel both ways; the host may start once ready.
        bob.window()->Picture4->click();
        ann.window()->Picture4->click();
        for (Player *player : everyone)
            QTRY_VERIFY(player->app.room().memberIcon("ann") == 2 &&
                        player->app.room().memberIcon("bob") == 2 &&
                        player->app.room().memberIcon("cy") == 1);
        QCOMPARE(bob.app.room().playerReadyStatus, 2);
        QVERIFY(!ann.window()->picStartGame->isHidden());
        QVERIFY(bob.window()->picJoinGame->isHidden() && bob.window()->picStartGame->isHidden());

        // Start: the host's game server, and once it runs the ready member's game joins it.
        QSignalSpy bobJoins(&bob.app.roomSession(), &RoomSession::gameClientAutoStartRequested);
        QSignalSpy cyJoins(&cy.app.roomSession(), &RoomSession::gameClientAutoStartRequested);
        ann.window()->picStartGame->click();
        ann.window()->picStartGame->click();
        QTRY_COMPARE_WITH_TIMEOUT(bobJoins.count(), 1, 15000);
        QCOMPARE(ann.games.commandLines.size(), 1);
        QCOMPARE(bobJoins.at(0).at(0).toString(), "127.0.0.1");
        QVERIFY(!bob.window()->picJoinGame->isHidden());
        QTRY_COMPARE(cy.window()->lblStatus->text(), "In game");
        QVERIFY(cy.window()->picJoinGame->isHidden());
        QCOMPARE(cyJoins.count(), 0);
        QSignalSpy bobButton(&bob.app.roomSession(), &RoomSession::gameClientStartRequested);
        bob.window()->picJoinGame->click();
        QCOMPARE(bobButton.count(), 1);

        // The host leaves: the room goes for everyone and every member's window closes.
        ann.window()->picLeaveRoom->click();
        QCOMPARE(ann.app.session().serverStatus, QString());
        for (Player *player : everyone) {
            QTRY_VERIFY(player->roomRow("ann") < 0);
            QVERIFY(player->canCreateRoom() && !player->window());
            QVERIFY(player->app.room().hostName.isEmpty());
        }
        // The room's game stays listed: a double-click there joins it and opens no room.
        QSignalSpy bobGame(&bob.app.roomSession(), &RoomSession::gameClientStartRequested);
        Q_EMIT bob.app.form().ListView1->activated(
            bob.rooms().index(bob.rooms().findRowByTag("127.0.0.1", true), 0));
        QCOMPARE(bobGame.count(), 1);
        QVERIFY(!bob.window());
        // A member message for no room of the user's is dropped.
        bob.app.dispatcher().receive(protocol::MemberJoined{"ghost", {}}.encode());
        bob.app.dispatcher().receive(
            protocol::MemberJoined{"ghost", protocol::ReadyState::Ready}.encode());
        QVERIFY(bob.members().isEmpty() && !bob.window());
    }

    void losingTheConnectionKeepsTheRoomWindowAndTheTrayBringsItBack()
    {
        ServerProcess server;
        QTemporaryDir home;
        QVERIFY(startOpenLobby(server, home));
        Player ann("ann", server);
        QVERIFY(logIn({&ann}));
        ann.createRoom("war");
        server.killHard();
        QTRY_VERIFY(!ann.app.session().isOnline());
        QVERIFY(ann.window() && ann.window()->isVisible());
        QCOMPARE(ann.app.room().hostName, "ann");
        // Hidden, it comes back with the main window from the tray.
        ann.window()->Picture5->click();
        QVERIFY(!ann.window()->isVisible());
        ann.tray.activate();
        QVERIFY(ann.window()->isVisible());
    }
};

QTEST_MAIN(TestRooms)
#include "tst_rooms.moc"
