#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/lobby/frmlogin.h"
#include "client/lobby/lobbyconnection.h"
#include "client/session/sessionstate.h"
#include "client/ui/borderlesswindow.h"
#include "client/ui/picturebutton.h"
#include "support/appharness.h"

#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace client;

class TestClientApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startUp()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        QVERIFY(QDir(h.dataFolder()).exists());
        QVERIFY(h.app.form().isVisible());
        QVERIFY(h.tray.shown);
        QCOMPARE(h.tray.tip, QStringLiteral("Logged out"));
        QCOMPARE(h.app.session().textSendTime, h.clock.now());
        QCOMPARE(h.app.session().webHost, QStringLiteral("localhost"));
        // No settings and no game installed: the user is told to choose a game folder.
        QCOMPARE(h.dialogs.asked,
                 QStringList{"Could not find path to game, select at least one game in options"});
        QVERIFY(!h.app.form().picCreateRoom->isVisible());
        QVERIFY(!h.app.connection().isConnected());
        const QList<std::pair<const char *, int>> timers = {
            {"tmrReconnet", 20000}, {"Timer1", 10000}, {"tmrStatsReset", 500}};
        for (const auto &[name, interval] : timers) {
            const auto *timer = h.app.findChild<QTimer *>(QLatin1String(name));
            QVERIFY2(timer, name);
            QCOMPARE(timer->interval(), interval);
            QVERIFY(!timer->isActive());
        }
    }

    void loginWindowReadsUserFileWhenCreated()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        FrmLogIn *window = h.app.windows().frmLogIn();
        window->txtName->setText(QStringLiteral("typed"));
        // Closing without Login forgets what was typed.
        QTest::mouseClick(window->Picture2, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!h.app.windows().isLoginLoaded());
        QVERIFY(h.app.windows().frmLogIn()->txtName->text().isEmpty());
    }

    // Windows exist once each until unloaded; the shut-down unloads them in its fixed order and
    // destroys them, the pager too.
    void shutDownUnloadsInOrder()
    {
        AppHarness h;
        QVERIFY(h.app.start());
        AppWindows &windows = h.app.windows();
        QVERIFY(!windows.isRoomLoaded());
        QPointer<BorderlessWindow> room(windows.frmRoom());
        QVERIFY(windows.isRoomLoaded());
        QCOMPARE(windows.frmRoom(), room.data());
        // Touch them in another order than the shut-down's.
        windows.frmGameInfo();
        windows.frmLogIn();
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
        QVERIFY(!windows.isRoomLoaded());
        QVERIFY(windows.frmRoom() != nullptr);
        QVERIFY(!h.tray.shown);
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
        QWidget *menu = h.app.windows().frmMenu();
        menu->show();
        connect(&h.app, &ClientApplication::shutDownFinished, this,
                [] { QCoreApplication::exit(1); });
        QTimer::singleShot(0, menu, &QWidget::close);
        QTimer::singleShot(100, &h.tray, &FakeTray::chooseQuit);
        QTimer::singleShot(5000, &h.app, [] { QCoreApplication::exit(2); });
        QCOMPARE(QCoreApplication::exec(), 1);
        QVERIFY(h.app.session().exitPager);
        QVERIFY(!h.tray.shown);
    }
};

QTEST_MAIN(TestClientApplication)
#include "tst_clientapplication.moc"
