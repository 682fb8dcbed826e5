// Rooms: creating, joining (open and locked), ready states, room chat, status, leaving,
// closing, and what happens when a host or a member goes away. Messages from players who
// may not send them change nothing.
#include "lobbytest.h"

#include <QTest>

class TestRooms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_lobby.reset(); }

    void createAndJoin();
    void lockedRoom_data();
    void lockedRoom();
    void roomMessages_data();
    void roomMessages();
    void departureOfMember();
    void departureOfHost();

private:
    // Hana hosts "Hana's room" with Mia in it; Otto is in the lobby. Their queues are empty.
    bool openRoomWithMember();

    std::unique_ptr<TestLobby> m_lobby;
    TestClient *m_hana = nullptr;
    TestClient *m_mia = nullptr;
    TestClient *m_otto = nullptr;
};

void TestRooms::init()
{
    m_lobby = std::make_unique<TestLobby>();
    m_hana = m_lobby->loggedIn(QStringLiteral("Hana"));
    m_mia = m_lobby->loggedIn(QStringLiteral("Mia"));
    m_otto = m_lobby->loggedIn(QStringLiteral("Otto"));
    for (TestClient *c : {m_hana, m_mia, m_otto})
        c->clear();
}

bool TestRooms::openRoomWithMember()
{
    m_hana->send(Code::AddRoom, {QStringLiteral("Hana's room")});
    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    const bool ok = m_otto->take(Code::AddRoom) && m_otto->take(Code::RoomCount);
    QTest::qWait(50);
    for (TestClient *c : {m_hana, m_mia, m_otto})
        c->clear();
    return ok;
}

void TestRooms::createAndJoin()
{
    m_hana->send(Code::AddRoom, {QStringLiteral("Hana's room")});
    const QStringList room{"Hana", "Hana's room", "127.0.0.1", "In chat", "1", "0"};
    for (TestClient *c : {m_hana, m_mia, m_otto})
        QCOMPARE(fieldsOf(c->takeCount(Code::AddRoom, 1)), QList<QStringList>{room});
    // A host cannot open a second room.
    m_hana->send(Code::AddRoom, {QStringLiteral("another")});
    QVERIFY(m_otto->takeAllAfter(Code::AddRoom, 200).isEmpty());

    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    QCOMPARE(fieldsOf(m_mia->takeCount(Code::MemberJoined, 2)),
             QList<QStringList>({{"Hana", "1"}, {"Mia", "1"}}));
    QCOMPARE(fieldsOf(m_hana->takeCount(Code::MemberJoined, 1)),
             QList<QStringList>({{"Mia", "1"}}));
    for (TestClient *c : {m_hana, m_mia, m_otto})
        QCOMPARE(fieldsOf(c->takeCount(Code::RoomCount, 1)), QList<QStringList>({{"Hana", "2"}}));

    // A member can neither join again nor open a room; nobody joins a room that is not there.
    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    m_mia->send(Code::AddRoom, {QStringLiteral("mine")});
    m_otto->send(Code::JoinRoom, {QStringLiteral("Nobody"), QString()});
    m_otto->send(Code::JoinRoom, {QStringLiteral("hana"), QString()});
    m_mia->send(Code::MemberReady, {QStringLiteral("2")});
    QVERIFY(m_hana->take(Code::MemberReady));
    QTest::qWait(200);
    QVERIFY(m_otto->pending().isEmpty());
    QCOMPARE(m_lobby->server->rooms().rooms().size(), std::size_t(1));

    // A later joiner gets the ready states in the roster.
    TestClient *late = m_lobby->loggedIn(QStringLiteral("Late"));
    late->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    QCOMPARE(fieldsOf(late->takeCount(Code::MemberJoined, 3)),
             QList<QStringList>({{"Hana", "1"}, {"Mia", "2"}, {"Late", "1"}}));
}

void TestRooms::lockedRoom_data()
{
    QTest::addColumn<QString>("tried");
    QTest::addColumn<bool>("admitted");
    QTest::newRow("right password") << "secret" << true;
    QTest::newRow("wrong password") << "guess" << false;
    QTest::newRow("no password") << "" << false;
    QTest::newRow("other case") << "SECRET" << false;
}

void TestRooms::lockedRoom()
{
    QFETCH(QString, tried);
    QFETCH(bool, admitted);
    m_hana->send(Code::AddRoom, {QStringLiteral("Hana's room")});
    m_hana->send(Code::LockRoom, {QStringLiteral("secret")});
    QCOMPARE(fieldsOf(m_otto->takeCount(Code::LockRoom, 1)), QList<QStringList>({{"Hana", "1"}}));
    QVERIFY(m_mia->take(Code::LockRoom));

    m_otto->send(Code::JoinRoom, {QStringLiteral("Hana"), tried});
    QCOMPARE(m_otto->take(Code::WrongPassword, admitted ? 200 : 5000).has_value(), !admitted);
    QCOMPARE(m_mia->takeAllAfter(Code::RoomCount, 200).size(), admitted ? 1 : 0);
    QCOMPARE(m_otto->takeAllAfter(Code::MemberJoined, 0).size(), admitted ? 2 : 0);
    // Unlocked, anyone gets in without a password.
    m_hana->send(Code::LockRoom, {QString()});
    QCOMPARE(fieldsOf(m_mia->takeCount(Code::LockRoom, 1)), QList<QStringList>({{"Hana", "0"}}));
    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QStringLiteral("anything")});
    QVERIFY(m_mia->take(Code::MemberJoined));
}

