// ctest: xvfb
// ctest: lock=gameport
#include "client/app/form1.h"
#include "client/desktop/x11gamewindowfinder.h"
#include "client/game/findgameserver.h"
#include "client/game/gamelauncher.h"
#include "client/game/gamewindows.h"
#include "client/game/ingamedetection.h"
#include "client/game/launchsites.h"
#include "client/lobby/lobbyconnection.h"
#include "client/platform/folderwatcher.h"
#include "client/platform/proctcptable.h"
#include "client/rooms/roomlistmodel.h"
#include "client/rooms/roomsession.h"
#include "client/session/sessionstate.h"
#include "client/settings/options.h"
#include "protocol/login.h"
#include "protocol/presence.h"
#include "protocol/rooms.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/scriptedserver.h"
#include "support/serverprocess.h"
#include "support/wait.h"

#include <QTest>

using namespace client;
using protocol::Presence;
using protocol::RoomStatus;

namespace {

const QString kGame = kGameFolder + "/roguespear.exe";

QByteArray presence(Presence state, const QString &server = {})
{
    return protocol::PlayerStatusToServer{state, server}.encode();
}
QByteArray room(RoomStatus status)
{
    return protocol::RoomStatusToServer{status}.encode();
}

// The client, started and connected to a lobby stand-in, with the stand-in game installed;
// beside it the test's own view of the machine's game window and connections.
struct Rig
{
    AppHarness h;
    ScriptedServer server;
    X11GameWindowFinder finder;
    GameWindows windows{finder};
    ProcTcpTable table;
    GameServerScan scan{windows, table, h.dialogs};

    bool start(const QString &gameFolder = kGameFolder)
    {
        h.app.options().setPathRS(gameFolder);
        if (!h.app.start())
            return false;
        h.app.connection().connectToLobby("127.0.0.1", server.port());
        return waitUntil([this] { return h.app.connection().isConnected(); });
    }
    // What the client sent to the lobby while `action` ran.
    QByteArray sentDuring(const std::function<void()> &action)
    {
        return ::sentDuring(server, h.app.connection(), action);
    }
    bool gameIs(const QString &server)
    {
        return waitUntil([&] { return scan.findGameServer() == server; }, 10000);
    }
};

} // namespace

class TestGameFlow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The host presses Start twice: one game server, and "In game" once it runs. The detection tick
    // that finds it says "playing" on "host" once, hides the lobby and watches the game
    // folder; the tick after the game ended says "lobby", tells the room "In chat" and shows
    // the lobby again. A game restarted by hand turns the room back to "In game".
    void hostedGameFromStartToEnd()
    {
        Rig r;
        QVERIFY(r.start());
        SessionState &session = r.h.app.session();
        InGameDetection &detection = r.h.app.detection();
        session.serverStatus = "In chat"; // a room is open

        QCOMPARE(r.sentDuring([&] {
            r.h.app.roomSession().startGame();
            r.h.app.roomSession().startGame();
            QVERIFY(waitUntil([&] { return session.serverStatus == "In game"; }, 10000));
        }),
                 room(RoomStatus::InGame));
        QCOMPARE(r.h.games.commandLines, (QList<QStringList>{{kGame, "-server", "2346"}}));
        QVERIFY(r.gameIs("host"));

        QCOMPARE(r.sentDuring([&] { detection.tick(); }), presence(Presence::Playing, "host"));
        QVERIFY(session.inGame);
        QVERIFY(!r.h.app.form().isVisible());
        QVERIFY(r.h.app.folderWatcher().isWatching());
        QCOMPARE(r.sentDuring([&] { detection.tick(); }), QByteArray());

        r.h.games.endAll();
        QVERIFY(r.gameIs(""));
        QCOMPARE(r.sentDuring([&] { detection.tick(); }),
                 presence(Presence::Lobby) + room(RoomStatus::InChat));
        QVERIFY(!session.inGame);
        QVERIFY(r.h.app.form().isVisible());
        QVERIFY(!r.h.app.folderWatcher().isWatching());

        QVERIFY(r.h.app.launcher().launchGameServer());
        QVERIFY(r.gameIs("host"));
        QCOMPARE(r.sentDuring([&] { detection.tick(); }),
                 presence(Presence::Playing, "host") + room(RoomStatus::InGame));
    }

    // Joining starts the game as a client of the address, which connects to the host's game
    // port; an automatic join while Rogue Spear already runs starts nothing; a running game of
    // the room list is joined by its address.
    void joiningConnectsToTheHost()
    {
        Rig r;
        QVERIFY(r.start());
        ServerProcess host;
        QVERIFY(host.start(kFakeGame, {"-server", "2346", "-bind", "127.0.0.2"}));
        QVERIFY(r.gameIs("host"));

        r.h.app.launchSites().autoJoinGame("127.0.0.2");
        QVERIFY(r.h.games.commandLines.isEmpty());
        QVERIFY(r.h.app.launcher().launchGameClient("127.0.0.2"));
        QCOMPARE(r.h.games.commandLines,
                 (QList<QStringList>{{kGame, "-client", "127.0.0.2", "2346"}}));
        // Seen from the joining game alone (the host's listening socket is on this machine
        // too, and would decide first).
        QVERIFY(waitUntil([&] {
            QList<TcpRow> rows = r.table.read().rows;
            rows.removeIf([](const TcpRow &row) { return row.state == 2; });
            return GameServerScan::gameServerIn(rows) == "127.0.0.2";
        }));

        r.h.app.session().setOnline(true);
        r.h.app.rooms().appendRow({"", "", "", "", "", ""}, "10.0.0.5", RoomListModel::RunningGame);
        r.h.app.rooms().appendRow({"Bob", "", "", "", "", ""}, "10.0.0.6", RoomListModel::OpenRoom);
        r.h.app.launchSites().joinListedGame(1);
        r.h.app.launchSites().joinListedGame(0);
        QCOMPARE(r.h.games.commandLines.size(), 2);
        QCOMPARE(r.h.games.commandLines.last().mid(1),
                 (QStringList{"-client", "10.0.0.5", "2346"}));
    }

    // A game that cannot start (no folder set, no game in it, a game that ends at once) is
    // told in a message box; the room stays as it was and the client goes on.
    void failedStartIsTold()
    {
        QTemporaryDir empty;
        Rig r;
        QVERIFY(r.start(QString()));
        r.h.dialogs.asked.clear(); // the options' missing-folder notice
        r.h.app.session().serverStatus = "In chat";
        QCOMPARE(r.sentDuring([&] {
            r.h.app.roomSession().startGame();
            r.h.app.options().setPathRS(empty.path());
            r.h.app.roomSession().startGame();
            QVERIFY(writeScript(empty.filePath("RogueSpear.exe"), "echo 'no display' >&2; exit 2"));
            r.h.app.roomSession().startGame();
            QVERIFY(waitUntil([&] { return r.h.dialogs.asked.size() == 3; }));
        }),
                 QByteArray());
        QCOMPARE(r.h.app.session().serverStatus, QString("In chat"));
        QCOMPARE(r.h.dialogs.asked.size(), 3);
        QVERIFY(r.h.dialogs.asked.at(2).contains("no display"));
        QVERIFY(r.h.dialogs.asked.at(0).contains("path to roguespear.exe is not set"));
        QVERIFY(r.h.dialogs.asked.at(1).contains("roguespear.exe does not exist"));
        QVERIFY(r.h.app.connection().isConnected());
    }
};

QTEST_MAIN(TestGameFlow)
#include "tst_gameflow.moc"
