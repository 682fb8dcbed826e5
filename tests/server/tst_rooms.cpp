// Rooms: creating, joining (open and locked), ready states, room chat, status, leaving,
// closing, and what happens when a host or a member goes away. Messages from players who
// may not send them change nothing.
#include "testclient.h"
#include "testlobby.h"

#include <QTest>

using protocol::Code;
using protocol::Message;

namespace {
QList<QStringList> fieldsOf(const QList<Message> &messages)
{
    QList<QStringList> out;
    for (const Message &m : messages)
        out.append(m.fields);
    return out;
}
} // namespace

class TestRooms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void createAndJoin();
    void lockedRoom_data();
    void lockedRoom();
    void readyStatesAndRoomChat();
    void statusAndClosing();
    void leaving();
    void onlyTheRightPlayerMaySend_data();
    void onlyTheRightPlayerMaySend();
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
    QVERIFY(m_hana && m_mia && m_otto);
    for (TestClient *c : {m_hana, m_mia, m_otto})
        c->clear();
}

void TestRooms::cleanup()
{
    m_lobby.reset();
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
    const QStringList announced{"Hana", "Hana's room", "127.0.0.1", "In chat", "1", "0"};
    for (TestClient *c : {m_hana, m_mia, m_otto}) {
        const std::optional<Message> room = c->take(Code::AddRoom);
        QVERIFY(room);
        QCOMPARE(room->fields, announced);
    }
    // A host cannot open a second room.
    m_hana->send(Code::AddRoom, {QStringLiteral("another")});
    QVERIFY(m_otto->takeAllAfter(Code::AddRoom, 200).isEmpty());

    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    QCOMPARE(fieldsOf(m_mia->takeCount(Code::MemberJoined, 2)),
             QList<QStringList>({{"Hana", "1"}, {"Mia", "1"}}));
    QCOMPARE(fieldsOf(m_hana->takeCount(Code::MemberJoined, 1)),
             QList<QStringList>({{"Mia", "1"}}));
    for (TestClient *c : {m_hana, m_mia, m_otto}) {
        const std::optional<Message> count = c->take(Code::RoomCount);
        QVERIFY(count);
        QCOMPARE(count->fields, QStringList({"Hana", "2"}));
    }
    QVERIFY(m_otto->takeAllAfter(Code::MemberJoined, 100).isEmpty());

    // A member can neither join again nor open a room; nobody joins a room that is not there.
    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    m_mia->send(Code::AddRoom, {QStringLiteral("mine")});
    m_otto->send(Code::JoinRoom, {QStringLiteral("Nobody"), QString()});
    m_otto->send(Code::JoinRoom, {QStringLiteral("hana"), QString()});
    QVERIFY(m_otto->takeAllAfter(Code::RoomCount, 300).isEmpty());
    QVERIFY(m_otto->pending().isEmpty());
    QCOMPARE(m_lobby->server().rooms().rooms().size(), std::size_t(1));

    // A later login sees the room as it stands.
    TestClient *late = m_lobby->loggedIn(QStringLiteral("Late"));
    QVERIFY(late);
    const std::optional<Message> seen = late->take(Code::AddRoom);
    QVERIFY(seen);
    QCOMPARE(seen->fields, QStringList({"Hana", "Hana's room", "127.0.0.1", "In chat", "2", "0"}));
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
    const std::optional<Message> locked = m_otto->take(Code::LockRoom);
    QVERIFY(locked);
    QCOMPARE(locked->fields, QStringList({"Hana", "1"}));
    QVERIFY(m_mia->take(Code::LockRoom));

    m_otto->send(Code::JoinRoom, {QStringLiteral("Hana"), tried});
    if (admitted) {
        QCOMPARE(m_otto->takeCount(Code::MemberJoined, 2).size(), 2);
        QVERIFY(m_mia->take(Code::RoomCount));
    } else {
        QVERIFY(m_otto->take(Code::WrongPassword));
        QVERIFY(m_mia->takeAllAfter(Code::RoomCount, 200).isEmpty());
        QVERIFY(m_hana->takeAllAfter(Code::MemberJoined, 0).isEmpty());
    }
    // Unlocked, anyone gets in without a password.
    m_hana->send(Code::LockRoom, {QString()});
    const std::optional<Message> opened = m_mia->take(Code::LockRoom);
    QVERIFY(opened);
    QCOMPARE(opened->fields, QStringList({"Hana", "0"}));
    m_mia->send(Code::JoinRoom, {QStringLiteral("Hana"), QStringLiteral("anything")});
    QVERIFY(m_mia->take(Code::MemberJoined));
}

