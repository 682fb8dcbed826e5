// A first start against the real lobby server, on a real X server: with a fresh data folder
// the login window opens by itself; the lobby address, name and password typed into it bring
// the user into the lobby. A lobby that is not there is named in the chat.
// ctest: xvfb
// ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/login/frmlogin.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "support/lobbyclient.h"

#include <QLineEdit>
#include <QTcpServer>
#include <QTest>
#include <QTextBrowser>

using namespace client;

namespace {

// Starts a client with a fresh data folder; the login window it opens by itself, once on the
// screen, with the lobby address typed in.
FrmLogIn *loginWindow(AppHarness &client, const QString &lobby)
{
    if (!client.app.start() || !waitUntil([&] { return client.app.windows().isLoginLoaded(); }))
        return nullptr;
    FrmLogIn *window = client.app.windows().frmLogIn();
    if (!QTest::qWaitForWindowExposed(window))
        return nullptr;
    window->txtLobbyServer->clear();
    QTest::keyClicks(window->txtLobbyServer, lobby);
    QTest::keyClicks(window->txtName, QStringLiteral("newcomer"));
    return window;
}

} // namespace

class TestGettingIn : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstStartLogsInThroughTheLoginWindow()
    {
        QTemporaryDir serverHome;
        ServerProcess server;
        QVERIFY(startOpenLobby(server, serverHome));
        AppHarness client;
        FrmLogIn *window = loginWindow(client, QStringLiteral("127.0.0.1:%1").arg(server.port()));
        QVERIFY(window);
        QTest::keyClicks(window->txtPassword, QStringLiteral("first-pw"));
        QTest::keyClick(window->txtPassword, Qt::Key_Return);

        QTRY_VERIFY_WITH_TIMEOUT(client.app.session().isOnline(), 10000);
        QTRY_VERIFY(client.app.players().findEntry(QStringLiteral("newcomer")) >= 0);
        QVERIFY(!client.app.windows().isLoginLoaded());
        // The address is kept for the next start.
        QCOMPARE(ServerAddresses::load(client.dataFolder()).lobby.port, server.port());
    }

    void aLobbyThatIsNotThereIsNamed()
    {
        QTcpServer probe; // a port nothing listens on once it is closed
        QVERIFY(probe.listen(QHostAddress::LocalHost));
        const QString address = QStringLiteral("127.0.0.1:%1").arg(probe.serverPort());
        probe.close();
        AppHarness client;
        FrmLogIn *window = loginWindow(client, address);
        QVERIFY(window);
        QTest::mouseClick(window->Picture3, Qt::LeftButton);
        QTRY_VERIFY(client.app.form().txtChat->toPlainText().contains(
            QStringLiteral("Could not connect to ") + address));
        QVERIFY(!client.app.session().isOnline());
    }
};

QTEST_MAIN(TestGettingIn)
#include "tst_gettingin.moc"
