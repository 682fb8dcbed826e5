// A first start against the real lobby server, on a real X server: with a fresh data folder
// the login window opens by itself; the lobby address, name and password typed into it bring
// the user into the lobby. A lobby that is not there is named in the chat.
// ctest: xvfb
// ctest: timeout=120
#include "client/app/appwindows.h"
#include "client/app/form1.h"
#include "client/lobby/frmlogin.h"
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

// The login window the first start opened, once it is on the screen.
FrmLogIn *openedLoginWindow(AppHarness &client)
{
    if (!client.app.start() || !waitUntil([&] { return client.app.windows().isLoginLoaded(); }))
        return nullptr;
    FrmLogIn *window = client.app.windows().frmLogIn();
    return QTest::qWaitForWindowExposed(window) ? window : nullptr;
}

void typeInto(QLineEdit *box, const QString &text)
{
    box->selectAll();
    QTest::keyClick(box, Qt::Key_Delete);
    QTest::keyClicks(box, text);
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
        FrmLogIn *window = openedLoginWindow(client);
        QVERIFY(window);
        QVERIFY(window->isVisible());

        typeInto(window->txtLobbyServer, QStringLiteral("127.0.0.1:%1").arg(server.port()));
        typeInto(window->txtName, QStringLiteral("newcomer"));
        typeInto(window->txtPassword, QStringLiteral("first-pw"));
        QTest::keyClick(window->txtPassword, Qt::Key_Return);

        QTRY_VERIFY_WITH_TIMEOUT(client.app.session().isOnline(), 10000);
        QTRY_VERIFY(client.app.players().findEntry(QStringLiteral("newcomer")) >= 0);
        QVERIFY(!client.app.windows().isLoginLoaded());
        QTRY_VERIFY(client.app.form().txtChat->toPlainText().contains(QStringLiteral("Connected")));
        // The address is kept for the next start.
        QCOMPARE(ServerAddresses::load(client.dataFolder()).lobby.port, server.port());
    }

    void aLobbyThatIsNotThereIsNamed()
    {
        quint16 port = 0;
        {
            QTcpServer probe; // a port nothing listens on once it is closed
            QVERIFY(probe.listen(QHostAddress::LocalHost));
            port = probe.serverPort();
        }
        AppHarness client;
        FrmLogIn *window = openedLoginWindow(client);
        QVERIFY(window);
        const QString address = QStringLiteral("127.0.0.1:%1").arg(port);
        typeInto(window->txtLobbyServer, address);
        typeInto(window->txtName, QStringLiteral("newcomer"));
        QTest::mouseClick(window->Picture3, Qt::LeftButton);
        QTRY_VERIFY(client.app.form().txtChat->toPlainText().contains(
            QStringLiteral("Could not connect to ") + address));
        QVERIFY(!client.app.session().isOnline());
    }
};

QTEST_MAIN(TestGettingIn)
#include "tst_gettingin.moc"
