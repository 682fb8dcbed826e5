// Getting into the lobby: version check, login, open registration, second logins, the welcome
// sequence and the time limits.
#include "lobbytest.h"

#include <QElapsedTimer>
#include <QTest>

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void welcomeAndSecondLogin();
    void login_data();
    void login();
    void versions_data();
    void versions();
    void messagesBeforeLoginAreIgnored();
    void silentConnectionsAreClosed();
    void repeatedFailuresAreSlowedDown();
};

void TestLogin::welcomeAndSecondLogin()
{
    TestLobby lobby;
    QVERIFY(lobby.listening);
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    bert->send(Code::AddRoom, {QStringLiteral("Bert's room")});
    QVERIFY(anna->take(Code::AddRoom));
    anna->clear();

    const int id = lobby.addAccount(QStringLiteral("Carl"), QStringLiteral("secret"),
                                    QStringLiteral("  Carl@Example.ORG "));
    TestClient *carl = lobby.connected();
    // Any case logs in; the stored spelling comes back.
    const auto accepted = carl->login(QStringLiteral("cARL"), QStringLiteral("secret"));
    QVERIFY(accepted);
    QCOMPARE(accepted->fields, QStringList({QString::number(id), QStringLiteral("Carl")}));
    const QList<Message> welcome = carl->takeCount(Code::AddPlayer, 3);
    QCOMPARE(namesOf(welcome), QStringList({"Anna", "Bert", "Carl"}));
    QCOMPARE(welcome[2].fields, QStringList({"Carl", QString::number(id), "3", "", "0", "False",
                                             "9493c221892eca68ed838e80c07707dc"}));
    // The rooms follow the players.
    QCOMPARE(carl->pending().size(), 1);
    QCOMPARE(carl->pending().first().fields,
             QStringList({"Bert", "Bert's room", "127.0.0.1", "In chat", "1", "0"}));
    QCOMPARE(namesOf(anna->takeCount(Code::AddPlayer, 1)), QStringList({"Carl"}));

    // A second login ends the first session: it leaves its room and the lobby before the
    // new one is announced.
    TestClient *bertAgain = lobby.loggedIn(QStringLiteral("bert"));
    QVERIFY(bert->waitForDisconnected());
    QTRY_COMPARE(anna->pending().size(), 3);
    const QList<Code> order{Code::RemoveRoom, Code::RemovePlayer, Code::AddPlayer};
    for (int i = 0; i < 3; ++i)
        QCOMPARE(anna->pending()[i].code, order[i]);
    QCOMPARE(anna->pending()[1].field(0), QStringLiteral("Bert"));
    QCOMPARE(namesOf(bertAgain->takeAllAfter(Code::AddPlayer, 100)),
             QStringList({"Anna", "Carl", "Bert"}));
    QVERIFY(bertAgain->takeAllAfter(Code::AddRoom, 0).isEmpty());
    QCOMPARE(lobby.server->lobby().size(), 3);
}

void TestLogin::login_data()
{
    QTest::addColumn<bool>("open"); // registration
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("wrong password") << false << "Anna"
                                    << "wrong" << false;
    QTest::newRow("empty password") << false << "Anna"
                                    << "" << false;
    QTest::newRow("unknown, closed") << false << "Nobody"
                                     << "pw" << false;
    QTest::newRow("unknown, open") << true << "Newcomer"
                                   << "chosen" << true;
    QTest::newRow("open, service account") << true << "quorvel"
                                           << "pw" << false;
    QTest::newRow("open, empty name") << true << ""
                                      << "pw" << false;
    QTest::newRow("open, blank at the end") << true << "Newcomer "
                                            << "pw" << false;
    QTest::newRow("open, control character") << true << QStringLiteral("New\x01") << "pw" << false;
    QTest::newRow("open, too long") << true << QString(33, QLatin1Char('x')) << "pw" << false;
    QTest::newRow("open, empty password") << true << "Newcomer"
                                          << "" << false;
}

