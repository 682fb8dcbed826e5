#include "client/lobby/credentialsfile.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/lobby/logincontroller.h"
#include "client/lobby/onlinetimer.h"
#include "client/login/frmlogin.h"
#include "client/platform/eventsounds.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "protocol/login.h"
#include "support/clientfakes.h"
#include "support/scriptedserver.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using namespace client;

namespace {

using namespace std::chrono_literals;

// The login controller with real sockets against a scripted server, with short reconnect and
// connect-timeout intervals.
struct Session
{
    QTemporaryDir dir;
    ScriptedServer server;
    LobbyDispatcher dispatcher;
    LobbyConnection connection{dispatcher, 300ms};
    SessionState state;
    RecordingPlayer player;
    EventSounds sounds{player};
    OnlineTimer timer1{state};
    QStringList lines;
    int listResets = 0;
    std::unique_ptr<LoginController> login;
    QTimer *tmrReconnet = nullptr;

    explicit Session(int reconnectMs = 150)
    {
        state.lobbyServerHost = QStringLiteral("127.0.0.1");
        state.lobbyPort = server.port();
        login = std::make_unique<LoginController>(connection, dispatcher, state, sounds, userFile(),
                                                  std::chrono::milliseconds(reconnectMs));
        QObject::connect(login.get(), &LoginController::statusLine,
                         [this](const QString &line) { lines << line; });
        QObject::connect(login.get(), &LoginController::playerListResetRequested,
                         [this] { ++listResets; });
        tmrReconnet = login->findChild<QTimer *>(QStringLiteral("tmrReconnet"));
    }
    QString userFile() const { return dir.filePath(QStringLiteral("user.txt")); }

