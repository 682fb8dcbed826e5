// Presence and buddies: "PS" relayed with the host's address filled in, and the buddy flag
// of "AN" seen per receiver, kept across sessions.
#include "testclient.h"
#include "testlobby.h"

#include <QTest>

using protocol::Code;
using protocol::Message;

class TestPresence : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void presenceIsRelayedToEveryone_data();
    void presenceIsRelayedToEveryone();
    void announcementShowsPresenceAndModerator();
    void buddyFlagIsPerReceiver();
    void buddyChanges_data();
    void buddyChanges();
};

void TestPresence::presenceIsRelayedToEveryone_data()
{
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<QStringList>("relayed"); // empty: ignored
    QTest::newRow("away") << QStringList{"1", ""} << QStringList{"Anna", "1", ""};
    QTest::newRow("playing elsewhere")
        << QStringList{"2", "10.0.0.7"} << QStringList{"Anna", "2", "10.0.0.7"};
    QTest::newRow("hosting") << QStringList{"2", "host"} << QStringList{"Anna", "2", "127.0.0.1"};
    QTest::newRow("back in the lobby") << QStringList{"3", ""} << QStringList{"Anna", "3", ""};
    QTest::newRow("state out of range") << QStringList{"4", ""} << QStringList{};
    QTest::newRow("state not a digit") << QStringList{"x", ""} << QStringList{};
    QTest::newRow("state with more") << QStringList{"33", ""} << QStringList{};
}

void TestPresence::presenceIsRelayedToEveryone()
{
    QFETCH(QStringList, sent);
    QFETCH(QStringList, relayed);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    anna->clear();
    bert->clear();

    anna->send(Code::PlayerStatus, sent);
    for (TestClient *client : {anna, bert}) {
        const QList<Message> seen =
            client->takeAllAfter(Code::PlayerStatus, relayed.isEmpty() ? 300 : 0);
        if (relayed.isEmpty()) {
            QVERIFY(seen.isEmpty());
        } else {
            const std::optional<Message> status =
                seen.isEmpty() ? client->take(Code::PlayerStatus) : seen.first();
            QVERIFY(status);
            QCOMPARE(status->fields, relayed);
        }
    }
}

void TestPresence::announcementShowsPresenceAndModerator()
{
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Mod"));
    QVERIFY(lobby.accounts().setModerator(QStringLiteral("Mod"), true, 0x0080FF));
    TestClient *mod = lobby.loggedIn(QStringLiteral("Mod"));
    TestClient *gamer = lobby.loggedIn(QStringLiteral("Gamer"));
    TestClient *away = lobby.loggedIn(QStringLiteral("Away"));
    QVERIFY(mod && gamer && away);
    gamer->send(Code::PlayerStatus, {QStringLiteral("2"), QStringLiteral("10.1.1.1")});
    away->send(Code::PlayerStatus, {QStringLiteral("1"), QStringLiteral("10.2.2.2")});
    QVERIFY(mod->takeCount(Code::PlayerStatus, 2).size() == 2);

    TestClient *late = lobby.loggedIn(QStringLiteral("Late"));
    QVERIFY(late);
    const QList<Message> welcome = late->takeCount(Code::AddPlayer, 4);
    QCOMPARE(welcome.size(), 4);
    QCOMPARE(welcome[0].field(5), QStringLiteral("True"));
    QCOMPARE(welcome[1].field(5), QStringLiteral("False"));
    // The game address travels only with the playing state.
    QCOMPARE(welcome[1].fields.mid(2, 2), QStringList({"2", "10.1.1.1"}));
    QCOMPARE(welcome[2].fields.mid(2, 2), QStringList({"1", ""}));
    QCOMPARE(welcome[3].fields.mid(2, 2), QStringList({"3", ""}));

    // The moderator's chat colour comes with his lines.
    mod->send(Code::ChatLine, {QStringLiteral("hi")});
    const std::optional<Message> line = late->take(Code::ChatLine);
    QVERIFY(line);
    QCOMPARE(line->fields, QStringList({"Mod", QString::number(0x0080FF), "hi"}));
}

