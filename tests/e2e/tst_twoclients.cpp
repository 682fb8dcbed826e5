// Two clients against the real lobby server: both log in automatically, see each other in
// the lobby, chat, and one hides to the tray.
// ctest: timeout=120
#include "client/app/form1.h"
#include "client/lobby/credentialsfile.h"
#include "client/presence/chatinput.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistmodel.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/serverprocess.h"

#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>

using namespace client;

namespace {

// One client logging in automatically as `name`, with a game folder so that it starts quietly.
struct Client : AppHarness
{
    Client(const QString &name, quint16 port)
        : AppHarness({.lobby = {QStringLiteral("127.0.0.1"), port}, .web = {}})
    {
        const QString game = home.filePath("RogueSpear");
        QDir().mkpath(game);
        writeFile(dataFolder() + "/settingRS.txt",
                  "0\r\n1\r\n0\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
        CredentialsFile::write(dataFolder() + "/user.txt", {name, "pw-" + name});
    }

    // The status code of a player's entry: "7" in the lobby, "1" away (neither is the other's
    // buddy); "" while he is not listed.
    QString statusOf(const QString &name)
    {
        PlayerListModel &players = app.players();
        const int row = players.findEntry(name);
        return row < 0 ? QString() : players.text(row, PlayerListModel::PlayerStatus);
    }
};

} // namespace

class TestTwoClients : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_server;
    QTemporaryDir m_serverHome;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_server.start(kLobbyServer,
                               {"--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                                "--registration", "open", "--hash-cost", "minimal", "--db",
                                m_serverHome.filePath(QStringLiteral("lobby.sqlite"))}));
    }

    void twoClientsMeetChatAndGoAway()
    {
        Client ann(QStringLiteral("ann"), m_server.port());
        Client bob(QStringLiteral("bob"), m_server.port());
        QVERIFY(ann.app.start());
        QVERIFY(bob.app.start());
        // Both log in and see each other in the lobby.
        for (Client *client : {&ann, &bob}) {
            QTRY_COMPARE_WITH_TIMEOUT(client->statusOf("ann"), "7", 10000);
            QTRY_COMPARE_WITH_TIMEOUT(client->statusOf("bob"), "7", 10000);
        }

        ann.clock.advanceSeconds(10);
        ann.app.form().txtChatSend->setText(QStringLiteral("anyone up for a round?"));
        ann.app.chat().input().send();
        for (Client *client : {&ann, &bob})
            QTRY_VERIFY(client->app.form().txtChat->toPlainText().contains(
                QStringLiteral("anyone up for a round?")));

        Q_EMIT bob.app.form().hideRequested();
        QTRY_COMPARE(ann.statusOf("bob"), "1");
    }
};

QTEST_MAIN(TestTwoClients)
#include "tst_twoclients.moc"
