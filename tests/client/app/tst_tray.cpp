#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/trayservice.h"
#include "client/presence/lobbychat.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "protocol/login.h"
#include "support/clientfakes.h"
#include "support/scriptedserver.h"

#include <QMenu>
#include <QSignalSpy>
#include <QSystemTrayIcon>
#include <QTest>
#include <QTextBrowser>

using namespace client;

class TestTray : public QObject
{
    Q_OBJECT

private:
    struct Rig
    {
        FakeTray tray;
        Form1 form;
        SessionState session;
        ManualClock clock;
        LobbyDispatcher dispatcher;
        LobbyConnection connection{dispatcher};
        LobbyChat chat{form.txtChat, form.txtChatSend, form.Picture3, connection, session, clock};
        TrayController controller{tray, form, session, connection, chat};
        QSignalSpy restored{&controller, &TrayController::restored};
        ScriptedServer server;

        bool connect()
        {
            connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
            return QTest::qWaitFor([this] { return connection.isConnected(); }, 5000);
        }
        // The server received exactly these presence states ("PS"), in this order.
        bool sentPresence(const QStringList &states)
        {
            if (!connection.isConnected())
                return states.isEmpty();
            QByteArray expected;
            for (const QString &state : states)
                expected += "PS" + state.toLatin1() + "\x0E\x0F";
            connection.send(protocol::KeepAlive{}); // marks the end
            return server.expect(expected + "PI\x0F");
        }
    };

private Q_SLOTS:
    void presenceFollowsHideAndRestore_data()
    {
        QTest::addColumn<bool>("tray");
        QTest::addColumn<bool>("connected");
        QTest::addColumn<bool>("inGame");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("connected in the lobby") << true << true << false << QStringList{"1", "3"};
        QTest::newRow("connected in a game") << true << true << true << QStringList{};
        QTest::newRow("not connected") << true << false << false << QStringList{};
        QTest::newRow("no tray, in the lobby") << false << true << false << QStringList{"1", "3"};
        QTest::newRow("no tray, in a game") << false << true << true << QStringList{};
    }
    void presenceFollowsHideAndRestore()
    {
        QFETCH(bool, tray);
        QFETCH(bool, connected);
        QFETCH(bool, inGame);
        QFETCH(QStringList, sent);
        Rig rig;
        rig.tray.available = tray;
        if (connected)
            QVERIFY(rig.connect());
        rig.session.inGame = inGame;
        rig.form.show();
        rig.controller.hideToTray();
        if (tray) {
            QVERIFY(!rig.form.isVisible());
            rig.tray.activate();
        } else {
            QVERIFY(rig.form.isMinimized());
            rig.form.showNormal(); // from the taskbar
        }
        QVERIFY(rig.form.isVisible() && !rig.form.isMinimized());
        QCOMPARE(rig.restored.count(), 1);
        QVERIFY(rig.sentPresence(sent));
    }

    void activationWhileShownResizesAndSendsAgain()
    {
        Rig rig;
        QVERIFY(rig.connect());
        rig.form.show();
        rig.form.resize(300, 200);
        rig.tray.activate();
        rig.tray.activate();
        QCOMPARE(rig.form.size(), QSize(800, 600));
        QVERIFY(rig.sentPresence({"3", "3"}));
    }

    // The user is told once; only the minimising done by hiding counts as being away.
    void withoutNotificationAreaMinimisesAndSaysSoOnce()
    {
        Rig rig;
        rig.tray.available = false;
        QVERIFY(rig.connect());
        rig.form.show();
        rig.controller.hideToTray();
        rig.form.showNormal();
        rig.form.showMinimized(); // the user's own
        rig.form.showNormal();
        rig.controller.hideToTray();
        QVERIFY(rig.form.isMinimized());
        QCOMPARE(rig.form.txtChat->toPlainText().count("no notification area"), 1);
        QCOMPARE(rig.restored.count(), 1);
        QVERIFY(rig.sentPresence({"1", "3", "1"}));
    }

    // What the desktop's tray reports, by step: an activation reason, or a menu entry.
    void systemTrayRequests_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<int>("shows");
        QTest::addColumn<int>("quits");
        QTest::newRow("click (D-Bus trays report nothing else)")
            << QStringList{"Trigger"} << 1 << 0;
        QTest::newRow("double-click after its first click")
            << QStringList{"Trigger", "DoubleClick"} << 1 << 0;
        QTest::newRow("double-click alone") << QStringList{"DoubleClick"} << 1 << 0;
        QTest::newRow("right and middle click") << QStringList{"Context", "MiddleClick"} << 0 << 0;
        QTest::newRow("menu Show") << QStringList{"Show"} << 1 << 0;
        QTest::newRow("menu Quit") << QStringList{"Quit"} << 0 << 1;
    }
    void systemTrayRequests()
    {
        QFETCH(QStringList, steps);
        QFETCH(int, shows);
        QFETCH(int, quits);
        SystemTrayService service;
        QSignalSpy shown(&service, &TrayService::showRequested);
        QSignalSpy quit(&service, &TrayService::quitRequested);
        auto *icon = service.findChild<QSystemTrayIcon *>();
        QVERIFY(icon && icon->contextMenu());
        const QMap<QString, QSystemTrayIcon::ActivationReason> reasons{
            {"Trigger", QSystemTrayIcon::Trigger},
            {"DoubleClick", QSystemTrayIcon::DoubleClick},
            {"Context", QSystemTrayIcon::Context},
            {"MiddleClick", QSystemTrayIcon::MiddleClick}};
        for (const QString &step : steps) {
            if (reasons.contains(step)) {
                Q_EMIT icon->activated(reasons[step]);
                continue;
            }
            const QList<QAction *> entries = icon->contextMenu()->actions();
            const auto entry = std::find_if(entries.begin(), entries.end(),
                                            [&](QAction *a) { return a->text() == step; });
            QVERIFY2(entry != entries.end(), qPrintable(step));
            (*entry)->trigger();
        }
        QCOMPARE(shown.count(), shows);
        QCOMPARE(quit.count(), quits);
    }
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"
