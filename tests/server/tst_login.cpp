// Getting into the lobby: version check, login, open registration, second logins, the welcome
// sequence, the time limits and the slow-down of repeated failures.
#include "lobbytest.h"
#include "server/loginthrottle.h"

#include <QElapsedTimer>

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void welcomeAndSecondLogin()
    {
        TestLobby lobby;
        QVERIFY(lobby.listening);
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        bert->send(Code::AddRoom, {"Bert's room"});
        QVERIFY(anna->take(Code::AddRoom));
        anna->clear();

        const int id = lobby.addAccount("Carl", "secret", "  Carl@Example.ORG ");
        TestClient *carl = lobby.connected();
        // Any case logs in; the stored spelling comes back.
        const auto accepted = carl->login("cARL", "secret");
        QVERIFY(accepted);
        QCOMPARE(accepted->fields, QStringList({QString::number(id), "Carl"}));
        const QList<Message> welcome = carl->takeCount(Code::AddPlayer, 3);
        QCOMPARE(namesOf(welcome), QStringList({"Anna", "Bert", "Carl"}));
        QCOMPARE(welcome[2].fields, QStringList({"Carl", QString::number(id), "3", "", "0", "False",
                                                 "9493c221892eca68ed838e80c07707dc"}));
        // The rooms follow the players.
        QTRY_COMPARE(carl->pending().size(), 1);
        QCOMPARE(carl->pending().first().fields,
                 QStringList({"Bert", "Bert's room", "127.0.0.1", "In chat", "1", "0"}));
        QCOMPARE(namesOf(anna->takeCount(Code::AddPlayer, 1)), QStringList({"Carl"}));

        // A second login ends the first session: it leaves its room and the lobby before the
        // new one is announced.
        TestClient *bertAgain = lobby.loggedIn("bert");
        QVERIFY(bert->waitForDisconnected());
        QVERIFY(lobby.sync(bertAgain));
        const QList<Code> order{Code::RemoveRoom, Code::RemovePlayer, Code::AddPlayer};
        QCOMPARE(anna->pending().size(), 3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(anna->pending()[i].code, order[i]);
        QCOMPARE(anna->pending()[1].field(0), "Bert");
        QCOMPARE(namesOf(bertAgain->takeAll(Code::AddPlayer)),
                 QStringList({"Anna", "Carl", "Bert"}));
        QVERIFY(bertAgain->takeAll(Code::AddRoom).isEmpty());
        QCOMPARE(lobby.server->lobby().size(), 3);
    }

    void login_data()
    {
        QTest::addColumn<bool>("open"); // registration
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("accepted");
        const auto row = [](const char *tag, bool open, const QString &name, const char *password,
                            bool accepted) {
            QTest::newRow(tag) << open << name << password << accepted;
        };
        row("wrong password", false, "Anna", "wrong", false);
        row("unknown, closed", false, "Nobody", "pw", false);
        row("unknown, open", true, "Newcomer", "chosen", true);
        row("open, service account", true, "quorvel", "pw", false);
        row("open, empty name", true, "", "pw", false);
        row("open, blank at the end", true, "Newcomer ", "pw", false);
        row("open, control character", true, "New\x01", "pw", false);
        row("open, too long", true, QString(33, QLatin1Char('x')), "pw", false);
        row("open, empty password", true, "Newcomer", "", false);
    }

    void login()
    {
        QFETCH(bool, open);
        QFETCH(QString, name);
        QFETCH(QString, password);
        QFETCH(bool, accepted);
        server::LobbyConfig config;
        config.openRegistration = open;
        TestLobby lobby(config);
        lobby.addAccount("Anna");
        TestClient *watcher = lobby.loggedIn("Watcher");
        watcher->clear();

        TestClient *client = lobby.connected();
        const auto result = client->login(name, password);
        QCOMPARE(result.has_value(), accepted);
        QCOMPARE(lobby.accounts.all().size(), accepted ? 3 : 2);
        QVERIFY(lobby.sync(watcher));
        QCOMPARE(namesOf(watcher->takeAll(Code::AddPlayer)),
                 accepted ? QStringList{name} : QStringList{});
        if (accepted) {
            QCOMPARE(result->field(0), QString::number(lobby.idOf(name)));
            // The password chosen at registration is the account's password from then on.
            QVERIFY(!lobby.connected()->login(name.toUpper(), "other"));
        } else if (name == QLatin1String("Anna")) {
            // A refused client may try again on the same connection.
            client->send(Code::Login, {name, "pw"});
            QVERIFY(client->take(Code::LoginAccepted));
        }
    }

    void versions_data()
    {
        QTest::addColumn<QString>("sent");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("first listed") << "V 6.0" << true;
        QTest::newRow("older") << "V 5.9" << false;
        QTest::newRow("other case") << "v 6.0" << false;
    }

    void versions()
    {
        QFETCH(QString, sent);
        QFETCH(bool, accepted);
        server::LobbyConfig config;
        config.versions = {"V 6.0", "V 6.1"};
        TestLobby lobby(config);
        lobby.addAccount("Anna");
        TestClient *client = lobby.connected();
        if (accepted) {
            QVERIFY(client->login("Anna", "pw", sent));
        } else {
            // A refused version ends the connection after "OV".
            client->send(Code::Version, {sent});
            QVERIFY(client->take(Code::OldVersion));
            QVERIFY(client->waitForDisconnected());
        }
        QVERIFY(!client->hasPending(accepted ? Code::OldVersion : Code::SendLogin));
    }

    void messagesBeforeLoginAreIgnored()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        anna->clear();
        lobby.addAccount("Bert");
        TestClient *early = lobby.connected();
        // A login before the version, and everything else before the login, do nothing.
        early->send(Code::Login, {"Bert", "pw"});
        early->send(Code::ChatLine, {"hello"});
        early->send(Code::AddRoom, {"room"});
        QVERIFY(early->greet());
        QVERIFY(early->pending().isEmpty());
        early->send(Code::PlayerStatus, {"1", QString()});
        early->send(Code::ChatLine, {"hello"});
        early->send(Code::Login, {"Bert", "pw"});
        QVERIFY(early->take(Code::LoginAccepted));
        QVERIFY(!early->hasPending(Code::PlayerStatus) && !early->hasPending(Code::ChatLine));
        QVERIFY(lobby.sync(anna));
        QCOMPARE(namesOf(anna->takeAll(Code::AddPlayer)), QStringList{"Bert"});
        QVERIFY(anna->pending().isEmpty());
    }

    void silentConnectionsAreClosed()
    {
        server::LobbyConfig config;
        config.loginTimeoutMs = 200;
        config.idleTimeoutMs = 300;
        TestLobby lobby(config);
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *quiet = lobby.loggedIn("Quiet");
        TestClient *neverLogsIn = lobby.connected();
        QVERIFY(neverLogsIn->greet());
        // Keep-alives hold Anna's session open past the idle limit; the others are closed.
        for (int i = 0; i < 6; ++i) {
            anna->send(Code::KeepAlive);
            QTest::qWait(100);
        }
        QVERIFY(anna->isConnected());
        QVERIFY(!quiet->isConnected());
        QVERIFY(!neverLogsIn->isConnected());
        QCOMPARE(namesOf(anna->takeAll(Code::RemovePlayer)), QStringList({"Quiet"}));
    }

    void throttleSchedule()
    {
        server::ManualClock clock;
        server::LoginThrottle throttle(clock);
        const QString address = "10.0.0.1";
        QList<qint64> delays;
        for (int i = 0; i < 10; ++i) {
            delays.append(throttle.delayFor(address));
            throttle.recordFailure(address);
        }
        QCOMPARE(delays, QList<qint64>({0, 0, 0, 1000, 2000, 4000, 8000, 16000, 30000, 30000}));
        // Other addresses are not slowed down by it.
        QCOMPARE(throttle.delayFor("10.0.0.2"), 0);
        // Forgotten after a quiet while, and at once after a success.
        clock.advance(server::LoginThrottle::kForgetMs);
        QCOMPARE(throttle.delayFor(address), 0);
        for (int i = 0; i < 5; ++i)
            throttle.recordFailure(address);
        QVERIFY(throttle.delayFor(address) > 0);
        throttle.recordSuccess(address);
        QCOMPARE(throttle.delayFor(address), 0);
    }

    void repeatedFailuresAreSlowedDown()
    {
        TestLobby lobby;
        lobby.addAccount("Anna");
        TestClient *guesser = lobby.connected();
        QVERIFY(guesser->greet());
        for (int i = 0; i < server::LoginThrottle::kFreeFailures; ++i) {
            guesser->send(Code::Login, {"Anna", "guess"});
            QVERIFY(guesser->take(Code::LoginFailed));
        }
        QElapsedTimer elapsed;
        elapsed.start();
        // Logins sent while one waits are ignored, not queued.
        for (int i = 0; i < 2; ++i)
            guesser->send(Code::Login, {"Anna", "pw"});
        QVERIFY(guesser->take(Code::LoginAccepted));
        QVERIFY(elapsed.elapsed() >= 1000);
        QVERIFY(lobby.sync(guesser));
        QVERIFY(guesser->takeAll(Code::LoginAccepted).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLogin)
#include "tst_login.moc"
