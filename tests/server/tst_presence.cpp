// Presence and buddies: "PS" relayed with the host's address filled in and kept for the
// welcome of later players, and the buddy flag of "AN" seen per receiver, kept across
// sessions.
#include "lobbytest.h"

#include <QTest>

class TestPresence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presence_data();
    void presence();
    void buddyFlagIsPerReceiver_data();
    void buddyFlagIsPerReceiver();
};

void TestPresence::presence_data()
{
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QStringList>("relayed");  // empty: ignored
    QTest::addColumn<QStringList>("welcomed"); // state and address in a later player's "AN"
    // The game address travels only with the playing state.
    QTest::newRow("away") << QStringList{"1", "10.2.2.2"} << QStringList{"Anna", "1", "10.2.2.2"}
                          << QStringList{"1", ""};
    QTest::newRow("playing elsewhere")
        << QStringList{"2", "10.0.0.7"} << QStringList{"Anna", "2", "10.0.0.7"}
        << QStringList{"2", "10.0.0.7"};
    QTest::newRow("hosting") << QStringList{"2", "host"} << QStringList{"Anna", "2", "127.0.0.1"}
                             << QStringList{"2", "127.0.0.1"};
    QTest::newRow("in the lobby") << QStringList{"3", ""} << QStringList{"Anna", "3", ""}
                                  << QStringList{"3", ""};
    QTest::newRow("out of range") << QStringList{"4", ""} << QStringList{} << QStringList{"3", ""};
    QTest::newRow("not a digit") << QStringList{"x", ""} << QStringList{} << QStringList{"3", ""};
    QTest::newRow("with more") << QStringList{"33", ""} << QStringList{} << QStringList{"3", ""};
}

void TestPresence::presence()
{
    QFETCH(QStringList, sent);
    QFETCH(QStringList, relayed);
    QFETCH(QStringList, welcomed);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    anna->send(Code::PlayerStatus, sent);
    const QList<QStringList> expected =
        relayed.isEmpty() ? QList<QStringList>{} : QList<QStringList>{relayed};
    for (TestClient *client : {anna, bert})
        QCOMPARE(fieldsOf(client->takeAllAfter(Code::PlayerStatus, 200)), expected);
    TestClient *late = lobby.loggedIn(QStringLiteral("Late"));
    QCOMPARE(late->take(Code::AddPlayer).value_or(Message{}).fields.mid(2, 2), welcomed);
}

void TestPresence::buddyFlagIsPerReceiver_data()
{
    QTest::addColumn<QStringList>("sent"); // "+id" adds, "-id" removes, "C" is Carl's id
    QTest::addColumn<bool>("buddy");
    QTest::newRow("add") << QStringList{"+C"} << true;
    QTest::newRow("add twice") << QStringList{"+C", "+C"} << true;
    QTest::newRow("add then remove") << QStringList{"+C", "-C"} << false;
    QTest::newRow("remove unknown") << QStringList{"-C"} << false;
    QTest::newRow("add not a number") << QStringList{"+x"} << false;
    QTest::newRow("add unknown account") << QStringList{"+1000"} << false;
    QTest::newRow("remove not a number keeps") << QStringList{"+C", "-x"} << true;
}

void TestPresence::buddyFlagIsPerReceiver()
{
    QFETCH(QStringList, sent);
    QFETCH(bool, buddy);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    const QString carlId = QString::number(lobby.addAccount(QStringLiteral("Carl")));
    for (const QString &step : sent)
        anna->send(step.startsWith(QLatin1Char('+')) ? Code::BuddyAdd : Code::BuddyRemove,
                   {step.mid(1).replace(QLatin1Char('C'), carlId)});
    // Buddy changes have no answer; a chat line round trip shows the server has read them.
    anna->send(Code::ChatLine, {QStringLiteral("sync")});
    QVERIFY(anna->take(Code::ChatLine));
    anna->clear();
    bert->clear();

    // Only Anna sees Carl flagged; Carl's own welcome flags whom Carl marked: nobody.
    TestClient *carl = lobby.loggedIn(QStringLiteral("Carl"));
    const QString flag = QString::number(buddy);
    QCOMPARE(anna->take(Code::AddPlayer).value_or(Message{}).field(4), flag);
    QCOMPARE(bert->take(Code::AddPlayer).value_or(Message{}).field(4), QStringLiteral("0"));
    for (const Message &m : carl->takeCount(Code::AddPlayer, 3))
        QCOMPARE(m.field(4), QStringLiteral("0"));

    // Kept across sessions: Anna logging in again sees it the same way.
    TestClient *annaAgain = lobby.loggedIn(QStringLiteral("Anna"));
    const QList<Message> welcome = annaAgain->takeCount(Code::AddPlayer, 3);
    QCOMPARE(namesOf(welcome), QStringList({"Bert", "Carl", "Anna"}));
    QCOMPARE(welcome[1].field(4), flag);
    QCOMPARE(welcome[0].field(4), QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(TestPresence)
#include "tst_presence.moc"
