#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/desktop/trayservice.h"
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/chatlog.h"
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
        IgnoreList ignored{QString()};
        LobbyChat chat{form.txtChat, form.txtChatSend, form.Picture3, connection, session,
                       clock,        ignored};
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
            QByteArray expected;
            for (const QString &state : states)
                expected += "PS" + state.toLatin1() + "\x0E\x0F";
            connection.send(protocol::KeepAlive{}); // marks the end
            return server.expect(expected + "PI\x0F");
        }
    };

private Q_SLOTS:
    // Hidden to the tray and back by a click, the program is away ("1") and back in the lobby
    // ("3") unless in a game; a click while shown brings the window back to its size and says
    // "3" again. (Disconnected, there is no one to tell.)
    void presenceFollowsHideAndRestore_data()
    {
        QTest::addColumn<bool>("inGame");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("in the lobby") << false << QStringList{"1", "3", "3"};
        QTest::newRow("in a game") << true << QStringList{};
    }
    void presenceFollowsHideAndRestore()
    {
        QFETCH(bool, inGame);
        QFETCH(QStringList, sent);
        Rig rig;
        QVERIFY(rig.connect());
        rig.session.inGame = inGame;
        rig.form.show();
        rig.controller.hideToTray();
        QVERIFY(!rig.form.isVisible());
        rig.tray.activate();
        QVERIFY(rig.form.isVisible());
        rig.form.resize(300, 200);
        rig.tray.activate();
        QCOMPARE(rig.form.size(), QSize(800, 600));
        QCOMPARE(rig.restored.count(), 2);
        QVERIFY(rig.sentPresence(sent));
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
        QCOMPARE(std::count_if(rig.chat.log().lines().begin(), rig.chat.log().lines().end(),
                               [](const ChatLine &line) {
                                   return line.text.contains("no notification area");
                               }),
                 1);
        QCOMPARE(rig.restored.count(), 1);
        QVERIFY(rig.sentPresence({"1", "3", "1"}));
    }

    // What the desktop's tray reports: activation reasons, then a menu entry if any.
    void systemTrayRequests_data()
    {
        using Icon = QSystemTrayIcon;
        QTest::addColumn<QList<int>>("reasons");
        QTest::addColumn<QString>("entry");
        QTest::addColumn<int>("shows");
        QTest::addColumn<int>("quits");
        // D-Bus trays report a click and nothing else; a double-click comes after its click.
        QTest::newRow("click, then double-click; menu Show")
            << QList<int>{Icon::Trigger, Icon::DoubleClick} << "Show" << 2 << 0;
        QTest::newRow("double-click alone; menu Quit")
            << QList<int>{Icon::DoubleClick} << "Quit" << 1 << 1;
        QTest::newRow("right and middle click")
            << QList<int>{Icon::Context, Icon::MiddleClick} << "" << 0 << 0;
    }
    void systemTrayRequests()
    {
        QFETCH(QList<int>, reasons);
        QFETCH(QString, entry);
        QFETCH(int, shows);
        QFETCH(int, quits);
        SystemTrayService service;
        QSignalSpy shown(&service, &TrayService::showRequested);
        QSignalSpy quit(&service, &TrayService::quitRequested);
        auto *icon = service.findChild<QSystemTrayIcon *>();
        QVERIFY(icon && icon->contextMenu());
        for (int reason : reasons)
            Q_EMIT icon->activated(QSystemTrayIcon::ActivationReason(reason));
        for (QAction *action : icon->contextMenu()->actions()) {
            if (action->text() == entry)
                action->trigger();
        }
        QCOMPARE(shown.count(), shows);
        QCOMPARE(quit.count(), quits);
    }
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"