void TestRooms::readyStatesAndRoomChat()
{
    QVERIFY(openRoomWithMember());
    m_mia->send(Code::MemberReady, {QStringLiteral("2")});
    m_mia->send(Code::MemberReady, {QStringLiteral("3")});
    for (TestClient *c : {m_hana, m_mia}) {
        const QList<Message> ready = c->takeAllAfter(Code::MemberReady, 200);
        QCOMPARE(fieldsOf(ready), QList<QStringList>({{"Mia", "2"}}));
    }
    // The ready state is part of the roster a later joiner gets.
    TestClient *max = m_lobby->loggedIn(QStringLiteral("Max"));
    QVERIFY(max);
    max->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    QCOMPARE(fieldsOf(max->takeCount(Code::MemberJoined, 3)),
             QList<QStringList>({{"Hana", "1"}, {"Mia", "2"}, {"Max", "1"}}));

    m_mia->send(Code::RoomChat, {QString(100, QLatin1Char('z'))});
    for (TestClient *c : {m_hana, m_mia, max}) {
        const std::optional<Message> line = c->take(Code::RoomChat);
        QVERIFY(line);
        QCOMPARE(line->field(0), QStringLiteral("Mia: ") + QString(75, QLatin1Char('z')));
    }
    QVERIFY(m_otto->takeAllAfter(Code::RoomChat, 100).isEmpty());
    QVERIFY(m_otto->takeAllAfter(Code::MemberReady, 0).isEmpty());
}

void TestRooms::statusAndClosing()
{
    QVERIFY(openRoomWithMember());
    m_hana->send(Code::RoomStatus, {QStringLiteral("In game")});
    for (TestClient *c : {m_hana, m_mia, m_otto}) {
        const std::optional<Message> status = c->take(Code::RoomStatus);
        QVERIFY(status);
        QCOMPARE(status->fields, QStringList({"Hana", "In game"}));
    }
    m_hana->send(Code::RoomStatus, {QStringLiteral("Playing")});
    QVERIFY(m_otto->takeAllAfter(Code::RoomStatus, 200).isEmpty());

    m_hana->send(Code::RemoveRoom);
    for (TestClient *c : {m_hana, m_mia, m_otto}) {
        const std::optional<Message> closed = c->take(Code::RemoveRoom);
        QVERIFY(closed);
        QCOMPARE(closed->fields, QStringList({"Hana", "1"}));
    }
    QVERIFY(m_lobby->server().rooms().rooms().empty());
    // The members' clients answer with a leave, which finds no room; both may open rooms again.
    m_mia->send(Code::LeaveRoom);
    m_mia->send(Code::AddRoom, {QStringLiteral("Mia's room")});
    m_hana->send(Code::AddRoom, {QStringLiteral("Hana again")});
    QCOMPARE(m_otto->takeCount(Code::AddRoom, 2).size(), 2);
    QVERIFY(m_otto->takeAllAfter(Code::MemberLeft, 100).isEmpty());
}

void TestRooms::leaving()
{
    QVERIFY(openRoomWithMember());
    TestClient *max = m_lobby->loggedIn(QStringLiteral("Max"));
    QVERIFY(max);
    max->send(Code::JoinRoom, {QStringLiteral("Hana"), QString()});
    QVERIFY(m_otto->take(Code::RoomCount));
    m_hana->clear();
    m_mia->clear();

    m_mia->send(Code::LeaveRoom);
    for (TestClient *c : {m_hana, max}) {
        const std::optional<Message> left = c->take(Code::MemberLeft);
        QVERIFY(left);
        QCOMPARE(left->field(0), QStringLiteral("Mia"));
    }
    const std::optional<Message> count = m_otto->take(Code::RoomCount);
    QVERIFY(count);
    QCOMPARE(count->fields, QStringList({"Hana", "2"}));
    // Mia is out: her room chat goes nowhere and she can leave no further.
    m_mia->send(Code::RoomChat, {QStringLiteral("still here?")});
    m_mia->send(Code::LeaveRoom);
    QVERIFY(max->takeAllAfter(Code::RoomChat, 200).isEmpty());
    QVERIFY(m_otto->takeAllAfter(Code::RoomCount, 0).isEmpty());
}

