// Rooms: creating, joining (open and locked), ready states, room chat, status, leaving,
// closing, and what happens when a host or a member goes away. Messages from players who
// may not send them change nothing.
#include "lobbytest.h"

class TestRooms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_lobby = std::make_unique<TestLobby>();
        m_hana = m_lobby->loggedIn("Hana");
        m_mia = m_lobby->loggedIn("Mia");
        m_otto = m_lobby->loggedIn("Otto");
        for (TestClient *c : {m_hana, m_mia, m_otto})
            c->clear();
    }

    void cleanup() { m_lobby.reset(); }

    void createAndJoin()
    {
        m_hana->send(Code::AddRoom, {"Hana's room"});
        const QStringList room{"Hana", "Hana's room", "127.0.0.1", "In chat", "1", "0"};
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QCOMPARE(fieldsOf(c->takeCount(Code::AddRoom, 1)), QList<QStringList>{room});
        // A host cannot open a second room.
        m_hana->send(Code::AddRoom, {"another"});
        QVERIFY(m_lobby->sync(m_hana));
        QVERIFY(m_otto->pending().isEmpty());

        m_mia->send(Code::JoinRoom, {"Hana", QString()});
        QCOMPARE(fieldsOf(m_mia->takeCount(Code::MemberJoined, 2)),
                 QList<QStringList>({{"Hana", "1"}, {"Mia", "1"}}));
        QCOMPARE(fieldsOf(m_hana->takeCount(Code::MemberJoined, 1)),
                 QList<QStringList>({{"Mia", "1"}}));
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QCOMPARE(fieldsOf(c->takeCount(Code::RoomCount, 1)),
                     QList<QStringList>({{"Hana", "2"}}));

        // A member can neither join again nor open a room; nobody joins a room that is not there.
        m_mia->send(Code::JoinRoom, {"Hana", QString()});
        m_mia->send(Code::AddRoom, {"mine"});
        m_otto->send(Code::JoinRoom, {"Nobody", QString()});
        m_otto->send(Code::JoinRoom, {"hana", QString()});
        m_mia->send(Code::MemberReady, {"2"});
        QVERIFY(m_hana->take(Code::MemberReady));
        QVERIFY(m_lobby->sync(m_otto));
        QVERIFY(m_otto->pending().isEmpty());
        QCOMPARE(m_lobby->server->rooms().rooms().size(), std::size_t(1));

        // A later joiner gets the ready states in the roster.
        TestClient *late = m_lobby->loggedIn("Late");
        late->send(Code::JoinRoom, {"Hana", QString()});
        QCOMPARE(fieldsOf(late->takeCount(Code::MemberJoined, 3)),
                 QList<QStringList>({{"Hana", "1"}, {"Mia", "2"}, {"Late", "1"}}));
    }

    void lockedRoom_data()
    {
        QTest::addColumn<QString>("tried");
        QTest::addColumn<bool>("admitted");
        QTest::newRow("right password") << "secret" << true;
        QTest::newRow("wrong password") << "guess" << false;
        QTest::newRow("no password") << "" << false;
        QTest::newRow("other case") << "SECRET" << false;
    }

    void lockedRoom()
    {
        QFETCH(QString, tried);
        QFETCH(bool, admitted);
        m_hana->send(Code::AddRoom, {"Hana's room"});
        m_hana->send(Code::LockRoom, {"secret"});
        QCOMPARE(fieldsOf(m_otto->takeCount(Code::LockRoom, 1)),
                 QList<QStringList>({{"Hana", "1"}}));
        QVERIFY(m_mia->take(Code::LockRoom));

        m_otto->send(Code::JoinRoom, {"Hana", tried});
        QVERIFY(m_lobby->sync(m_otto));
        QCOMPARE(m_otto->takeAll(Code::WrongPassword).size(), admitted ? 0 : 1);
        QCOMPARE(m_mia->takeAll(Code::RoomCount).size(), admitted ? 1 : 0);
        QCOMPARE(m_otto->takeAll(Code::MemberJoined).size(), admitted ? 2 : 0);
        // Unlocked, anyone gets in without a password.
        m_hana->send(Code::LockRoom, {QString()});
        QCOMPARE(fieldsOf(m_mia->takeCount(Code::LockRoom, 1)),
                 QList<QStringList>({{"Hana", "0"}}));
        m_mia->send(Code::JoinRoom, {"Hana", "anything"});
        QVERIFY(m_mia->take(Code::MemberJoined));
    }

    void roomMessages_data()
    {
        QTest::addColumn<QString>("sender"); // "host", "member" or "outsider"
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<int>("heardCode");
        QTest::addColumn<QString>("heardBy"); // h(ost), m(ember), o(utsider)
        QTest::addColumn<QStringList>("heard");
        const QString z100(100, QLatin1Char('z'));
        const QString z75(75, QLatin1Char('z'));
        const auto row = [](const char *name, const char *sender, Code code, QStringList fields,
                            Code heardCode, const char *heardBy, QStringList heard) {
            QTest::newRow(name) << sender << int(code) << fields << int(heardCode) << heardBy
                                << heard;
        };
        row("member ready", "member", Code::MemberReady, {"2"}, Code::MemberReady, "hm",
            {"Mia", "2"});
        row("room chat, cut", "member", Code::RoomChat, {z100}, Code::RoomChat, "hm",
            {"Mia: " + z75});
        row("status", "host", Code::RoomStatus, {"In game"}, Code::RoomStatus, "hmo",
            {"Hana", "In game"});
        row("host closes", "host", Code::RemoveRoom, {}, Code::RemoveRoom, "hmo", {"Hana", "0"});
        row("member leaves", "member", Code::LeaveRoom, {}, Code::MemberLeft, "h", {"Mia"});
    }

    void roomMessages()
    {
        QFETCH(QString, sender);
        QFETCH(int, code);
        QFETCH(QStringList, fields);
        QFETCH(int, heardCode);
        QFETCH(QString, heardBy);
        QFETCH(QStringList, heard);
        QVERIFY(openRoomWithMember());
        const QList<std::pair<char, TestClient *>> clients{
            {'h', m_hana}, {'m', m_mia}, {'o', m_otto}};
        TestClient *from = nullptr;
        for (const auto &[key, client] : clients) {
            if (sender.front() == QLatin1Char(key))
                from = client;
        }
        from->send(static_cast<Code>(code), fields);
        QVERIFY(m_lobby->sync(from));
        for (const auto &[key, client] : clients)
            QCOMPARE(fieldsOf(client->takeAll(static_cast<Code>(heardCode))),
                     heardBy.contains(QLatin1Char(key)) ? QList<QStringList>{heard}
                                                        : QList<QStringList>{});
    }

    // Messages a player may not send, or with values out of range, change nothing.
    void messagesThatChangeNothing()
    {
        QVERIFY(openRoomWithMember());
        const QList<std::tuple<TestClient *, Code, QStringList>> ignored{
            {m_mia, Code::MemberReady, {"3"}}, {m_hana, Code::RoomStatus, {"Playing"}},
            {m_mia, Code::LockRoom, {"pw"}},   {m_mia, Code::RoomStatus, {"In game"}},
            {m_mia, Code::RemoveRoom, {}},     {m_hana, Code::LeaveRoom, {}},
            {m_otto, Code::RoomChat, {"hi"}},  {m_otto, Code::MemberReady, {"2"}},
            {m_otto, Code::LeaveRoom, {}},     {m_otto, Code::RemoveRoom, {}},
            {m_otto, Code::LockRoom, {"pw"}},  {m_otto, Code::RoomStatus, {"In game"}}};
        for (const auto &[sender, code, fields] : ignored)
            sender->send(code, fields);
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QVERIFY(m_lobby->sync(c));
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QVERIFY(c->pending().isEmpty());
        QCOMPARE(m_lobby->server->rooms().rooms().size(), std::size_t(1));
        const server::Room &room = *m_lobby->server->rooms().rooms().front();
        QCOMPARE(room.members.size(), 2);
        QCOMPARE(room.status, protocol::RoomStatus::InChat);
        QVERIFY(room.password.isEmpty());
    }

    void departureOfMember()
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

    void departureOfHost()
    {
        QVERIFY(openRoomWithMember());
        m_hana->send(Code::RoomStatus, {"In game"});
        QVERIFY(m_otto->take(Code::RoomStatus));
        m_mia->clear();
        m_hana->close();
        for (TestClient *c : {m_mia, m_otto}) {
            QTRY_COMPARE(c->pending().size(), 2);
            QCOMPARE(c->pending()[0].code, Code::RemoveRoom);
            QCOMPARE(c->pending()[0].fields, QStringList({"Hana", "1"})); // closed while in game
            QCOMPARE(c->pending()[1].code, Code::RemovePlayer);
            QCOMPARE(c->pending()[1].field(0), "Hana");
        }
        QVERIFY(m_lobby->server->rooms().rooms().empty());
        // The former member is in no room any more.
        m_mia->send(Code::AddRoom, {"Mia's room"});
        QVERIFY(m_otto->take(Code::AddRoom));
    }

private:
    // Hana hosts "Hana's room" with Mia in it; Otto is in the lobby. Their queues are empty.
    bool openRoomWithMember()
    {
        m_hana->send(Code::AddRoom, {"Hana's room"});
        const bool added = m_otto->take(Code::AddRoom).has_value();
        m_mia->send(Code::JoinRoom, {"Hana", QString()});
        const bool synced = m_lobby->sync(m_mia);
        for (TestClient *c : {m_hana, m_mia, m_otto})
            c->clear();
        return added && synced;
    }

    std::unique_ptr<TestLobby> m_lobby;
    TestClient *m_hana = nullptr;
    TestClient *m_mia = nullptr;
    TestClient *m_otto = nullptr;
};

QTEST_GUILESS_MAIN(TestRooms)
#include "tst_rooms.moc"
