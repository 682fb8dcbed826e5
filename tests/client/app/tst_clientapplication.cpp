#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/app/startupsequence.h"
#include "client/game/frmgameinfo.h"
#include "client/lobby/credentialsfile.h"
#include "client/login/frmlogin.h"
#include "client/options/frmoptions.h"
#include "client/pager/frmpager.h"
#include "client/platform/privatefiles.h"
#include "client/presence/frmmenu.h"
#include "client/rooms/frmmakeroom.h"
#include "client/rooms/frmroom.h"
#include "client/rooms/roomsession.h"
#include "client/session/sessionstate.h"
#include "client/ui/borderlesswindow.h"
#include "client/ui/picturebutton.h"
#include "support/appharness.h"
#include "support/files.h"

#include <QCheckBox>
#include <QDir>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <functional>

using namespace client;

class TestClientApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Start-up makes the data folder, shows the window and the tray icon and owns its timers
    // without starting them. A first start leads the user in: one message says that no game
    // folder was found and offers the options, and without a saved login the login window opens
    // (after the options, when they were taken). A saved login opens nothing. Escape closes both
    // windows.
    void firstStart_data()
    {
        QTest::addColumn<bool>("savedLogin");
        QTest::addColumn<bool>("takeOptions");
        QTest::addColumn<bool>("loginOpens");
        QTest::newRow("fresh") << false << false << true;
        QTest::newRow("fresh, options taken") << false << true << true;
        QTest::newRow("saved login") << true << false << false;
    }
    void firstStart()
    {
        QFETCH(bool, savedLogin);
        QFETCH(bool, takeOptions);
        QFETCH(bool, loginOpens);
        AppHarness h;
        if (savedLogin)
            QVERIFY(QDir().mkpath(h.dataFolder()) &&
                    CredentialsFile::write(h.dataFolder() + "/user.txt", {"Ann", "pw"}));
        h.dialogs.answers = {takeOptions ? Dialogs::Answer::Yes : Dialogs::Answer::No};
        QVERIFY(h.app.start());
        QVERIFY(QDir(h.dataFolder()).exists());
        QVERIFY(h.app.form().isVisible());
        QVERIFY(h.tray.shown);
        QCOMPARE(h.app.session().textSendTime, h.clock.now());
        QCOMPARE(h.app.session().webHost, QStringLiteral("localhost"));
        for (const auto &[name, interval] :
             QList<std::pair<const char *, int>>{{"tmrReconnet", 20000}, {"Timer1", 10000}}) {
            const auto *timer = h.app.findChild<QTimer *>(QLatin1String(name));
            QVERIFY2(timer && timer->interval() == interval && !timer->isActive(), name);
        }
        QCOMPARE(h.dialogs.asked,
                 QStringList{"Could not find path to game, select at least one game in options.\n\n"
                             "Open the options now? [Yes/No]"});
        AppWindows &windows = h.app.windows();
        QCOMPARE(windows.isOptionsShown(), takeOptions);
        if (takeOptions) {
            QVERIFY(!windows.isLoginLoaded());
            QTest::keyClick(windows.frmOptions()->chkSound, Qt::Key_Escape);
            QVERIFY(!windows.isOptionsShown());
            QVERIFY(QFile::exists(h.dataFolder() + "/settingRS.txt"));
        }
        QCOMPARE(windows.isLoginLoaded() && windows.frmLogIn()->isVisible(), loginOpens);
        if (loginOpens) {
            QTest::keyClick(windows.frmLogIn()->txtName, Qt::Key_Escape);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            QVERIFY(!windows.isLoginLoaded());
        }
    }

    // Creating and joining are possible while logged in and in no room, which is when the
    // create-room button shows.
    void createAndJoinWhileLoggedInAndInNoRoom()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        RoomSession &rooms = h.app.roomSession();
        const QList<std::pair<std::function<void()>, bool>> steps = {
            {[&] { h.app.session().setOnline(true); }, true},
            {[&] { rooms.createRoom(QStringLiteral("r")); }, false},
            {[&] { rooms.leave(); }, true},
            {[&] { h.app.session().setOnline(false); }, false},
        };
        for (const auto &[step, possible] : steps) {
            step();
            QCOMPARE(rooms.canCreateOrJoin(), possible);
            QCOMPARE(!h.app.form().picCreateRoom->isHidden(), possible);
        }
    }

    // The other windows open over the main window; shown again, one stays where the user put
    // it.
    void windowsOpenOverTheMainWindow()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        AppWindows &w = h.app.windows();
        for (QWidget *window : QWidgetList{w.frmLogIn(), w.frmOptions(), w.frmRoom(), w.frmPager(),
                                           w.frmMakeRoom(), w.frmGameInfo()}) {
            window->show();
            const QPoint offset =
                window->frameGeometry().center() - h.app.form().frameGeometry().center();
            QVERIFY2(offset.manhattanLength() <= 2, qPrintable(window->objectName()));
            window->move(5, 5);
            window->hide();
            window->show();
            QCOMPARE(window->pos(), QPoint(5, 5));
        }
    }

    // The data folder and the files holding the password or the settings are open to their
    // owner only, also when an earlier version left them open to everyone.
    void filesArePrivate()
    {
        AppHarness h;
        const QDir data(h.dataFolder());
        for (const char *name : {"user.txt", "settingRS.txt"}) {
            QVERIFY(writeFile(data.filePath(name), "x\r\n"));
            QVERIFY(QFile::setPermissions(data.filePath(name),
                                          QFile::ReadOwner | QFile::WriteOwner | QFile::ReadOther));
        }
        QVERIFY(QFile::setPermissions(h.dataFolder(), PrivateFiles::kFolder | QFile::ExeOther));
        QVERIFY(h.app.start());
        QTest::mouseClick(h.app.windows().frmLogIn()->Picture3, Qt::LeftButton);
        QTest::mouseClick(h.app.windows().frmOptions()->picClose, Qt::LeftButton);

        const auto userOnly = QFile::ReadUser | QFile::WriteUser | QFile::ExeUser;
        QCOMPARE(QFileInfo(h.dataFolder()).permissions() & ~userOnly, PrivateFiles::kFolder);
        for (const char *name : {"user.txt", "settingRS.txt"})
            QCOMPARE(QFileInfo(data.filePath(name)).permissions() & ~userOnly, PrivateFiles::kFile);
    }

    // Closing the login window unloads it: the next one forgets what was typed. Windows exist
    // once each until unloaded; the shut-down unloads them in its fixed order and destroys
    // them, the pager too.
    void windowsUnload()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        AppWindows &windows = h.app.windows();
        windows.frmLogIn()->txtName->setText(QStringLiteral("typed"));
        QTest::mouseClick(windows.frmLogIn()->Picture2, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(windows.frmLogIn()->txtName->text().isEmpty());

        // Touch them in another order than the shut-down's.
        QPointer<BorderlessWindow> room(windows.frmRoom());
        QCOMPARE(windows.frmRoom(), room.data());
        windows.frmGameInfo();
        QPointer<QWidget> pager(windows.frmPager());
        pager->show();
        windows.frmOptions();
        QSignalSpy unloaded(&windows, &AppWindows::unloaded);
        QSignalSpy finished(&h.app, &ClientApplication::shutDownFinished);

        QTest::mouseClick(h.app.form().Picture2, Qt::LeftButton);

        QCOMPARE(finished.count(), 1);
        QVERIFY(h.app.session().exitPager);
        QStringList order;
        for (const QList<QVariant> &args : unloaded)
            order << args.at(0).toString();
        QCOMPARE(order,
                 (QStringList{"frmPager", "frmOptions", "frmRoom", "frmLogIn", "frmGameInfo"}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(pager.isNull() && room.isNull(), "the windows are destroyed, not hidden");
        QVERIFY(!h.app.form().isVisible());
    }

    // Hidden to the tray, the program ends through its shut-down only: closing the last other
    // window leaves it running, and Quit in the tray's menu runs the shut-down.
    void hiddenToTrayEndsOnlyThroughTheShutDown()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        QTest::mouseClick(h.app.form().Picture4, Qt::LeftButton);
        QVERIFY(!h.app.form().isVisible());
        QSignalSpy finished(&h.app, &ClientApplication::shutDownFinished);
        h.app.windows().frmMenu()->show();
        h.app.windows().frmMenu()->close();
        QVERIFY(!QGuiApplication::quitOnLastWindowClosed());
        QCOMPARE(finished.count(), 0);
        h.tray.chooseQuit();
        QCOMPARE(finished.count(), 1);
        QVERIFY(h.app.session().exitPager);
        QVERIFY(!h.tray.shown);
    }
};

QTEST_MAIN(TestClientApplication)
#include "tst_clientapplication.moc"