void TestRooms::roomMessages_data()
{
    QTest::addColumn<QString>("sender"); // "host", "member" or "outsider"
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<int>("heardCode");
    QTest::addColumn<QString>("heardBy"); // h(ost), m(ember), o(utsider); empty: no effect
    QTest::addColumn<QStringList>("heard");
    const QString z100(100, QLatin1Char('z'));
    const QString z75(75, QLatin1Char('z'));
    const auto row = [](const char *name, const char *sender, Code code, QStringList fields,
                        Code heardCode = Code::KeepAlive, const char *heardBy = "",
                        QStringList heard = {}) {
        QTest::newRow(name) << sender << int(code) << fields << int(heardCode) << heardBy << heard;
    };
    row("member ready", "member", Code::MemberReady, {"2"}, Code::MemberReady, "hm", {"Mia", "2"});
    row("room chat, cut", "member", Code::RoomChat, {z100}, Code::RoomChat, "hm", {"Mia: " + z75});
    row("status", "host", Code::RoomStatus, {"In game"}, Code::RoomStatus, "hmo",
        {"Hana", "In game"});
    row("host closes", "host", Code::RemoveRoom, {}, Code::RemoveRoom, "hmo", {"Hana", "0"});
    row("member leaves", "member", Code::LeaveRoom, {}, Code::MemberLeft, "h", {"Mia"});
    row("ready out of range", "member", Code::MemberReady, {"3"});
    row("status not a status", "host", Code::RoomStatus, {"Playing"});
    row("member locks", "member", Code::LockRoom, {"pw"});
    row("member sets status", "member", Code::RoomStatus, {"In game"});
    row("member closes", "member", Code::RemoveRoom, {});
    row("host leaves as member", "host", Code::LeaveRoom, {});
    row("outsider chats", "outsider", Code::RoomChat, {"hi"});
    row("outsider readies", "outsider", Code::MemberReady, {"2"});
    row("outsider leaves", "outsider", Code::LeaveRoom, {});
    row("outsider closes", "outsider", Code::RemoveRoom, {});
    row("outsider locks", "outsider", Code::LockRoom, {"pw"});
    row("outsider sets status", "outsider", Code::RoomStatus, {"In game"});
}

void TestRooms::roomMessages()
{
    QFETCH(QString, sender);
    QFETCH(int, code);
    QFETCH(QStringList, fields);
    QFETCH(int, heardCode);
    QFETCH(QString, heardBy);
    QFETCH(QStringList, heard);
    QVERIFY(openRoomWithMember());
    const QList<std::pair<char, TestClient *>> clients{{'h', m_hana}, {'m', m_mia}, {'o', m_otto}};
    for (const auto &[key, client] : clients) {
        if (sender.front() == QLatin1Char(key))
            client->send(static_cast<Code>(code), fields);
    }
    for (const auto &[key, client] : clients) {
        if (heardBy.contains(QLatin1Char(key)))
            QCOMPARE(fieldsOf(client->takeCount(static_cast<Code>(heardCode), 1)),
                     QList<QStringList>{heard});
    }
    QTest::qWait(300);
    for (const auto &[key, client] : clients) {
        if (heardBy.isEmpty())
            QVERIFY(client->pending().isEmpty());
        else if (!heardBy.contains(QLatin1Char(key)))
            QVERIFY(client->takeAllAfter(static_cast<Code>(heardCode), 0).isEmpty());
    }
    if (heardBy.isEmpty()) {
        const server::Room &room = *m_lobby->server->rooms().rooms().front();
        QCOMPARE(room.members.size(), 2);
        QCOMPARE(room.status, protocol::RoomStatus::InChat);
        QVERIFY(room.password.isEmpty());
    }
}

void TestRooms::departureOfMember()
{
    QVERIFY(openRoomWithMember());
    m_mia->close();
    // Hana hears the member leave, then everyone hears the room shrink and the player go.
    QTRY_COMPARE(m_hana->pending().size(), 3);
    QTRY_COMPARE(m_otto->pending().size(), 2);
    QCOMPARE(m_hana->pending()[0].code, Code::MemberLeft);
    for (TestClient *c : {m_hana, m_otto}) {
        const QList<Message> tail = c->pending().mid(c->pending().size() - 2);
        QCOMPARE(tail[0].code, Code::RoomCount);
        QCOMPARE(tail[0].fields, QStringList({"Hana", "1"}));
        QCOMPARE(tail[1].code, Code::RemovePlayer);
    }
}

void TestRooms::departureOfHost()
{
    QVERIFY(openRoomWithMember());
    m_hana->send(Code::RoomStatus, {QStringLiteral("In game")});
    QVERIFY(m_otto->take(Code::RoomStatus));
    m_mia->clear();
    m_hana->close();
    for (TestClient *c : {m_mia, m_otto}) {
        QTRY_COMPARE(c->pending().size(), 2);
        QCOMPARE(c->pending()[0].code, Code::RemoveRoom);
        QCOMPARE(c->pending()[0].fields, QStringList({"Hana", "1"})); // closed while in game
        QCOMPARE(c->pending()[1].code, Code::RemovePlayer);
        QCOMPARE(c->pending()[1].field(0), QStringLiteral("Hana"));
    }
    QVERIFY(m_lobby->server->rooms().rooms().empty());
    // The former member is in no room any more.
    m_mia->send(Code::AddRoom, {QStringLiteral("Mia's room")});
    QVERIFY(m_otto->take(Code::AddRoom));
}

QTEST_GUILESS_MAIN(TestRooms)
#include "tst_rooms.moc"
