// Two clients against the real lobby server: both log in automatically, see each other in
// the lobby, chat, and one hides to the tray.
// ctest: timeout=120
#include "client/app/form1.h"
#include "client/lobby/credentialsfile.h"
#include "client/presence/chatinput.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/sessionstate.h"
#include "support/appharness.h"
#include "support/files.h"
#include "support/serverprocess.h"

#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>

using namespace client;

namespace {

ServerAddresses lobbyAt(quint16 port)
{
    ServerAddresses servers;
    servers.lobby = {QStringLiteral("127.0.0.1"), port};
    return servers;
}

// One client logging in automatically as `name`, with a game folder so that it starts quietly.
struct Client : AppHarness
{
    Client(const QString &name, quint16 port) : AppHarness(lobbyAt(port))
    {
        const QString game = home.filePath("RogueSpear");
        QDir().mkpath(game);
        writeFile(dataFolder() + "/settingRS.txt",
                  "0\r\n1\r\n0\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
        CredentialsFile::write(dataFolder() + "/user.txt", {name, "pw-" + name});
    }

    PlayerListModel &players() { return app.players(); }
    bool inGroup(const QString &name, PlayerListModel::Group group)
    {
        const int row = players().findEntry(name);
        if (row < 0)
            return false;
        const QString code = players().text(row, PlayerListModel::PlayerStatus);
        static const QHash<PlayerListModel::Group, QStringList> codes = {
            {PlayerListModel::Group::Lobby, {"7", "8"}},
            {PlayerListModel::Group::Playing, {"4", "5"}},
            {PlayerListModel::Group::Away, {"1", "2"}}};
        return codes.value(group).contains(code);
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
        QTRY_VERIFY_WITH_TIMEOUT(ann.app.session().isOnline(), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(bob.app.session().isOnline(), 10000);

        for (Client *client : {&ann, &bob}) {
            QTRY_VERIFY(client->inGroup(QStringLiteral("ann"), PlayerListModel::Group::Lobby));
            QTRY_VERIFY(client->inGroup(QStringLiteral("bob"), PlayerListModel::Group::Lobby));
            QCOMPARE(client->players().groupCount(PlayerListModel::Group::Lobby), 2);
        }

        ann.clock.advanceSeconds(10);
        ann.app.form().txtChatSend->setText(QStringLiteral("anyone up for a round?"));
        ann.app.chat().input().send();
        for (Client *client : {&ann, &bob})
            QTRY_VERIFY(client->app.form().txtChat->toPlainText().contains(
                QStringLiteral("anyone up for a round?")));

        Q_EMIT bob.app.form().hideRequested();
        QTRY_VERIFY(ann.inGroup(QStringLiteral("bob"), PlayerListModel::Group::Away));
        QCOMPARE(ann.players().groupCount(PlayerListModel::Group::Away), 1);
        QVERIFY(ann.inGroup(QStringLiteral("ann"), PlayerListModel::Group::Lobby));
    }
};

QTEST_MAIN(TestTwoClients)
#include "tst_twoclients.moc"