void TestPresence::buddyFlagIsPerReceiver()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    const int carlId = lobby.addAccount(QStringLiteral("Carl"));
    const int annaId = lobby.accounts().findByName(QStringLiteral("Anna"))->id;
    anna->send(Code::BuddyAdd, {QString::number(carlId)});
    // Buddy changes have no answer; a chat line round trip shows the server has read it.
    anna->send(Code::ChatLine, {QStringLiteral("sync")});
    QVERIFY(anna->take(Code::ChatLine));
    anna->clear();
    bert->clear();

    TestClient *carl = lobby.connected();
    QVERIFY(carl->login(QStringLiteral("Carl"), QStringLiteral("pw")));
    const std::optional<Message> toAnna = anna->take(Code::AddPlayer);
    const std::optional<Message> toBert = bert->take(Code::AddPlayer);
    QVERIFY(toAnna && toBert);
    QCOMPARE(toAnna->field(4), QStringLiteral("1"));
    QCOMPARE(toBert->field(4), QStringLiteral("0"));

    // Carl's own welcome flags whom Carl marked, which is nobody.
    for (const Message &m : carl->takeCount(Code::AddPlayer, 3))
        QCOMPARE(m.field(4), QStringLiteral("0"));

    // Kept across sessions: Anna logging in again sees Carl as her buddy.
    TestClient *annaAgain = lobby.connected();
    QVERIFY(annaAgain->login(QStringLiteral("Anna"), QStringLiteral("pw")));
    const QList<Message> welcome = annaAgain->takeCount(Code::AddPlayer, 3);
    QCOMPARE(welcome.size(), 3);
    for (const Message &m : welcome)
        QCOMPARE(m.field(4),
                 m.field(0) == QLatin1String("Carl") ? QStringLiteral("1") : QStringLiteral("0"));
    QCOMPARE(lobby.buddies().buddiesOf(annaId), QSet<int>({carlId}));
}

void TestPresence::buddyChanges_data()
{
    QTest::addColumn<QStringList>("sent"); // "+id" adds, "-id" removes, ids relative to Bert
    QTest::addColumn<bool>("buddyAfter");
    QTest::newRow("add") << QStringList{"+0"} << true;
    QTest::newRow("add twice") << QStringList{"+0", "+0"} << true;
    QTest::newRow("add then remove") << QStringList{"+0", "-0"} << false;
    QTest::newRow("remove unknown") << QStringList{"-0"} << false;
    QTest::newRow("add not a number") << QStringList{"+x"} << false;
    QTest::newRow("add unknown account") << QStringList{"+1000"} << false;
    QTest::newRow("remove not a number keeps") << QStringList{"+0", "-x"} << true;
}

void TestPresence::buddyChanges()
{
    QFETCH(QStringList, sent);
    QFETCH(bool, buddyAfter);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    QVERIFY(anna);
    const int bertId = lobby.addAccount(QStringLiteral("Bert"));
    const int annaId = lobby.accounts().findByName(QStringLiteral("Anna"))->id;
    for (const QString &step : sent) {
        bool numeric = false;
        const int offset = step.mid(1).toInt(&numeric);
        const QString id = numeric ? QString::number(bertId + offset) : step.mid(1);
        anna->send(step.startsWith(QLatin1Char('+')) ? Code::BuddyAdd : Code::BuddyRemove, {id});
    }
    anna->send(Code::ChatLine, {QStringLiteral("sync")});
    QVERIFY(anna->take(Code::ChatLine));
    QCOMPARE(lobby.buddies().buddiesOf(annaId).contains(bertId), buddyAfter);
    anna->clear();
    TestClient *bert = lobby.connected();
    QVERIFY(bert->login(QStringLiteral("Bert"), QStringLiteral("pw")));
    const std::optional<Message> announced = anna->take(Code::AddPlayer);
    QVERIFY(announced);
    QCOMPARE(announced->field(4), buddyAfter ? QStringLiteral("1") : QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(TestPresence)
#include "tst_presence.moc"
