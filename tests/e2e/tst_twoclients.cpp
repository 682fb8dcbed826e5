// Two clients against the real lobby server: both log in automatically, see each other in
// the lobby, chat, and one hides to the tray.
// ctest: timeout=120
#include "client/app/form1.h"
#include "client/presence/chatinput.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistmodel.h"
#include "support/lobbyclient.h"

#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>

using namespace client;

class TestTwoClients : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_server;
    QTemporaryDir m_serverHome;

private Q_SLOTS:
    void initTestCase() { QVERIFY(startOpenLobby(m_server, m_serverHome)); }

    void twoClientsMeetChatAndGoAway()
    {
        LobbyClient ann(QStringLiteral("ann"), m_server);
        LobbyClient bob(QStringLiteral("bob"), m_server);
        // Both log in and see each other in the lobby.
        QVERIFY(logIn({&ann, &bob}));
        QCOMPARE(ann.statusOf("bob"), "7");

        ann.clock.advanceSeconds(10);
        ann.app.form().txtChatSend->setText(QStringLiteral("anyone up for a round?"));
        ann.app.chat().input().send();
        for (LobbyClient *client : {&ann, &bob})
            QTRY_VERIFY(client->app.form().txtChat->toPlainText().contains(
                QStringLiteral("anyone up for a round?")));

        Q_EMIT bob.app.form().hideRequested();
        QTRY_COMPARE(ann.statusOf("bob"), "1");
    }
};

QTEST_MAIN(TestTwoClients)
#include "tst_twoclients.moc"
