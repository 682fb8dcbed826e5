// The room window's rules without a server: which of Start and Join the user sees and when the
// game follows the host's, what a double-click on the room list does, and the create-room
// dialog. What travels between clients is the end-to-end test's.
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "protocol/message.h"
#include "support/clientfakes.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace client;
using protocol::Code;

namespace {

// A room session for the user "me", not connected: what it would send is dropped.
struct Rig
{
    RoomState room;
    RoomListModel rooms;
    LobbyDispatcher dispatcher;
    LobbyConnection connection{dispatcher};
    SessionState session;
    FakeDialogs dialogs;
    RoomSession rooms_{
        room, rooms, dispatcher, connection, session, dialogs, [] { return QStringLiteral("me"); }};

    // A listed room of "host" at 10.0.0.5 (or a running game there), double-clicked.
    void doubleClick(RoomListModel::IconIndex icon)
    {
        rooms.appendRow({"host", "war", "", "In chat", "       1", ""}, "10.0.0.5", icon);
        rooms_.joinRow(0);
    }
    // "ÖR|me|2", "ÖS|host|In game": a message from the server, its fields after its name.
    void receive(const QString &message)
    {
        QStringList fields = message.split('|');
        const Code code = fields.takeFirst() == "ÖR" ? Code::MemberReady : Code::RoomStatus;
        dispatcher.receive(protocol::buildMessage(code, fields));
    }
};

} // namespace

class TestRoomWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startAndJoinFollowReadyAndStatus_data()
    {
        QTest::addColumn<bool>("host");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<bool>("start");
        QTest::addColumn<bool>("join");
        QTest::addColumn<int>("gamesJoined");
        QTest::addColumn<int>("readyStatus");

        QTest::newRow("host ready") << true << QStringList{"ÖR|me|2"} << true << false << 0 << 2;
        QTest::newRow("host ready, then not")
            << true << QStringList{"ÖR|me|2", "ÖR|me|1"} << false << false << 0 << 1;
        QTest::newRow("member ready in chat")
            << false << QStringList{"ÖR|me|2"} << false << false << 0 << 2;
        QTest::newRow("ready member, host starts")
            << false << QStringList{"ÖR|me|2.0", "ÖS|host|In game"} << false << true << 1 << 2;
        QTest::newRow("member not ready, host starts")
            << false << QStringList{"ÖS|host|In game"} << false << false << 0 << 1;
        QTest::newRow("ready after the start: the button only")
            << false << QStringList{"ÖS|host|In game", "ÖR|me|2"} << false << true << 0 << 2;
        QTest::newRow("game over")
            << false << QStringList{"ÖR|me|2", "ÖS|host|In game", "ÖS|host|In chat"} << false
            << false << 1 << 2;
        QTest::newRow("another room starts")
            << false << QStringList{"ÖR|me|2", "ÖS|other|In game"} << false << false << 0 << 2;
        QTest::newRow("another member's state")
            << false << QStringList{"ÖR|host|2"} << false << false << 0 << 1;
        QTest::newRow("state not a number")
            << false << QStringList{"ÖR|me|x"} << false << false << 0 << 1;
    }
    void startAndJoinFollowReadyAndStatus()
    {
        QFETCH(bool, host);
        QFETCH(QStringList, messages);
        Rig rig;
        QSignalSpy joined(&rig.rooms_, &RoomSession::gameClientAutoStartRequested);
        if (host)
            rig.rooms_.createRoom("war");
        else
            rig.doubleClick(RoomListModel::OpenRoom);
        FrmRoom window(rig.room, rig.rooms_);
        for (const QString &message : messages)
            rig.receive(message);

        QTEST(!window.picStartGame->isHidden(), "start");
        QTEST(!window.picJoinGame->isHidden(), "join");
        QTEST(int(joined.count()), "gamesJoined");
        QTEST(rig.room.playerReadyStatus, "readyStatus");
        if (!joined.isEmpty())
            QCOMPARE(joined.at(0).at(0).toString(), "10.0.0.5");
    }

    void doubleClickOnTheRoomList_data()
    {
        QTest::addColumn<int>("icon");
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<QString>("inRoom");   // the room window's host; "" no room
        QTest::addColumn<QString>("gameJoin"); // the game started as a client of
        QTest::addColumn<QStringList>("asked");

        const QStringList locked{"input: This server is locked"};
        QTest::newRow("open") << int(RoomListModel::OpenRoom) << QStringList() << "host"
                              << "" << QStringList();
        QTest::newRow("locked, password given")
            << int(RoomListModel::LockedRoom) << QStringList{"abc"} << "host"
            << "" << locked;
        QTest::newRow("locked, cancelled") << int(RoomListModel::LockedRoom) << QStringList() << ""
                                           << "" << locked;
        QTest::newRow("running game") << int(RoomListModel::RunningGame) << QStringList() << ""
                                      << "10.0.0.5" << QStringList();
    }
    void doubleClickOnTheRoomList()
    {
        QFETCH(int, icon);
        QFETCH(QString, inRoom);
        Rig rig;
        QFETCH(QStringList, answers);
        rig.dialogs.inputs = answers;
        QSignalSpy shown(&rig.rooms_, &RoomSession::roomWindowShowRequested);
        QSignalSpy game(&rig.rooms_, &RoomSession::gameClientStartRequested);
        rig.doubleClick(RoomListModel::IconIndex(icon));

        QCOMPARE(rig.room.hostName, inRoom);
        QCOMPARE(shown.count(), inRoom.isEmpty() ? 0 : 1);
        QTEST(game.isEmpty() ? QString() : game.at(0).at(0).toString(), "gameJoin");
        QTEST(rig.dialogs.asked, "asked");
        if (inRoom.isEmpty())
            return;
        QCOMPARE(rig.room.caption, "Room: war     Host: host");
        QCOMPARE(rig.room.ipToGame, "10.0.0.5");
        // Leaving works without a connection too.
        QSignalSpy button(&rig.rooms_, &RoomSession::createRoomButtonShown);
        rig.rooms_.leave();
        QVERIFY(rig.room.hostName.isEmpty() && !rig.room.hideShowRoom);
        QCOMPARE(button.count(), 1);
    }

    void makeRoomIsEnabledForANameThatIsNotBlank_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("room"); // asked for; "" when "Make room" stays disabled

        QTest::newRow("nothing") << ""
                                 << "";
        QTest::newRow("spaces") << "   "
                                << "";
        QTest::newRow("spaces around") << "  war  "
                                       << "  war  ";
        QTest::newRow("too long") << "abcdefghijklmnopqrstuvwxyz"
                                  << "abcdefghijklmnopqrst";
    }
    void makeRoomIsEnabledForANameThatIsNotBlank()
    {
        QFETCH(QString, typed);
        QFETCH(QString, room);
        FrmMakeRoom dialog;
        QSignalSpy requested(&dialog, &FrmMakeRoom::makeRoomRequested);
        QTest::keyClicks(dialog.Text1, typed);
        QCOMPARE(dialog.Picture3->isEnabled(), !room.isEmpty());
        QTest::keyClick(dialog.Text1, Qt::Key_Return);
        QCOMPARE(requested.isEmpty() ? QString() : requested.at(0).at(0).toString(), room);
    }
};

QTEST_MAIN(TestRoomWindow)
#include "tst_roomwindow.moc"
