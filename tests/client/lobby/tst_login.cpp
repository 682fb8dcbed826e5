#include "client/lobby/credentialsfile.h"
#include "client/lobby/frmlogin.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/logincontroller.h"
#include "client/session/eventsounds.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "support/clientfakes.h"
#include "support/scriptedserver.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace client;

namespace {

// The login controller with real sockets against a scripted server; user.txt in a
// temporary folder stands for the login window's boxes as they are after it is recreated.
struct Session
{
    QTemporaryDir dir;
    ScriptedServer server;
    LobbyDispatcher dispatcher;
    LobbyConnection connection{dispatcher};
    SessionState state;
    RecordingPlayer player;
    EventSounds sounds{player, [] { return false; }, [] { return QString(); }};
    QTimer tmrReconnet;
    QTimer timer1;
    QStringList lines;
    int listResets = 0;
    int roomListEmptied = 0;
    std::unique_ptr<LoginController> login;

    explicit Session(int reconnectMs = 150)
    {
        tmrReconnet.setInterval(reconnectMs);
        timer1.setInterval(10000);
        state.lobbyServerHost = QStringLiteral("127.0.0.1");
        state.lobbyPort = server.port();
        LoginController::Hooks hooks;
        hooks.statusLine = [this](const QString &line) { lines << line; };
        hooks.emptyRoomList = [this] { ++roomListEmptied; };
        hooks.emptyPlayerList = [] {};
        hooks.resetPlayerList = [this] { ++listResets; };
        hooks.credentials = [this] { return CredentialsFile::read(userFile()); };
        hooks.unloadLoginWindow = [] {};
        hooks.clientVersion = [] { return QStringLiteral("V 6.0"); };
        login = std::make_unique<LoginController>(connection, dispatcher, state, sounds,
                                                  tmrReconnet, timer1, std::move(hooks));
    }
    QString userFile() const { return dir.filePath(QStringLiteral("user.txt")); }

    // Connects and completes the login exchange with the given credentials.
    bool logIn(int connectionNumber = 1)
    {
        if (!server.waitForConnection(connectionNumber))
            return false;
        const Credentials c = CredentialsFile::read(userFile());
        if (!server.expect("VEV 6.0\x0F"))
            return false;
        server.send("SL\x0F");
        const QByteArray lg = "LG" + c.name.toLatin1() + '\x0E' + c.password.toLatin1() + '\x0F';
        if (!server.expect(lg))
            return false;
        server.send("LT42\x0E"
                    "x\x0F");
        return QTest::qWaitFor([this] { return state.isOnline(); }, 5000);
    }
};

} // namespace

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loginSequenceUsesUserFile()
    {
        Session s;
        QVERIFY(CredentialsFile::write(s.userFile(), {"Ann", "x1"}));
        s.login->autoLogin();
        QVERIFY(s.logIn());
        QCOMPARE(s.lines, (QStringList{"Trying to connect...", "Connected"}));
        QCOMPARE(s.state.lobbyStatsId, QStringLiteral("42"));
        QVERIFY(s.timer1.isActive());
        QCOMPARE(s.listResets, 1);
        QVERIFY(!s.tmrReconnet.isActive());
    }

    void refusedLoginDoesNotReconnect()
    {
        Session s(20);
        s.login->autoLogin();
        QVERIFY(s.server.waitForConnection(1));
        QVERIFY(s.server.expect("VEV 6.0\x0F"));
        s.server.send("SL\x0F");
        // No user.txt: both fields go out empty.
        QVERIFY(s.server.expect("LG\x0E\x0F"));
        s.server.send("LF\x0F");
        QTRY_COMPARE(s.lines.last(), QStringLiteral("Wrong name or password"));
        QTRY_VERIFY(s.connection.isClosed());
        QTest::qWait(ScriptedServer::kQuietMs);
        QCOMPARE(s.server.connectionCount(), 1);
        QVERIFY(!s.tmrReconnet.isActive());
        QVERIFY(!s.state.isOnline());
    }

    void dropReconnectsAndLogsInAgain()
    {
        Session s;
        QVERIFY(CredentialsFile::write(s.userFile(), {"Bo", "pw"}));
        s.login->autoLogin();
        QVERIFY(s.logIn(1));
        s.lines.clear();
        s.server.dropClient();
        QTRY_COMPARE(s.lines.value(0), QStringLiteral("Diconnected"));
        QVERIFY(!s.state.isOnline());
        QVERIFY(!s.timer1.isActive());
        QVERIFY(s.tmrReconnet.isActive());
        QVERIFY(s.logIn(2));
        QCOMPARE(s.lines, (QStringList{"Diconnected", "Trying to reconnect", "Connected"}));
        QVERIFY(!s.tmrReconnet.isActive());
    }

    void logoutThenServerCloseDoesNotReconnect()
    {
        Session s(20);
        s.login->autoLogin();
        QVERIFY(s.logIn());
        s.login->picLogInClicked(); // online: logs out
        QCOMPARE(s.lines.last(), QStringLiteral("Logged out"));
        QVERIFY(s.state.loggedOFF);
        s.server.dropClient();
        QTest::qWait(ScriptedServer::kQuietMs);
        QCOMPARE(s.server.connectionCount(), 1);
        QVERIFY(!s.lines.contains(QStringLiteral("Diconnected")));
        QVERIFY(!s.state.isOnline());
    }

    void unreachableServerIsNotRetried()
    {
        Session s;
        s.state.lobbyPort = 1; // nothing listens on port 1 of loopback
        s.login->autoLogin();
        QTRY_COMPARE(s.lines.last(), QStringLiteral("Could not connect"));
        QVERIFY(!s.tmrReconnet.isActive());
    }

    void picLogInOpensDialogWhileOffline()
    {
        Session s;
        int opened = 0;
        connect(s.login.get(), &LoginController::loginDialogRequested, this, [&] { ++opened; });
        s.login->picLogInClicked();
        QCOMPARE(opened, 1);
    }

    void loginWindowRoundTripsUserFile()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("user.txt"));
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("G\xF6ran\r\npass word\r\n");
        }
        FrmLogIn window(path);
        QCOMPARE(window.txtName->text(), QStringLiteral("G\u00F6ran"));
        QCOMPARE(window.txtPassword->text(), QStringLiteral("pass word"));
        window.txtName->setText(QStringLiteral("\u00C5sa"));
        window.txtPassword->setText(QStringLiteral("x1"));
        bool requested = false;
        connect(&window, &FrmLogIn::loginRequested, this, [&] { requested = true; });
        QTest::mouseClick(window.Picture3, Qt::LeftButton);
        QVERIFY(requested);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("\xC5sa\r\nx1\r\n"));
    }
};

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
