#include "client/app/form1.h"
#include "client/lobby/lobbyconnection.h"
#include "client/options/options.h"
#include "client/pager/pager.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "protocol/stats.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/scriptedserver.h"

#include <QDesktopServices>
#include <QTest>

using namespace client;

namespace {

const QByteArray kReset = protocol::StatsReset{}.encode();

// The client connected to a lobby stand-in, sounds off, the reset sound in its game folder.
struct Rig
{
    AppHarness h;
    ScriptedServer server;

    Rig()
    {
        const QString game = h.home.filePath("RogueSpear");
        writeFile(game + "/data/sound/English/ref_clr1.wav");
        h.app.options().setPathRS(game);
        h.app.start();
        h.app.connection().connectToLobby("127.0.0.1", server.port());
        waitUntil([this] { return h.app.connection().isConnected(); });
        h.dialogs.asked.clear(); // the notice of a missing Black Ops folder
    }
    QByteArray sentDuring(const std::function<void()> &action)
    {
        return ::sentDuring(server, h.app.connection(), action);
    }
};

} // namespace

class TestResetAndPages : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    // The browser, as the desktop would start it.
    void openUrl(const QUrl &url) { m_opened << url.toString(); }

private Q_SLOTS:
    void initTestCase() { QDesktopServices::setUrlHandler("http", this, "openUrl"); }
    void cleanupTestCase() { QDesktopServices::unsetUrlHandler("http"); }

    void resetButtonAsksFirst()
    {
        Rig r;
        r.h.dialogs.answers = {Dialogs::Answer::No, Dialogs::Answer::Yes};
        QCOMPARE(r.sentDuring([&] { r.h.app.form().picResetStats->click(); }), QByteArray());
        QCOMPARE(r.h.dialogs.asked, QStringList{"Are you sure? [Yes/No]"});
        QCOMPARE(r.sentDuring([&] { r.h.app.form().picResetStats->click(); }), kReset);
    }

    // The hot-key poll: a reset, with its sound whatever the sound option says,
    // only in a game and with the captured key down.
    void hotKeyPoll_data()
    {
        QTest::addColumn<bool>("inGame");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<int>("down");
        QTest::addColumn<bool>("readable");
        QTest::addColumn<bool>("resets");
        QTest::newRow("in game, F5 down") << true << "116" << 116 << true << true;
        QTest::newRow("no game") << false << "116" << 116 << true << false;
        QTest::newRow("another key down") << true << "116" << 117 << true << false;
        QTest::newRow("no key captured") << true << "" << 0 << true << false;
        QTest::newRow("keyboard unreadable") << true << "116" << 116 << false << false;
    }
    void hotKeyPoll()
    {
        QFETCH(bool, inGame);
        QFETCH(QString, tag);
        QFETCH(int, down);
        QFETCH(bool, readable);
        QFETCH(bool, resets);
        Rig r;
        r.h.app.session().inGame = inGame;
        r.h.app.options().setHotKeyTag(tag);
        r.h.keys.down = {down};
        r.h.keys.available = readable;
        // One tick of the poll, which runs while the reset option is on.
        QCOMPARE(r.sentDuring([&] {
            r.h.app.options().setReset(true);
            QTest::qWait(700);
            r.h.app.options().setReset(false);
        }),
                 resets ? kReset : QByteArray());
        QCOMPARE(r.h.player.played.size(), resets ? 1 : 0);
        if (resets)
            QVERIFY(r.h.player.played.first().endsWith("/data/sound/English/ref_clr1.wav"));
    }

    // Every statistics address is the web host, "?p=stats&id=" and the id: the own page from
    // `picViewStats` after the login gave the id, a player's from the pager.
    void statsPagesOpenTheWebHost_data()
    {
        QTest::addColumn<quint16>("port");
        QTest::addColumn<QString>("host");
        QTest::newRow("port 80") << quint16(80) << "lobby.example";
        QTest::newRow("port 8080") << quint16(8080) << "lobby.example:8080";
    }
    void statsPagesOpenTheWebHost()
    {
        QFETCH(quint16, port);
        QFETCH(QString, host);
        Rig r;
        r.h.app.session().webHost = "lobby.example";
        r.h.app.session().webPort = port;
        m_opened.clear();
        r.h.app.form().picViewStats->setTag("42");
        r.h.app.form().picViewStats->click();
        Q_EMIT r.h.app.pager().statsPageRequested("7");
        QCOMPARE(m_opened, (QStringList{"http://" + host + "?p=stats&id=42",
                                        "http://" + host + "?p=stats&id=7"}));
    }

private:
    QStringList m_opened;
};

QTEST_MAIN(TestResetAndPages)
#include "tst_resetandpages.moc"