    // Connects and completes the login exchange with the credentials of the user file.
    bool logIn(int connectionNumber = 1)
    {
        const Credentials c = CredentialsFile::read(userFile());
        if (!server.waitForConnection(connectionNumber) || !server.expect("VEV 6.0\x0F"))
            return false;
        server.send("SL\x0F");
        if (!server.expect(protocol::Login{c.name, c.password}.encode()))
            return false;
        server.send(protocol::LoginAccepted{protocol::NumberText::of(42), "x"}.encode());
        return QTest::qWaitFor([this] { return state.isOnline(); });
    }
};

} // namespace

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logsInAndAgainAfterADrop()
    {
        Session s;
        QVERIFY(CredentialsFile::write(s.userFile(), {"Ann", "x1"}));
        s.login->autoLogin();
        QVERIFY(s.logIn());
        QCOMPARE(s.state.lobbyStatsId, QStringLiteral("42"));
        QVERIFY(s.timer1.isActive());
        QCOMPARE(s.listResets, 1);
        s.server.dropClient();
        QTRY_VERIFY(s.lines.contains(QStringLiteral("Diconnected")));
        QVERIFY(!s.timer1.isActive());
        QVERIFY(s.tmrReconnet->isActive());
        QVERIFY(s.logIn(2));
        QCOMPARE(s.lines, (QStringList{"Trying to connect...", "Connected", "Diconnected",
                                       "Trying to reconnect", "Connected"}));
        QVERIFY(!s.tmrReconnet->isActive());
    }

    // The picture button logs out while online and asks for the login while offline; the
    // server's close after a logout starts no reconnecting.
    void logoutThenServerCloseDoesNotReconnect()
    {
        Session s(20);
        int dialogs = 0;
        connect(s.login.get(), &LoginController::loginDialogRequested, this, [&] { ++dialogs; });
        s.login->autoLogin();
        QVERIFY(s.logIn());
        s.login->picLogInClicked();
        QCOMPARE(s.lines.last(), QStringLiteral("Logged out"));
        s.server.dropClient();
        QTRY_VERIFY(s.connection.isClosed());
        QVERIFY(!s.tmrReconnet->isActive());
        QCOMPARE(s.server.connectionCount(), 1);
        QVERIFY(!s.lines.contains(QStringLiteral("Diconnected")));
        QCOMPARE(dialogs, 0);
        s.login->picLogInClicked();
        QCOMPARE(dialogs, 1);
    }

    // A first try that fails is reported once and not retried: a refused connection, a server
    // that never answers (given up after the connect timeout, not the kernel's minutes), a
    // refused login (with no user file both fields go out empty).
    void failedFirstTryIsNotRetried_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<QString>("line");
        QTest::newRow("connection refused") << 0 << "Could not connect to 127.0.0.1:%1";
        QTest::newRow("never answers") << 1 << "Could not connect to 127.0.0.1:%1";
        QTest::newRow("login refused") << 2 << "Wrong name or password";
        QTest::newRow("login refused with a reason") << 3 << "Too many new accounts";
    }
    void failedFirstTryIsNotRetried()
    {
        QFETCH(int, how);
        QFETCH(QString, line);
        Session s(20);
        if (how == 0)
            s.state.lobbyPort = 1; // nothing listens on port 1 of loopback
        else if (how == 1)
            s.server.stopAnswering();
        if (how < 2)
            line = line.arg(s.state.lobbyPort);
        s.login->autoLogin();
        if (how >= 2) {
            QVERIFY(s.server.waitForConnection(1));
            QVERIFY(s.server.expect("VEV 6.0\x0F"));
            s.server.send("SL\x0F");
            QVERIFY(s.server.expect("LG\x0E\x0F"));
            // The reason comes as the server's refusal message; the room side passes it on.
            if (how == 3)
                s.login->noteRefusal(line);
            s.server.send("LF\x0F");
        }
        QTRY_COMPARE(s.lines.value(1), line);
        QVERIFY(!s.tmrReconnet->isActive());
        QCOMPARE(s.lines, (QStringList{"Trying to connect...", line}));
        QVERIFY(s.connection.isClosed());
        QCOMPARE(s.server.connectionCount(), how >= 2 ? 1 : 0);
    }

    // "OV": an update is asked for, nothing after it is handled, and the server's close that
    // follows does not start reconnecting; logging in again later works.
    void oldVersionEndsSessionUntilLoginAgain()
    {
        Session s(20);
        QVERIFY(CredentialsFile::write(s.userFile(), {"Ann", "x1"}));
        QSignalSpy updates(s.login.get(), &LoginController::updateRequired);
        s.login->autoLogin();
        QVERIFY(s.server.waitForConnection(1));
        QVERIFY(s.server.expect("VEV 6.0\x0F"));
        s.server.send("OV\x0FSL\x0F");
        s.server.dropClient();
        QTRY_COMPARE(updates.size(), 1);
        QVERIFY(s.connection.isClosed());
        QCOMPARE(s.lines, (QStringList{"Trying to connect..."}));
        QVERIFY(!s.tmrReconnet->isActive());
        QCOMPARE(s.server.connectionCount(), 1);
        QCOMPARE(s.server.received(), QByteArray());

        s.lines.clear();
        s.login->loginPressed();
        QVERIFY(s.logIn(2));
        QCOMPARE(s.lines, (QStringList{"Trying to connect...", "Connected"}));
    }

    // The login window shows the saved name and password and the lobby address in use; Login
    // saves the first two and asks for the address typed, which must read as HOST[:PORT]:
    // otherwise the box is marked and nothing is saved or asked.
    void loginWindowRoundTripsUserFile_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("asked"); // empty: refused
        const auto add = [](const char *name, QString typed, QString asked) {
            QTest::newRow(name) << typed << asked;
        };
        add("as shown", "lobby.example:20000", "lobby.example:20000");
        add("no port: the lobby port", " 10.0.0.7 ", "10.0.0.7:20000");
        add("refused (the parser's cases are the address tests')", "lobby.example:99999", "");
    }
    void loginWindowRoundTripsUserFile()
    {
        QFETCH(QString, typed);
        QFETCH(QString, asked);
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("user.txt")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("G\xF6ran\r\npass word\r\n");
        file.close();
        FrmLogIn window(file.fileName(), {QStringLiteral("lobby.example"), 20000});
        QCOMPARE(window.txtName->text(), QStringLiteral("G\u00F6ran"));
        QCOMPARE(window.txtPassword->text(), QStringLiteral("pass word"));
        QCOMPARE(window.txtLobbyServer->text(), QStringLiteral("lobby.example:20000"));
        window.txtName->setText(QStringLiteral("\u00C5sa"));
        window.txtPassword->setText(QStringLiteral("x1"));
        window.txtLobbyServer->setText(typed);
        QStringList requested;
        connect(&window, &FrmLogIn::loginRequested, this,
                [&](const HostPort &lobby) { requested << lobby.toString(); });
        QTest::mouseClick(window.Picture3, Qt::LeftButton);
        QCOMPARE(requested, asked.isEmpty() ? QStringList() : QStringList{asked});
        QCOMPARE(window.txtLobbyServer->toolTip().isEmpty(), !asked.isEmpty());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), asked.isEmpty() ? QByteArray("G\xF6ran\r\npass word\r\n")
                                                 : QByteArray("\xC5sa\r\nx1\r\n"));
    }
};

QTEST_MAIN(TestLogin)
#include "tst_login.moc"
