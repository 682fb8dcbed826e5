#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/eventsounds.h"
#include "client/session/sessionstate.h"
#include "client/settings/options.h"
#include "client/stats/statsreset.h"
#include "protocol/stats.h"
#include "support/clientfakes.h"
#include "support/files.h"
#include "support/scriptedserver.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace client;

namespace {

const QByteArray kReset = protocol::StatsReset{}.encode();

// A stats reset connected to a lobby stand-in, sounds off, the reset sound in its game folder.
struct Rig
{
    QTemporaryDir home;
    ScriptedServer server;
    LobbyDispatcher dispatcher;
    LobbyConnection connection{dispatcher};
    SessionState session;
    Options options;
    FakeKeyState keys;
    RecordingPlayer player;
    EventSounds sounds{player};
    FakeDialogs dialogs;
    StatsReset reset{connection, session, options, keys, sounds, dialogs};
    QSignalSpy statusLines{&reset, &StatsReset::statusLine};

    Rig()
    {
        writeFile(home.filePath("RS/data/sound/English/ref_clr1.wav"));
        sounds.setGameFolder(home.filePath("RS"));
        connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
        waitUntil([this] { return connection.isConnected(); });
    }
    QTimer *timer() const { return reset.findChild<QTimer *>(QStringLiteral("tmrStatsReset")); }
};

} // namespace

class TestStatsReset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The button asks first and resets on Yes. The hot key resets, with its sound whatever
    // the sound option says, only in a game with the captured key down; held through two
    // polls it resets twice. A keyboard that cannot be read is told once.
    void resets_data()
    {
        QTest::addColumn<bool>("button"); // else two polls of the hot key
        QTest::addColumn<bool>("inGame");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<int>("down");
        QTest::addColumn<bool>("readable");
        QTest::addColumn<int>("resets");
        QTest::newRow("button, Yes") << true << false << "116" << 0 << true << 1;
        QTest::newRow("button, No") << true << false << "116" << 0 << true << 0;
        QTest::newRow("in game, F5 held") << false << true << "116" << 116 << true << 2;
        QTest::newRow("no game") << false << false << "116" << 116 << true << 0;
        QTest::newRow("another key down") << false << true << "116" << 117 << true << 0;
        QTest::newRow("no key captured") << false << true << "" << 0 << true << 0;
        QTest::newRow("keyboard unreadable") << false << true << "116" << 116 << false << 0;
    }
    void resets()
    {
        QFETCH(bool, button);
        QFETCH(bool, inGame);
        QFETCH(QString, tag);
        QFETCH(int, down);
        QFETCH(bool, readable);
        QFETCH(int, resets);
        Rig r;
        r.session.inGame = inGame;
        r.options.setHotKeyTag(tag);
        r.keys.down = {down};
        r.keys.available = readable;
        r.dialogs.answers = {resets ? Dialogs::Answer::Yes : Dialogs::Answer::No};
        const QByteArray sent = sentDuring(r.server, r.connection, [&] {
            if (button) {
                r.reset.picResetStatsClicked();
            } else {
                r.reset.pollHotKey();
                r.reset.pollHotKey();
            }
        });
        QCOMPARE(sent, kReset.repeated(resets));
        QCOMPARE(r.dialogs.asked, button ? QStringList{"Are you sure? [Yes/No]"} : QStringList{});
        QCOMPARE(r.player.played.size(), button ? 0 : resets);
        if (!r.player.played.isEmpty())
            QVERIFY(r.player.played.first().endsWith("/data/sound/English/ref_clr1.wav"));
        QCOMPARE(r.statusLines.size(), readable ? 0 : 1);
    }

    // The poll runs every 500 ms exactly while the reset option is on, also when it was on
    // before the reset was built.
    void timerFollowsTheOption()
    {
        Rig r;
        QVERIFY(r.timer());
        QCOMPARE(r.timer()->interval(), 500);
        QVERIFY(!r.timer()->isActive());
        r.session.inGame = true;
        r.options.setHotKeyTag(QStringLiteral("116"));
        r.keys.down = {116};
        r.options.setReset(true);
        QVERIFY(r.timer()->isActive());
        QVERIFY(r.server.expect(kReset));
        r.options.setReset(false);
        QVERIFY(!r.timer()->isActive());

        r.options.setReset(true);
        const StatsReset built(r.connection, r.session, r.options, r.keys, r.sounds, r.dialogs);
        QVERIFY(built.findChild<QTimer *>(QStringLiteral("tmrStatsReset"))->isActive());
    }
};

QTEST_MAIN(TestStatsReset)
#include "tst_statsreset.moc"
