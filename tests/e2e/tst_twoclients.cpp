// Two clients against the real lobby server: both log in automatically, see each other in
// the lobby, chat, and one hides to the tray.
// ctest: timeout=120
#include "client/app/clientapplication.h"
#include "client/app/form1.h"
#include "client/app/traycontroller.h"
#include "client/lobby/credentialsfile.h"
#include "client/platform/registrylinux.h"
#include "client/presence/chatinput.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistmodel.h"
#include "client/session/clock.h"
#include "client/session/sessionstate.h"
#include "client/session/tickcount.h"
#include "support/clientfakes.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>

using namespace client;

namespace {

// One client with its own data folder, logging in automatically as `name`.
struct Client
{
    QTemporaryDir home;
    FakeTray tray;
    RecordingPlayer player;
    ManualClock clock;
    SystemTickCount ticks;
    FakeDialogs dialogs;
    std::unique_ptr<LinuxRegistry> registry;
    std::unique_ptr<ClientApplication> app;

    Client(const QString &name, quint16 port)
    {
        const QString data = home.filePath(QStringLiteral("data"));
        const QString game = home.filePath(QStringLiteral("RogueSpear"));
        QDir().mkpath(data);
        QDir().mkpath(game);
        CredentialsFile::write(QDir(data).filePath(QStringLiteral("user.txt")),
                               {name, QStringLiteral("pw-") + name});
        QFile settings(QDir(data).filePath(QStringLiteral("settingRS.txt")));
        if (settings.open(QIODevice::WriteOnly))
            settings.write("0\r\n1\r\n0\r\n0\r\n0\r\n" + game.toUtf8() + "\r\n\r\n");
        settings.close();
        registry = std::make_unique<LinuxRegistry>(LinuxRegistry::Paths{
            home.filePath(QStringLiteral("autostart")), home.filePath(QStringLiteral("system.reg")),
            home.filePath(QStringLiteral("registry.ini"))});
        ServerAddresses servers;
        servers.lobby = {QStringLiteral("127.0.0.1"), port};
        app = std::make_unique<ClientApplication>(
            ClientApplication::Services{&tray, &player, &clock, &ticks, registry.get(), &dialogs,
                                        home.filePath(QStringLiteral("wine")), data},
            servers);
    }

    PlayerListModel &players() { return app->players(); }
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
    QProcess m_server;
    QTemporaryDir m_serverHome;
    quint16 m_port = 0;

private Q_SLOTS:
    void initTestCase()
    {
        m_server.setProgram(QStringLiteral(QUORVEL_BINARY_DIR "/src/server/quorvel-server"));
        m_server.setArguments({"--listen", "127.0.0.1", "--port", "0", "--http-port", "0",
                               "--registration", "open", "--db",
                               m_serverHome.filePath(QStringLiteral("lobby.sqlite"))});
        m_server.start();
        QVERIFY(m_server.waitForStarted());
        QByteArray out;
        QVERIFY(QTest::qWaitFor(
            [&] {
                out += m_server.readAllStandardOutput();
                return out.contains('\n');
            },
            10000));
        const QByteArray line = out.left(out.indexOf('\n')).trimmed();
        QVERIFY2(line.startsWith("lobby listening on "), line.constData());
        m_port = quint16(line.mid(line.lastIndexOf(':') + 1).toUInt());
        QVERIFY(m_port != 0);
    }

    void cleanupTestCase()
    {
        m_server.kill();
        m_server.waitForFinished();
    }

    void twoClientsMeetChatAndGoAway()
    {
        Client ann(QStringLiteral("ann"), m_port);
        Client bob(QStringLiteral("bob"), m_port);
        QVERIFY(ann.app->start());
        QVERIFY(bob.app->start());
        QTRY_VERIFY_WITH_TIMEOUT(ann.app->session().isOnline(), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(bob.app->session().isOnline(), 10000);

        for (Client *client : {&ann, &bob}) {
            QTRY_VERIFY(client->inGroup(QStringLiteral("ann"), PlayerListModel::Group::Lobby));
            QTRY_VERIFY(client->inGroup(QStringLiteral("bob"), PlayerListModel::Group::Lobby));
            QCOMPARE(client->players().groupCount(PlayerListModel::Group::Lobby), 2);
        }

        ann.clock.advanceSeconds(10);
        ann.app->form().txtChatSend->setText(QStringLiteral("anyone up for a round?"));
        ann.app->chat().input().send();
        for (Client *client : {&ann, &bob})
            QTRY_VERIFY(client->app->form().txtChat->toPlainText().contains(
                QStringLiteral("anyone up for a round?")));

        Q_EMIT bob.app->form().hideRequested();
        QTRY_VERIFY(ann.inGroup(QStringLiteral("bob"), PlayerListModel::Group::Away));
        QCOMPARE(ann.players().groupCount(PlayerListModel::Group::Away), 1);
        QVERIFY(ann.inGroup(QStringLiteral("ann"), PlayerListModel::Group::Lobby));
    }
};

QTEST_MAIN(TestTwoClients)
#include "tst_twoclients.moc"
