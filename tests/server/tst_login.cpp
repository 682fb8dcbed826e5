// Getting into the lobby: version check, login, open registration, second logins, the welcome
// sequence and the time limits.
#include "testclient.h"
#include "testlobby.h"

#include <QElapsedTimer>
#include <QTest>

using protocol::Code;
using protocol::Message;

namespace {
QStringList names(const QList<Message> &messages)
{
    QStringList out;
    for (const Message &m : messages)
        out.append(m.field(0));
    return out;
}
} // namespace

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void acceptedLoginWelcomesInOrder();
    void refusedLogin_data();
    void refusedLogin();
    void openRegistrationCreatesAccount();
    void openRegistrationRefuses_data();
    void openRegistrationRefuses();
    void secondLoginEndsTheFirst();
    void versions_data();
    void versions();
    void messagesBeforeLoginAreIgnored();
    void silentConnectionsAreClosed();
    void repeatedFailuresAreSlowedDown();
};

void TestLogin::acceptedLoginWelcomesInOrder()
{
    TestLobby lobby;
    QVERIFY(lobby.isListening());
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    bert->send(Code::AddRoom, {QStringLiteral("Bert's room")});
    QVERIFY(bert->take(Code::AddRoom));
    anna->clear();
    bert->clear();

    const int id = lobby.addAccount(QStringLiteral("Carl"), QStringLiteral("secret"),
                                    QStringLiteral("  Carl@Example.ORG "));
    TestClient *carl = lobby.connected();
    // Any case logs in; the stored spelling comes back.
    const std::optional<Message> accepted =
        carl->login(QStringLiteral("cARL"), QStringLiteral("secret"));
    QVERIFY(accepted);
    QCOMPARE(accepted->fields, QStringList({QString::number(id), QStringLiteral("Carl")}));

    const QList<Message> welcome = carl->takeCount(Code::AddPlayer, 3);
    QCOMPARE(names(welcome), QStringList({"Anna", "Bert", "Carl"}));
    QCOMPARE(welcome[2].fields, QStringList({"Carl", QString::number(id), "3", "", "0", "False",
                                             "9493c221892eca68ed838e80c07707dc"}));
    // The rooms follow the players.
    QCOMPARE(carl->pending().size(), 1);
    QCOMPARE(carl->pending().first().code, Code::AddRoom);
    QCOMPARE(carl->pending().first().fields,
             QStringList({"Bert", "Bert's room", "127.0.0.1", "In chat", "1", "0"}));

    for (TestClient *other : {anna, bert}) {
        const std::optional<Message> announced = other->take(Code::AddPlayer);
        QVERIFY(announced);
        QCOMPARE(announced->field(0), QStringLiteral("Carl"));
    }
}

void TestLogin::refusedLogin_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::newRow("wrong password") << "Anna"
                                    << "wrong";
    QTest::newRow("empty password") << "Anna"
                                    << "";
    QTest::newRow("unknown name, closed registration") << "Nobody"
                                                       << "pw";
}

void TestLogin::refusedLogin()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Anna"), QStringLiteral("pw"));
    TestClient *watcher = lobby.loggedIn(QStringLiteral("Watcher"));
    QVERIFY(watcher);
    watcher->clear();

    TestClient *client = lobby.connected();
    QVERIFY(!client->login(name, password));
    // A refused client may try again on the same connection.
    if (name == QLatin1String("Anna")) {
        client->send(Code::Login, {name, QStringLiteral("pw")});
        QVERIFY(client->take(Code::LoginAccepted));
    } else {
        QVERIFY(!lobby.accounts().findByName(name));
        QVERIFY(watcher->takeAllAfter(Code::AddPlayer).isEmpty());
    }
}

void TestLogin::openRegistrationCreatesAccount()
{
    server::LobbyConfig config;
    config.openRegistration = true;
    TestLobby lobby(config);
    TestClient *first = lobby.connected();
    const std::optional<Message> accepted =
        first->login(QStringLiteral("Newcomer"), QStringLiteral("chosen"));
    QVERIFY(accepted);
    const std::optional<server::Account> account =
        lobby.accounts().findByName(QStringLiteral("Newcomer"));
    QVERIFY(account);
    QCOMPARE(accepted->field(0), QString::number(account->id));
    // The password chosen at registration is the account's password from then on.
    TestClient *impostor = lobby.connected();
    QVERIFY(!impostor->login(QStringLiteral("NEWCOMER"), QStringLiteral("other")));
    QCOMPARE(lobby.accounts().all().size(), 1);
}

void TestLogin::openRegistrationRefuses_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::newRow("service account") << "quorvel"
                                     << "pw";
    QTest::newRow("empty name") << ""
                                << "pw";
    QTest::newRow("blank at the end") << "Anna "
                                      << "pw";
    QTest::newRow("control character") << QStringLiteral("An\x01na") << "pw";
    QTest::newRow("too long") << QString(33, QLatin1Char('x')) << "pw";
    QTest::newRow("empty password") << "Anna"
                                    << "";
}

void TestLogin::openRegistrationRefuses()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    server::LobbyConfig config;
    config.openRegistration = true;
    TestLobby lobby(config);
    TestClient *client = lobby.connected();
    QVERIFY(!client->login(name, password));
    QVERIFY(lobby.accounts().all().isEmpty());
}

