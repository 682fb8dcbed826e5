#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/session/sessionstate.h"
#include "support/clientfakes.h"
#include "support/scriptedserver.h"

#include <QTest>

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
        LobbyDispatcher dispatcher;
        LobbyConnection connection{dispatcher};
        QStringList sent;
        int roomRestores = 0;
        std::unique_ptr<TrayController> controller;
        ScriptedServer server;

        Rig()
        {
            TrayController::Hooks hooks;
            hooks.sendPresence = [this](const QString &status) {
                if (connection.isConnected())
                    sent << status;
            };
            hooks.restoreRoomWindow = [this] { ++roomRestores; };
            controller =
                std::make_unique<TrayController>(tray, form, session, connection, std::move(hooks));
        }
        bool connect()
        {
            connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
            return QTest::qWaitFor([this] { return connection.isConnected(); }, 5000);
        }
    };

private Q_SLOTS:
    void presenceFollowsHideAndRestore_data()
    {
        QTest::addColumn<bool>("connected");
        QTest::addColumn<bool>("inGame");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("connected in the lobby") << true << false << QStringList{"1", "3"};
        QTest::newRow("connected in a game") << true << true << QStringList{};
        QTest::newRow("not connected") << false << false << QStringList{};
    }
    void presenceFollowsHideAndRestore()
    {
        QFETCH(bool, connected);
        QFETCH(bool, inGame);
        QFETCH(QStringList, sent);
        Rig rig;
        if (connected)
            QVERIFY(rig.connect());
        rig.session.inGame = inGame;
        rig.form.show();
        rig.controller->hideToTray();
        QVERIFY(!rig.form.isVisible());
        rig.tray.doubleClick();
        QVERIFY(rig.form.isVisible());
        QCOMPARE(rig.roomRestores, 1);
        QCOMPARE(rig.sent, sent);
    }

    void doubleClickWhileShownResizesAndSendsAgain()
    {
        Rig rig;
        QVERIFY(rig.connect());
        rig.form.show();
        rig.form.resize(300, 200);
        rig.tray.doubleClick();
        rig.tray.doubleClick();
        QCOMPARE(rig.form.size(), QSize(800, 600));
        QCOMPARE(rig.sent, (QStringList{"3", "3"}));
    }

    void withoutNotificationAreaHidingMinimises()
    {
        Rig rig;
        rig.tray.available = false;
        rig.form.show();
        rig.controller->hideToTray();
        QVERIFY(rig.form.isVisible());
        QVERIFY(rig.form.isMinimized());
    }
};

QTEST_MAIN(TestTray)
#include "tst_tray.moc"
