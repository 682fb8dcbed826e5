// Which of Start and Join the room window shows and when the game follows the host's, for the
// cases the end-to-end test does not meet; no server.
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomsession.h"
#include "client/rooms/roomstate.h"
#include "client/session/sessionstate.h"
#include "protocol/message.h"
#include "protocol/rooms.h"
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
    IgnoreList ignored{QString()};
    RoomSession rooms_{room,    rooms,   dispatcher, connection,
                       session, dialogs, ignored,    [] { return QStringLiteral("me"); }};

    // Joins the listed room of "host" at 10.0.0.5.
    void join()
    {
        rooms.appendRow({"host", "war", "", "In chat", "       1", ""}, "10.0.0.5",
                        RoomListModel::OpenRoom);
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

        QTest::newRow("host ready, then not")
            << true << QStringList{"ÖR|me|2", "ÖR|me|1"} << false << false << 0 << 1;
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
            rig.join();
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

    // The room list changes while the password box of a locked room is open: the join goes
    // to the room the user chose, or nowhere when it has gone.
    void lockedRoomLookedUpAfterThePasswordBox_data()
    {
        QTest::addColumn<int>("closing"); // the row whose room closes while the box is open
        QTest::addColumn<QString>("joined");
        QTest::newRow("the room above closed") << 0 << "locked";
        QTest::newRow("the room itself closed") << 1 << "";
    }
    void lockedRoomLookedUpAfterThePasswordBox()
    {
        QFETCH(int, closing);
        QFETCH(QString, joined);
        Rig rig;
        rig.rooms.appendRow({"first", "open", "", "In chat", "       1", ""}, "10.0.0.8",
                            RoomListModel::OpenRoom);
        rig.rooms.appendRow({"locked", "vault", "", "In chat", "       1", ""}, "10.0.0.7",
                            RoomListModel::LockedRoom);
        QSignalSpy shown(&rig.rooms_, &RoomSession::roomWindowShowRequested);
        rig.dialogs.inputs = {"abc"};
        rig.dialogs.whileAsking = [&] { rig.rooms.removeRows(closing, 1); };
        rig.rooms_.joinRow(1);
        QCOMPARE(rig.room.hostName, joined);
        QCOMPARE(shown.count(), joined.isEmpty() ? 0 : 1);
        if (!joined.isEmpty())
            QCOMPARE(rig.room.ipToGame, "10.0.0.7");
    }

    // A room the server refused closes its window and says why, whether the user opened it
    // or joined it; outside a room only the reason shows.
    void refusedRoomIsLeftWithItsReason_data()
    {
        QTest::addColumn<QString>("how");
        QTest::newRow("created") << "create";
        QTest::newRow("joined") << "join";
        QTest::newRow("in no room") << "";
    }
    void refusedRoomIsLeftWithItsReason()
    {
        QFETCH(QString, how);
        Rig rig;
        QSignalSpy unloaded(&rig.rooms_, &RoomSession::roomWindowUnloadRequested);
        if (how == "create")
            rig.rooms_.createRoom("war");
        else if (how == "join")
            rig.join();
        rig.dispatcher.receive(protocol::RoomRefused{"Too fast: try again."}.encode());
        QCOMPARE(rig.room.hostName, "");
        QCOMPARE(unloaded.count(), how.isEmpty() ? 0 : 1);
        QCOMPARE(rig.dialogs.asked, QStringList{"Too fast: try again."});
    }

    // A join prepares the still open window afresh: the old room's half-typed line goes too.
    void joiningEmptiesTheChatInput()
    {
        Rig rig;
        FrmRoom window(rig.room, rig.rooms_);
        window.txtRoomChatSend->setText("half a line");
        rig.join();
        QCOMPARE(window.txtRoomChatSend->text(), "");
    }
};

QTEST_MAIN(TestRoomWindow)
#include "tst_roomwindow.moc"
