// Rooms: creating, joining (open and locked), ready states, room chat, status, leaving,
// closing, and what happens when a host or a member goes away. Messages from players who
// may not send them change nothing.
#include "lobbytest.h"
#include "server/lobby/accountlimits.h"

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
        clearAll();
    }

    void cleanup() { m_lobby.reset(); }

    void createAndJoin()
    {
        m_hana->send(Code::AddRoom, {"Hana's room"});
        const QStringList room{"Hana", "Hana's room", "127.0.0.1", "In chat", "1", "0"};
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QCOMPARE(c->fields(Code::AddRoom), Rows{room});
        m_mia->send(Code::JoinRoom, {"Hana", QString()});
        QCOMPARE(m_mia->fields(Code::MemberJoined, 2), Rows({{"Hana", "1"}, {"Mia", "1"}}));
        QCOMPARE(m_hana->fields(Code::MemberJoined), Rows({{"Mia", "1"}}));
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QCOMPARE(c->fields(Code::RoomCount), Rows({{"Hana", "2"}}));
    }

    void lockedRoom()
    {
        m_hana->send(Code::AddRoom, {"Hana's room"});
        m_hana->send(Code::LockRoom, {"secret"});
        QCOMPARE(m_mia->fields(Code::LockRoom), Rows({{"Hana", "1"}}));
        // The password is compared exactly; a refused joiner changes nothing.
        m_otto->send(Code::JoinRoom, {"Hana", "SECRET"});
        QVERIFY(m_lobby->sync(m_otto));
        QVERIFY(m_otto->take(Code::WrongPassword, 0));
        QVERIFY(!m_mia->hasPending(Code::RoomCount) && !m_otto->hasPending(Code::MemberJoined));
        m_otto->send(Code::JoinRoom, {"Hana", "secret"});
        QCOMPARE(m_otto->takeCount(Code::MemberJoined, 2).size(), 2);
        // Unlocked, anyone gets in without a password.
        m_hana->send(Code::LockRoom, {QString()});
        QCOMPARE(m_mia->fields(Code::LockRoom), Rows({{"Hana", "0"}}));
        m_mia->send(Code::JoinRoom, {"Hana", "anything"});
        QVERIFY(m_mia->take(Code::MemberJoined));
    }

    void roomMessages_data()
    {
        QTest::addColumn<QString>("sender"); // h(ost), m(ember) or o(utsider)
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<int>("heardCode");
        QTest::addColumn<QString>("heardBy");
        QTest::addColumn<QStringList>("heard");
        const auto row = [](const char *tag, const char *sender, Code code, QStringList fields,
                            const char *heardBy, QStringList heard, std::optional<Code> as = {}) {
            QTest::newRow(tag) << sender << int(code) << fields << int(as.value_or(code)) << heardBy
                               << heard;
        };
        row("member ready", "m", Code::MemberReady, {"2"}, "hm", {"Mia", "2"});
        row("room chat, cut to 75", "m", Code::RoomChat, {QString(100, 'z')}, "hm",
            {"Mia: " + QString(75, 'z')});
        row("status", "h", Code::RoomStatus, {"In game"}, "hmo", {"Hana", "In game"});
        row("host closes", "h", Code::RemoveRoom, {}, "hmo", {"Hana", "0"});
        row("member leaves", "m", Code::LeaveRoom, {}, "h", {"Mia"}, Code::MemberLeft);
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
        const QList<std::pair<QChar, TestClient *>> clients{
            {'h', m_hana}, {'m', m_mia}, {'o', m_otto}};
        TestClient *from = clients[QStringLiteral("hmo").indexOf(sender)].second;
        from->send(Code(code), fields);
        QVERIFY(m_lobby->sync(from));
        for (const auto &[key, client] : clients)
            QCOMPARE(fieldsOf(client->takeAll(Code(heardCode))),
                     heardBy.contains(key) ? Rows{heard} : Rows());
    }

    // Messages a player may not send, or with values out of range, change nothing: a second
    // room, a second or unknown room to join, a member acting as host, an outsider as member.
    // Only the joins of rooms that are not there are answered, with a refusal.
    void messagesThatChangeNothing()
    {
        QVERIFY(openRoomWithMember());
        const QList<std::tuple<TestClient *, Code, QStringList>> ignored{
            {m_hana, Code::AddRoom, {"another"}},   {m_mia, Code::AddRoom, {"mine"}},
            {m_mia, Code::JoinRoom, {"Hana", ""}},  {m_otto, Code::JoinRoom, {"Nobody", ""}},
            {m_otto, Code::JoinRoom, {"hana", ""}}, {m_hana, Code::RoomStatus, {"Playing"}},
            {m_mia, Code::LockRoom, {"pw"}},        {m_mia, Code::RoomStatus, {"In game"}},
            {m_mia, Code::RemoveRoom, {}},          {m_hana, Code::LeaveRoom, {}},
            {m_otto, Code::RoomChat, {"hi"}},       {m_otto, Code::MemberReady, {"2"}},
            {m_otto, Code::LeaveRoom, {}},          {m_otto, Code::RemoveRoom, {}},
            {m_otto, Code::LockRoom, {"pw"}},       {m_otto, Code::RoomStatus, {"In game"}}};
        for (const auto &[sender, code, fields] : ignored)
            sender->send(code, fields);
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QVERIFY(m_lobby->sync(c));
        QCOMPARE(m_otto->takeAll(Code::RoomRefused).size(), 2);
        for (TestClient *c : {m_hana, m_mia, m_otto})
            QVERIFY(c->pending().isEmpty());
    }

    // Past the limit on room changes, closing one's room and leaving one still happen: the
    // player's client has already let go of the room, and a dropped message would leave the
    // server holding him there, ignoring every later create or join.
    void leavingIsNeverLimited_data()
    {
        QTest::addColumn<bool>("asHost");
        QTest::newRow("host closes") << true;
        QTest::newRow("member leaves") << false;
    }

    void leavingIsNeverLimited()
    {
        QFETCH(bool, asHost);
        const int changes = server::AccountLimits::kRoomChanges.events;
        m_hana->send(Code::AddRoom, {"Hana's room"});
        // Mia spends her room changes on a room of her own, up to the one that brings her
        // into her room or Hana's.
        m_mia->send(Code::AddRoom, {"Mia's room"});
        for (int i = 0; i < changes - (asHost ? 1 : 3); ++i)
            m_mia->send(Code::RoomStatus, {i % 2 ? "In chat" : "In game"});
        if (!asHost) {
            m_mia->send(Code::RemoveRoom);
            m_mia->send(Code::JoinRoom, {"Hana", QString()});
        }
        m_mia->send(asHost ? Code::RemoveRoom : Code::LeaveRoom);
        m_mia->send(Code::ChatLine, {"done"});
        QVERIFY(m_otto->takeChatLine("done"));
        if (asHost)
            QVERIFY(m_otto->hasPending(Code::RemoveRoom, "Mia"));
        else
            QCOMPARE(fieldsOf(m_hana->takeAll(Code::MemberLeft)), Rows({{"Mia"}}));
        QVERIFY(!m_lobby->server->rooms().findByHost("Mia"));
        QCOMPARE(m_lobby->server->rooms().findByHost("Hana")->members.size(), 1);
    }

    // A burst of ready changes reaches the members as the latest state, and the server keeps
    // that state for later joiners.
    void readyChangesAreNeverLost()
    {
        QVERIFY(openRoomWithMember());
        const int sent = 2 * server::AccountLimits::kRoomChat.events + 1;
        for (int i = 0; i < sent; ++i)
            m_mia->send(Code::MemberReady, {i % 2 ? "1" : "2"});
        const auto lastReady = [this] {
            QString state;
            for (const Message &m : m_hana->pending())
                state = m.code == Code::MemberReady ? m.field(1) : state;
            return state;
        };
        QTRY_COMPARE(lastReady(), "2");
        QCOMPARE_LE(m_hana->takeAll(Code::MemberReady).size(), 2);
        m_otto->send(Code::JoinRoom, {"Hana", QString()});
        QCOMPARE(m_otto->fields(Code::MemberJoined, 3),
                 Rows({{"Hana", "1"}, {"Mia", "2"}, {"Otto", "1"}}));
    }

    // A member who goes leaves his room before the lobby hears him go; a host who goes closes
    // his room, as one in game when it is.
    void departures()
    {
        QVERIFY(openRoomWithMember());
        m_otto->send(Code::JoinRoom, {"Hana", QString()});
        m_hana->send(Code::RoomStatus, {"In game"});
        QVERIFY(m_lobby->sync(m_hana));
        clearAll();
        m_mia->close();
        for (TestClient *c : {m_hana, m_otto})
            QTRY_COMPARE(codesOf(c->pending()), QStringList({"ÖB", "ÖC", "RN"}));
        QCOMPARE(fieldsOf(m_otto->pending()).mid(1, 2), Rows({{"Hana", "2"}, {"Mia"}}));
        clearAll();
        m_hana->close();
        QTRY_COMPARE(fieldsOf(m_otto->pending()), Rows({{"Hana", "1"}, {"Hana"}}));
        QCOMPARE(codesOf(m_otto->pending()), QStringList({"RR", "RN"}));
        // The former member is in no room any more.
        m_otto->send(Code::AddRoom, {"Otto's room"});
        QVERIFY(m_otto->take(Code::AddRoom));
    }

private:
    void clearAll()
    {
        for (TestClient *c : {m_hana, m_mia, m_otto})
            c->clear();
    }

    // Hana hosts "Hana's room" with Mia in it; Otto is in the lobby. Their queues are empty.
    bool openRoomWithMember()
    {
        m_hana->send(Code::AddRoom, {"Hana's room"});
        const bool added = m_otto->take(Code::AddRoom).has_value();
        m_mia->send(Code::JoinRoom, {"Hana", QString()});
        const bool synced = m_lobby->sync(m_mia);
        clearAll();
        return added && synced;
    }

    std::unique_ptr<TestLobby> m_lobby;
    TestClient *m_hana = nullptr;
    TestClient *m_mia = nullptr;
    TestClient *m_otto = nullptr;
};

QTEST_GUILESS_MAIN(TestRooms)
#include "tst_rooms.moc"
