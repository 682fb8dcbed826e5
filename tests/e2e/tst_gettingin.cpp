// A first start against the real lobby server, on a real X server: with a fresh data folder
// the login window opens by itself; the lobby address, name and password typed into it bring
// the user into the lobby, and the chat tells the login's progress. (What it says when a lobby
// is not there is the login controller's unit test.)
// ctest: xvfb
// ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/login/frmlogin.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "support/lobbyclient.h"

#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>

using namespace client;

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
        QVERIFY(client.app.start());
        QTRY_VERIFY(client.app.windows().isLoginLoaded());
        FrmLogIn *window = client.app.windows().frmLogIn();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        window->txtLobbyServer->clear();
        QTest::keyClicks(window->txtLobbyServer, QStringLiteral("127.0.0.1:%1").arg(server.port()));
        QTest::keyClicks(window->txtName, QStringLiteral("newcomer"));
        QTest::keyClicks(window->txtPassword, QStringLiteral("first-pw"));
        QTest::keyClick(window->txtPassword, Qt::Key_Return);

        QTRY_VERIFY_WITH_TIMEOUT(client.app.session().isOnline(), 10000);
        QTRY_VERIFY(client.app.players().findEntry(QStringLiteral("newcomer")) >= 0);
        QVERIFY(!client.app.windows().isLoginLoaded());
        QVERIFY(client.app.form().txtChat->toPlainText().contains(QStringLiteral("Connected")));
        // The address is kept for the next start.
        QCOMPARE(ServerAddresses::load(client.dataFolder()).lobby.port, server.port());
    }
};

QTEST_MAIN(TestGettingIn)
#include "tst_gettingin.moc"