void TestRooms::onlyTheRightPlayerMaySend_data()
{
    QTest::addColumn<QString>("sender"); // "member" or "outsider"
    QTest::addColumn<int>("code");
    QTest::addColumn<QStringList>("fields");
    QTest::newRow("member locks") << "member" << int(Code::LockRoom) << QStringList{"pw"};
    QTest::newRow("member sets status")
        << "member" << int(Code::RoomStatus) << QStringList{"In game"};
    QTest::newRow("member closes") << "member" << int(Code::RemoveRoom) << QStringList{};
    QTest::newRow("host leaves as member") << "host" << int(Code::LeaveRoom) << QStringList{};
    QTest::newRow("outsider chats") << "outsider" << int(Code::RoomChat) << QStringList{"hi"};
    QTest::newRow("outsider readies") << "outsider" << int(Code::MemberReady) << QStringList{"2"};
    QTest::newRow("outsider leaves") << "outsider" << int(Code::LeaveRoom) << QStringList{};
    QTest::newRow("outsider closes") << "outsider" << int(Code::RemoveRoom) << QStringList{};
    QTest::newRow("outsider locks") << "outsider" << int(Code::LockRoom) << QStringList{"pw"};
    QTest::newRow("outsider sets status")
        << "outsider" << int(Code::RoomStatus) << QStringList{"In game"};
}

void TestRooms::onlyTheRightPlayerMaySend()
{
    QFETCH(QString, sender);
    QFETCH(int, code);
    QFETCH(QStringList, fields);
    QVERIFY(openRoomWithMember());
    TestClient *from = sender == QLatin1String("member") ? m_mia
                       : sender == QLatin1String("host") ? m_hana
                                                         : m_otto;
    from->send(static_cast<Code>(code), fields);
    QTest::qWait(300);
    for (TestClient *c : {m_hana, m_mia, m_otto})
        QVERIFY2(c->pending().isEmpty(), qPrintable(QString::number(c->pending().size())));
    const server::Room &room = *m_lobby->server().rooms().rooms().front();
    QCOMPARE(room.members.size(), 2);
    QCOMPARE(room.status, QStringLiteral("In chat"));
    QVERIFY(room.password.isEmpty());
}

void TestRooms::departureOfMember()
{
    QVERIFY(openRoomWithMember());
    m_mia->close();
    // Hana hears the member leave, then everyone hears the room shrink and the player go.
    QTRY_COMPARE(m_hana->pending().size(), 3);
    QCOMPARE(m_hana->pending()[0].code, Code::MemberLeft);
    QCOMPARE(m_hana->pending()[1].code, Code::RoomCount);
    QCOMPARE(m_hana->pending()[1].fields, QStringList({"Hana", "1"}));
    QCOMPARE(m_hana->pending()[2].code, Code::RemovePlayer);
    QTRY_COMPARE(m_otto->pending().size(), 2);
    QCOMPARE(m_otto->pending()[0].code, Code::RoomCount);
    QCOMPARE(m_otto->pending()[1].code, Code::RemovePlayer);
}

void TestRooms::departureOfHost()
{
    QVERIFY(openRoomWithMember());
    m_hana->close();
    for (TestClient *c : {m_mia, m_otto}) {
        QTRY_COMPARE(c->pending().size(), 2);
        QCOMPARE(c->pending()[0].code, Code::RemoveRoom);
        QCOMPARE(c->pending()[0].fields, QStringList({"Hana", "0"}));
        QCOMPARE(c->pending()[1].code, Code::RemovePlayer);
        QCOMPARE(c->pending()[1].field(0), QStringLiteral("Hana"));
    }
    QVERIFY(m_lobby->server().rooms().rooms().empty());
    // The former member is in no room any more.
    m_mia->send(Code::AddRoom, {QStringLiteral("Mia's room")});
    QVERIFY(m_otto->take(Code::AddRoom));
}

QTEST_GUILESS_MAIN(TestRooms)
#include "tst_rooms.moc"
