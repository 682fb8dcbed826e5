// Presence and buddies: "PS" relayed with the host's address filled in and kept for the
// welcome of later players, and the buddy flag of "AN" seen per receiver, kept across
// sessions.
#include "lobbytest.h"

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
        row("in the lobby", {"3", ""}, {"Anna", "3", ""}, {"3", ""});
        row("out of range", {"4", ""}, {}, {"3", ""});
        row("not a digit", {"x", ""}, {}, {"3", ""});
        row("with more", {"33", ""}, {}, {"3", ""});
    }

    void presence()
    {
        QFETCH(QStringList, sent);
        QFETCH(QStringList, relayed);
        QFETCH(QStringList, welcomed);
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        anna->send(Code::PlayerStatus, sent);
        QVERIFY(lobby.sync(anna));
        const QList<QStringList> expected =
            relayed.isEmpty() ? QList<QStringList>{} : QList<QStringList>{relayed};
        for (TestClient *client : {anna, bert})
            QCOMPARE(fieldsOf(client->takeAll(Code::PlayerStatus)), expected);
        TestClient *late = lobby.loggedIn("Late");
        QCOMPARE(late->take(Code::AddPlayer).value_or(Message{}).fields.mid(2, 2), welcomed);
    }

    void buddyFlagIsPerReceiver_data()
    {
        QTest::addColumn<QStringList>("sent"); // "+id" adds, "-id" removes, "C" is Carl's id
        QTest::addColumn<bool>("buddy");
        QTest::newRow("add") << QStringList{"+C"} << true;
        QTest::newRow("add then remove") << QStringList{"+C", "-C"} << false;
        QTest::newRow("remove unknown") << QStringList{"-C"} << false;
        QTest::newRow("add not a number") << QStringList{"+x"} << false;
        QTest::newRow("add unknown account") << QStringList{"+1000"} << false;
        QTest::newRow("remove not a number keeps") << QStringList{"+C", "-x"} << true;
    }

    void buddyFlagIsPerReceiver()
    {
        QFETCH(QStringList, sent);
        QFETCH(bool, buddy);
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        const QString carlId = QString::number(lobby.addAccount("Carl"));
        for (const QString &step : sent)
            anna->send(step.startsWith(QLatin1Char('+')) ? Code::BuddyAdd : Code::BuddyRemove,
                       {step.mid(1).replace(QLatin1Char('C'), carlId)});
        QVERIFY(lobby.sync(anna)); // buddy changes have no answer
        anna->clear();
        bert->clear();

        // Only Anna sees Carl flagged; Carl's own welcome flags whom Carl marked: nobody.
        TestClient *carl = lobby.loggedIn("Carl");
        const QString flag = QString::number(buddy);
        QCOMPARE(anna->take(Code::AddPlayer).value_or(Message{}).field(4), flag);
        QCOMPARE(bert->take(Code::AddPlayer).value_or(Message{}).field(4), "0");
        for (const Message &m : carl->takeCount(Code::AddPlayer, 3))
            QCOMPARE(m.field(4), "0");

        // Kept across sessions: Anna logging in again sees it the same way.
        TestClient *annaAgain = lobby.loggedIn("Anna");
        const QList<Message> welcome = annaAgain->takeCount(Code::AddPlayer, 3);
        QCOMPARE(namesOf(welcome), QStringList({"Bert", "Carl", "Anna"}));
        QCOMPARE(welcome[1].field(4), flag);
        QCOMPARE(welcome[0].field(4), "0");
    }
};

QTEST_GUILESS_MAIN(TestPresence)
#include "tst_presence.moc"