void TestLogin::login()
{
    QFETCH(bool, open);
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(bool, accepted);
    server::LobbyConfig config;
    config.openRegistration = open;
    TestLobby lobby(config);
    lobby.addAccount(QStringLiteral("Anna"));
    TestClient *watcher = lobby.loggedIn(QStringLiteral("Watcher"));
    watcher->clear();

    TestClient *client = lobby.connected();
    const auto result = client->login(name, password);
    QCOMPARE(result.has_value(), accepted);
    QCOMPARE(lobby.accounts.all().size(), accepted ? 3 : 2);
    QCOMPARE(namesOf(watcher->takeAllAfter(Code::AddPlayer, 200)),
             accepted ? QStringList{name} : QStringList{});
    if (accepted) {
        QCOMPARE(result->field(0), QString::number(lobby.idOf(name)));
        // The password chosen at registration is the account's password from then on.
        QVERIFY(!lobby.connected()->login(name.toUpper(), QStringLiteral("other")));
    } else if (name == QLatin1String("Anna")) {
        // A refused client may try again on the same connection.
        client->send(Code::Login, {name, QStringLiteral("pw")});
        QVERIFY(client->take(Code::LoginAccepted));
    }
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
    QCOMPARE(client->take(Code::SendLogin, accepted ? 5000 : 300).has_value(), accepted);
    QCOMPARE(client->take(Code::OldVersion, accepted ? 100 : 5000).has_value(), !accepted);
    // A refused version ends the connection after "OV".
    QVERIFY(accepted ? client->isConnected() : client->waitForDisconnected());
}

void TestLogin::messagesBeforeLoginAreIgnored()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    anna->clear();
    lobby.addAccount(QStringLiteral("Bert"));
    TestClient *early = lobby.connected();
    // A login before the version, and everything else before the login, do nothing.
    early->send(Code::Login, {QStringLiteral("Bert"), QStringLiteral("pw")});
    early->send(Code::ChatLine, {QStringLiteral("hello")});
    early->send(Code::AddRoom, {QStringLiteral("room")});
    QTest::qWait(300);
    QVERIFY(early->greet());
    early->send(Code::PlayerStatus, {QStringLiteral("1"), QString()});
    early->send(Code::ChatLine, {QStringLiteral("hello")});
    QTest::qWait(100);
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
    QVERIFY(neverLogsIn->greet());
    // Keep-alives hold Anna's session open past the idle limit; the others are closed.
    for (int i = 0; i < 8; ++i) {
        anna->send(Code::KeepAlive);
        QTest::qWait(150);
    }
    QVERIFY(anna->isConnected());
    QVERIFY(!quiet->isConnected());
    QVERIFY(!neverLogsIn->isConnected());
    QCOMPARE(namesOf(anna->takeAllAfter(Code::RemovePlayer, 0)), QStringList({"Quiet"}));
}

void TestLogin::repeatedFailuresAreSlowedDown()
{
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Anna"));
    TestClient *guesser = lobby.connected();
    QVERIFY(guesser->greet());
    for (int i = 0; i < server::LoginThrottle::kFreeFailures; ++i) {
        guesser->send(Code::Login, {QStringLiteral("Anna"), QStringLiteral("guess")});
        QVERIFY(guesser->take(Code::LoginFailed));
    }
    QElapsedTimer elapsed;
    elapsed.start();
    // Logins sent while one waits are ignored, not queued.
    for (int i = 0; i < 2; ++i)
        guesser->send(Code::Login, {QStringLiteral("Anna"), QStringLiteral("pw")});
    QVERIFY(guesser->take(Code::LoginAccepted));
    QVERIFY(elapsed.elapsed() >= 1000);
    QVERIFY(guesser->takeAllAfter(Code::LoginAccepted, 200).isEmpty());
}

QTEST_GUILESS_MAIN(TestLogin)
#include "tst_login.moc"
