// Getting into the lobby: version check, login, open registration, second logins, the welcome
// sequence, the time limits and the slow-down of repeated failures.
#include "lobbytest.h"
#include "server/lobby/loginthrottle.h"

#include <QElapsedTimer>

class TestLogin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void welcomeAndSecondLogin()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
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
        QTRY_COMPARE(fieldsOf(carl->pending()),
                     Rows({{"Bert", "Bert's room", "127.0.0.1", "In chat", "1", "0"}}));
        QVERIFY(anna->take(Code::AddPlayer));

        // A second login ends the first session: it leaves its room and the lobby before the
        // new one is announced.
        TestClient *bertAgain = lobby.loggedIn("bert");
        QVERIFY(bert->waitForDisconnected());
        QVERIFY(lobby.sync(bertAgain));
        QCOMPARE(codesOf(anna->pending()), QStringList({"RR", "RN", "AN"}));
        QCOMPARE(namesOf(anna->pending()), QStringList({"Bert", "Bert", "Bert"}));
        QCOMPARE(namesOf(bertAgain->takeAll(Code::AddPlayer)),
                 QStringList({"Anna", "Carl", "Bert"}));
        QVERIFY(bertAgain->takeAll(Code::AddRoom).isEmpty());
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
        row("open, blank at the end", true, "Newcomer ", "pw", false);
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
        QCOMPARE(lobby.connected()->login(name, password).has_value(), accepted);
        QCOMPARE(lobby.accounts.all().size(), accepted ? 2 : 1);
    }

    void messagesBeforeLoginAreIgnored()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        anna->clear();
        lobby.addAccount("Bert");
        // A version not listed (they are compared exactly) ends the connection after "OV".
        TestClient *old = lobby.connected();
        old->send(Code::Version, {"v 6.0"});
        QVERIFY(old->take(Code::OldVersion));
        QVERIFY(old->waitForDisconnected());
        // A login before the version, and everything else before the login, do nothing.
        TestClient *early = lobby.connected();
        early->send(Code::Login, {"Bert", "pw"});
        early->send(Code::ChatLine, {"hello"});
        QVERIFY(early->greet());
        QVERIFY(early->pending().isEmpty());
        early->send(Code::PlayerStatus, {"1", QString()});
        // Nor does the lobby reach a connection before its login: had Anna's line gone to it,
        // it would have come before the login's answer.
        QVERIFY(lobby.sync(anna));
        early->send(Code::Login, {"Bert", "pw"});
        QVERIFY(early->take(Code::LoginAccepted));
        QVERIFY(!early->hasPending(Code::PlayerStatus) && !early->hasPending(Code::ChatLine));
        QVERIFY(lobby.sync(anna));
        QCOMPARE(codesOf(anna->pending()), QStringList{"AN"});
    }

    void silentConnectionsAreClosed()
    {
        server::LobbyConfig config;
        config.loginTimeoutMs = 200;
        config.idleTimeoutMs = 300;
        TestLobby lobby(config);
        TestClient *anna = lobby.loggedIn("Anna");
        lobby.loggedIn("Quiet");
        TestClient *neverLogsIn = lobby.connected();
        QVERIFY(neverLogsIn->greet());
        // Keep-alives hold Anna's session open past the idle limit, which closes Quiet's (later
        // than Anna's would close) and the one that never logged in.
        QVERIFY(waitUntil([&] {
            anna->send(Code::KeepAlive);
            return anna->hasPending(Code::RemovePlayer, "Quiet") && !neverLogsIn->isConnected();
        }));
        QVERIFY(anna->isConnected());
    }

    void throttleSchedule()
    {
        ManualServerClock clock;
        server::LoginThrottle throttle(clock);
        // One attempt after the other: each waits its turn, then fails.
        QList<qint64> delays;
        for (int i = 0; i < 10; ++i) {
            delays.append(throttle.reserveTurn("a"));
            clock.advance(delays.last());
            throttle.recordFailure("a");
        }
        QCOMPARE(delays, QList<qint64>({0, 0, 0, 500, 1000, 2000, 4000, 4000, 4000, 4000}));
        QCOMPARE(throttle.reserveTurn("b"), 0); // per address
        // Attempts on parallel connections take turns rather than all waiting the same time.
        for (int i = 0; i < 5; ++i)
            throttle.recordFailure("b");
        QCOMPARE(QList<qint64>({throttle.reserveTurn("b"), throttle.reserveTurn("b"),
                                throttle.reserveTurn("b")}),
                 QList<qint64>({2000, 4000, 6000}));
        // Forgotten at once after a success, and after a quiet while.
        throttle.recordSuccess("a");
        QCOMPARE(throttle.reserveTurn("a"), 0);
        for (int i = 0; i < 5; ++i)
            throttle.recordFailure("a");
        clock.advance(server::LoginThrottle::kForgetMs);
        QCOMPARE(throttle.reserveTurn("a"), 0);
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
        QVERIFY(elapsed.elapsed() >= server::LoginThrottle::kFirstDelayMs);
        QVERIFY(lobby.sync(guesser));
        QVERIFY(guesser->takeAll(Code::LoginAccepted).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestLogin)
#include "tst_login.moc"
