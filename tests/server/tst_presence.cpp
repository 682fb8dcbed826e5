// Presence and buddies: "PS" relayed with the host's address filled in and kept for the
// welcome of later players, and the buddy flag of "AN" seen per receiver, kept across
// sessions.
#include "lobbytest.h"

#include <QRegularExpression>
#include <QSqlQuery>

class TestPresence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presence_data()
    {
        QTest::addColumn<QStringList>("sent");
        QTest::addColumn<QStringList>("relayed");  // empty: ignored
        QTest::addColumn<QStringList>("welcomed"); // state and address in a later player's "AN"
        const auto row = [](const char *tag, QStringList sent, QStringList relayed,
                            QStringList welcomed) {
            QTest::newRow(tag) << sent << relayed << welcomed;
        };
        // The game address travels only with the playing state.
        row("away", {"1", "10.2.2.2"}, {"Anna", "1", "10.2.2.2"}, {"1", ""});
        row("playing elsewhere", {"2", "10.0.0.7"}, {"Anna", "2", "10.0.0.7"}, {"2", "10.0.0.7"});
        row("hosting", {"2", "host"}, {"Anna", "2", "127.0.0.1"}, {"2", "127.0.0.1"});
        row("not 1, 2 or 3", {"4", ""}, {}, {"3", ""});
    }

    void presence()
    {
        QFETCH(QStringList, sent);
        QFETCH(QStringList, relayed);
        QFETCH(QStringList, welcomed);
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        anna->send(Code::PlayerStatus, sent);
        QVERIFY(lobby.sync(anna));
        for (TestClient *client : {anna, bert})
            QCOMPARE(fieldsOf(client->takeAll(Code::PlayerStatus)),
                     relayed.isEmpty() ? Rows() : Rows{relayed});
        QCOMPARE(lobby.loggedIn("Late")->fields(Code::AddPlayer).value(0).mid(2, 2), welcomed);
    }

    // A burst of changes reaches everyone as its first and, at the next tick, its latest. A
    // tick that finds nothing of a player's to send frees him: his next change goes out at
    // once, ahead of a chat line sent after it.
    void burstsArriveAsFirstAndLatest()
    {
        server::LobbyConfig config;
        config.presenceSpacingMs = 200;
        TestLobby lobby(config);
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        for (const char *state : {"1", "2", "3"})
            anna->send(Code::PlayerStatus, {state, "10.0.0.7"});
        const Rows expected{{"Anna", "1", "10.0.0.7"}, {"Anna", "3", "10.0.0.7"}};
        for (TestClient *client : {anna, bert})
            QCOMPARE(client->fields(Code::PlayerStatus, 2), expected);

        // Bert's second change marks a later tick, which has nothing of Anna's.
        bert->send(Code::PlayerStatus, {"1", QString()});
        bert->send(Code::PlayerStatus, {"3", QString()});
        QCOMPARE(namesOf(anna->takeCount(Code::PlayerStatus, 2)), QStringList({"Bert", "Bert"}));
        QCOMPARE(bert->takeCount(Code::PlayerStatus, 2).size(), 2);
        bert->clear();
        anna->send(Code::PlayerStatus, {"2", "host"});
        anna->send(Code::ChatLine, {"after"});
        QVERIFY(waitUntil([&] { return bert->hasPending(Code::ChatLine); }));
        QCOMPARE(codesOf(bert->pending()), QStringList({"PS", "MD"}));
        QCOMPARE(bert->fields(Code::PlayerStatus), Rows({{"Anna", "2", "127.0.0.1"}}));
    }

    void buddyFlagIsPerReceiverAndKept()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        const QString carlId = QString::number(lobby.addAccount("Carl"));
        anna->send(Code::BuddyAdd, {carlId});
        QVERIFY(lobby.sync(anna)); // buddy changes have no answer
        anna->clear();
        bert->clear();

        // Only Anna sees Carl flagged; Carl's own welcome flags whom Carl marked: nobody.
        TestClient *carl = lobby.loggedIn("Carl");
        QCOMPARE(anna->take(Code::AddPlayer).value_or(Message{}).field(4), "1");
        QCOMPARE(bert->take(Code::AddPlayer).value_or(Message{}).field(4), "0");
        QCOMPARE(fieldOf(carl->takeCount(Code::AddPlayer, 3), 4), QStringList({"0", "0", "0"}));

        // Kept across sessions: Anna's next welcome flags him, until she removes him.
        TestClient *annaAgain = lobby.loggedIn("Anna");
        const QList<Message> welcome = annaAgain->takeCount(Code::AddPlayer, 3);
        QCOMPARE(namesOf(welcome), QStringList({"Bert", "Carl", "Anna"}));
        QCOMPARE(fieldOf(welcome, 4), QStringList({"0", "1", "0"}));
        annaAgain->send(Code::BuddyRemove, {carlId});
        QVERIFY(lobby.sync(annaAgain));
        QCOMPARE(fieldOf(lobby.loggedIn("Anna")->takeCount(Code::AddPlayer, 3), 4),
                 QStringList({"0", "0", "0"}));
    }

    // While another process holds the database's lock, a buddy change waits without filling
    // the log (one line, then one per half minute) and lands once the lock is gone.
    void buddyChangesWaitOutALockedDatabase()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        const int bertId = lobby.addAccount("Bert");
        QVERIFY(lobby.lockDatabase());
        const QRegularExpression refused("buddy changes not written");
        QTest::ignoreMessage(QtWarningMsg, refused);
        QTest::failOnWarning(refused);
        anna->send(Code::BuddyAdd, {QString::number(bertId)});
        QVERIFY(lobby.sync(anna));
        QTest::qWait(1500); // retried every 0.2 s, this would be seven lines
        QVERIFY(lobby.unlockDatabase());
        QSqlQuery stored(lobby.database.handle());
        QVERIFY(waitUntil([&] {
            return stored.exec("SELECT COUNT(*) FROM buddies") && stored.next() &&
                   stored.value(0).toInt() == 1;
        }));
    }
};

QTEST_GUILESS_MAIN(TestPresence)
#include "tst_presence.moc"