void TestLogin::secondLoginEndsTheFirst()
{
    TestLobby lobby;
    TestClient *watcher = lobby.loggedIn(QStringLiteral("Watcher"));
    TestClient *first = lobby.loggedIn(QStringLiteral("Anna"));
    QVERIFY(watcher && first);
    first->send(Code::AddRoom, {QStringLiteral("room")});
    QVERIFY(watcher->take(Code::AddRoom));
    watcher->clear();

    TestClient *second = lobby.loggedIn(QStringLiteral("anna"));
    QVERIFY(second);
    QVERIFY(first->waitForDisconnected());
    // The old session leaves its room and the lobby before the new one is announced.
    QTRY_COMPARE(watcher->pending().size(), 3);
    QCOMPARE(watcher->pending()[0].code, Code::RemoveRoom);
    QCOMPARE(watcher->pending()[1].code, Code::RemovePlayer);
    QCOMPARE(watcher->pending()[1].field(0), QStringLiteral("Anna"));
    QCOMPARE(watcher->pending()[2].code, Code::AddPlayer);
    QCOMPARE(names(second->takeCount(Code::AddPlayer, 2)), QStringList({"Watcher", "Anna"}));
    QVERIFY(second->takeAllAfter(Code::AddRoom, 100).isEmpty());
    QCOMPARE(lobby.server().lobby().size(), 2);
}

void TestLogin::versions_data()
{
    QTest::addColumn<QString>("sent");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("first listed") << "V 6.0" << true;
    QTest::newRow("second listed") << "V 6.1" << true;
    QTest::newRow("older") << "V 5.9" << false;
    QTest::newRow("other case") << "v 6.0" << false;
    QTest::newRow("empty") << "" << false;
}

void TestLogin::versions()
{
    QFETCH(QString, sent);
    QFETCH(bool, accepted);
    server::LobbyConfig config;
    config.versions = {QStringLiteral("V 6.0"), QStringLiteral("V 6.1")};
    TestLobby lobby(config);
    TestClient *client = lobby.connected();
    client->send(Code::Version, {sent});
    if (accepted) {
        QVERIFY(client->take(Code::SendLogin));
        QVERIFY(client->takeAllAfter(Code::OldVersion, 100).isEmpty());
    } else {
        QVERIFY(client->take(Code::OldVersion));
        QVERIFY(client->waitForDisconnected());
        QVERIFY(client->pending().isEmpty());
    }
}

void TestLogin::messagesBeforeLoginAreIgnored()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    QVERIFY(anna);
    anna->clear();
    lobby.addAccount(QStringLiteral("Bert"));
    TestClient *early = lobby.connected();
    // A login before the version, and everything else before the login, do nothing.
    early->send(Code::Login, {QStringLiteral("Bert"), QStringLiteral("pw")});
    early->send(Code::ChatLine, {QStringLiteral("hello")});
    early->send(Code::AddRoom, {QStringLiteral("room")});
    QVERIFY(early->takeAllAfter(Code::LoginAccepted, 300).isEmpty());
    QVERIFY(early->greet());
    early->send(Code::PlayerStatus, {QStringLiteral("1"), QString()});
    early->send(Code::ChatLine, {QStringLiteral("hello")});
    QVERIFY(early->takeAllAfter(Code::ChatLine, 100).isEmpty());
    QVERIFY(anna->pending().isEmpty());
    QVERIFY(early->pending().isEmpty());
    early->send(Code::Login, {QStringLiteral("Bert"), QStringLiteral("pw")});
    QVERIFY(early->take(Code::LoginAccepted));
}

void TestLogin::silentConnectionsAreClosed()
{
    server::LobbyConfig config;
    config.loginTimeoutMs = 400;
    config.idleTimeoutMs = 600;
    TestLobby lobby(config);
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *quiet = lobby.loggedIn(QStringLiteral("Quiet"));
    TestClient *neverLogsIn = lobby.connected();
    QVERIFY(anna && quiet);
    QVERIFY(neverLogsIn->greet());

    // Keep-alives hold Anna's session open past the idle limit; the others are closed.
    QElapsedTimer elapsed;
    elapsed.start();
    while (elapsed.elapsed() < 1200) {
        anna->send(Code::KeepAlive);
        QTest::qWait(150);
    }
    QVERIFY(anna->isConnected());
    QVERIFY(!quiet->isConnected());
    QVERIFY(!neverLogsIn->isConnected());
    const std::optional<Message> gone = anna->take(Code::RemovePlayer);
    QVERIFY(gone);
    QCOMPARE(gone->field(0), QStringLiteral("Quiet"));
}

void TestLogin::repeatedFailuresAreSlowedDown()
{
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Anna"), QStringLiteral("pw"));
    TestClient *guesser = lobby.connected();
    QVERIFY(guesser->greet());
    for (int i = 0; i < server::LoginThrottle::kFreeFailures; ++i) {
        guesser->send(Code::Login, {QStringLiteral("Anna"), QStringLiteral("guess")});
        QVERIFY(guesser->take(Code::LoginFailed));
    }
    QElapsedTimer elapsed;
    elapsed.start();
    guesser->send(Code::Login, {QStringLiteral("Anna"), QStringLiteral("pw")});
    // Logins sent while one waits are ignored, not queued.
    guesser->send(Code::Login, {QStringLiteral("Anna"), QStringLiteral("pw")});
    QVERIFY(guesser->take(Code::LoginAccepted, 5000));
    QVERIFY(elapsed.elapsed() >= 1000);
    QVERIFY(guesser->takeAllAfter(Code::LoginAccepted, 200).isEmpty());
}

QTEST_GUILESS_MAIN(TestLogin)
#include "tst_login.moc"
