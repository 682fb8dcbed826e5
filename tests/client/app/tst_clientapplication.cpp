#include "client/app/appwindows.h"
#include "client/app/clientapplication.h"
#include "client/app/form1.h"
#include "client/lobby/frmlogin.h"
#include "client/lobby/lobbyconnection.h"
#include "client/platform/registrylinux.h"
#include "client/session/clock.h"
#include "client/session/sessionstate.h"
#include "client/session/tickcount.h"
#include "client/ui/borderlesswindow.h"
#include "client/ui/picturebutton.h"
#include "support/clientfakes.h"

#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

using namespace client;

class TestClientApplication : public QObject
{
    Q_OBJECT

private:
    FakeTray m_tray;
    RecordingPlayer m_player;
    ManualClock m_clock{QDateTime(QDate(2026, 11, 23), QTime(20, 15, 7))};

    SystemTickCount m_ticks;
    FakeDialogs m_dialogs;
    std::unique_ptr<LinuxRegistry> m_registry;

    ClientApplication::Services services()
    {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        m_registry = std::make_unique<LinuxRegistry>(
            LinuxRegistry::defaultPaths(data + QStringLiteral("/Quorvel")));
        return {&m_tray,
                &m_player,
                &m_clock,
                &m_ticks,
                m_registry.get(),
                &m_dialogs,
                QDir::homePath() + QStringLiteral("/.wine"),
                data + QStringLiteral("/Quorvel")};
    }

private Q_SLOTS:
    void startUp()
    {
        ClientApplication app(services(), ServerAddresses{});
        QVERIFY(app.start());
        const QString folder =
            QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
            QStringLiteral("/Quorvel");
        QVERIFY(QDir(folder).exists());
        QVERIFY(app.form().isVisible());
        QCOMPARE(app.form().size(), QSize(800, 600));
        QVERIFY(m_tray.shown);
        QCOMPARE(m_tray.tip, QStringLiteral("Logged out"));
        QCOMPARE(app.session().textSendTime, m_clock.now());
        QCOMPARE(app.session().lobbyServerHost, QStringLiteral("localhost"));
        QCOMPARE(app.session().lobbyPort, quint16(20000));
        QCOMPARE(app.session().webHost, QStringLiteral("localhost"));
        QCOMPARE(app.form().picLogIn->tag(), QStringLiteral("OFFLINE"));
        // No settings and no game installed: the user is told to choose a game folder.
        QCOMPARE(m_dialogs.messages,
                 QStringList{"Could not find path to game, select at least one game in options"});
        QVERIFY(!app.form().picCreateRoom->isVisible());
        QVERIFY(!app.connection().isConnected());
        const QList<std::pair<const char *, int>> timers = {
            {"tmrReconnet", 20000}, {"Timer1", 10000}, {"tmrStatsReset", 500}};
        for (const auto &[name, interval] : timers) {
            const auto *timer = app.findChild<QTimer *>(QLatin1String(name));
            QVERIFY2(timer, name);
            QCOMPARE(timer->interval(), interval);
            QVERIFY(!timer->isActive());
        }
    }

    void windowsExistOnceAndReloadAfterUnload()
    {
        ClientApplication app(services(), ServerAddresses{});
        AppWindows &windows = app.windows();
        QVERIFY(!windows.isRoomLoaded());
        BorderlessWindow *room = windows.frmRoom();
        QVERIFY(windows.isRoomLoaded());
        QCOMPARE(windows.frmRoom(), room);
        QPointer<BorderlessWindow> old(room);
        windows.unloadAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(old.isNull());
        QVERIFY(!windows.isRoomLoaded());
        QVERIFY(windows.frmRoom() != nullptr);
    }

    void loginWindowReadsUserFileWhenCreated()
    {
        ClientApplication app(services(), ServerAddresses{});
        QVERIFY(app.start());
        FrmLogIn *window = app.windows().frmLogIn();
        window->txtName->setText(QStringLiteral("typed"));
        // Closing without Login forgets what was typed.
        QTest::mouseClick(window->Picture2, Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!app.windows().isLoginLoaded());
        QVERIFY(app.windows().frmLogIn()->txtName->text().isEmpty());
    }

    void shutDownUnloadsInOrder()
    {
        auto app = std::make_unique<ClientApplication>(services(), ServerAddresses{});
        QVERIFY(app->start());
        AppWindows &windows = app->windows();
        // Touch them in another order than the shut-down's.
        windows.frmGameInfo();
        windows.frmLogIn();
        windows.frmRoom();
        QPointer<QWidget> pager(windows.frmPager());
        pager->show();
        windows.frmOptions();
        QSignalSpy unloaded(&windows, &AppWindows::unloaded);
        QSignalSpy finished(app.get(), &ClientApplication::shutDownFinished);

        QTest::mouseClick(app->form().Picture2, Qt::LeftButton);

        QCOMPARE(finished.count(), 1);
        QVERIFY(app->session().exitPager);
        QStringList order;
        for (const QList<QVariant> &args : unloaded)
            order << args.at(0).toString();
        QCOMPARE(order,
                 (QStringList{"frmPager", "frmOptions", "frmRoom", "frmLogIn", "frmGameInfo"}));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(pager.isNull(), "the pager is destroyed, not hidden");
        QVERIFY(!m_tray.shown);
        QVERIFY(!app->form().isVisible());
    }

    // Hidden to the tray, the program ends through its shut-down only: closing the last other
    // window leaves it running, and Quit in the tray's menu runs the shut-down.
    void hiddenToTrayEndsOnlyThroughTheShutDown()
    {
        ClientApplication app(services(), ServerAddresses{});
        QVERIFY(app.start());
        QTest::mouseClick(app.form().Picture4, Qt::LeftButton);
        QVERIFY(!app.form().isVisible());
        QWidget *menu = app.windows().frmMenu();
        menu->show();
        connect(&app, &ClientApplication::shutDownFinished, this,
                [] { QCoreApplication::exit(1); });
        QTimer::singleShot(0, menu, &QWidget::close);
        QTimer::singleShot(100, &m_tray, &FakeTray::chooseQuit);
        QTimer::singleShot(5000, &app, [] { QCoreApplication::exit(2); });
        QCOMPARE(QCoreApplication::exec(), 1);
        QVERIFY(app.session().exitPager);
        QVERIFY(!m_tray.shown);
    }
};

QTEST_MAIN(TestClientApplication)
#include "tst_clientapplication.moc"
