// Bad input: stray and unknown bytes, short messages, numbers that are not numbers, a
// message that never ends, and random streams from several clients at once. The server
// keeps serving everyone else, sends nothing malformed and keeps what it acknowledged.
#include "lobbytest.h"

#include <QRandomGenerator>

namespace {
QByteArray wire(Code code)
{
    return QByteArray(protocol::wireCode(code).data(), 2);
}
} // namespace

class TestBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A short message is dropped whole by the connection before any handler sees it, so one
    // kind of short message stands for all.
    void malformedThenGood_data()
    {
        QTest::addColumn<QByteArray>("bad");
        QTest::newRow("code only the server sends") << wire(Code::AddPlayer) + "a\x0Eq\x0F";
        QTest::newRow("presence without its address") << wire(Code::PlayerStatus) + "3\x0F";
        QTest::newRow("buddy id not a number") << wire(Code::BuddyAdd) + "twelve\x0F";
        QTest::newRow("keep-alive with a body") << wire(Code::KeepAlive) + "junk\x0E\x0F";
        QTest::newRow("version again") << wire(Code::Version) + "V 6.0\x0F";
        QTest::newRow("login again") << wire(Code::Login) + "Bert\x0Epw\x0F";
    }

    void malformedThenGood()
    {
        QFETCH(QByteArray, bad);
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        anna->clear();
        bert->clear();
        anna->sendRaw(bad + protocol::buildMessage(Code::ChatLine, {"still here"}));
        QVERIFY(lobby.sync(anna));
        // The chat line is all that came of it, for both.
        for (TestClient *client : {anna, bert}) {
            QCOMPARE(fieldsOf(client->takeAll(Code::ChatLine)),
                     QList<QStringList>({{"Anna", "0", "still here"}}));
            QVERIFY(client->pending().isEmpty());
        }
        for (const char *name : {"Anna", "Bert"})
            QVERIFY(lobby.buddies.buddiesOf(lobby.idOf(name)).isEmpty());
        QCOMPARE(lobby.server->lobby().size(), 2);
    }

    void endlessMessageClosesOnlyThatConnection()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        TestClient *stranger = lobby.connected();
        // Just under the 64 KiB limit, in pieces: a slow sender of a long line is not cut off.
        const QByteArray body(64 * 1024 - 16, 'y');
        anna->sendRaw(wire(Code::ChatLine) + body.left(30000));
        QTest::qWait(50);
        anna->sendRaw(body.mid(30000) + '\x0F');
        QCOMPARE(bert->take(Code::ChatLine).value_or(Message{}).field(2).size(), 512);
        bert->clear();
        // Past the limit without a terminator, from a player and from a connection never logged in.
        const QByteArray endless = wire(Code::ChatLine) + QByteArray(70 * 1024, 'x');
        anna->sendRaw(endless);
        stranger->sendRaw(endless);
        QVERIFY(anna->waitForDisconnected());
        QVERIFY(stranger->waitForDisconnected());
        QVERIFY(lobby.sync(bert));
        QCOMPARE(namesOf(bert->takeAll(Code::RemovePlayer)), QStringList({"Anna"}));
        QVERIFY(bert->takeAll(Code::ChatLine).isEmpty());
        lobby.loggedIn("Anna");
    }

    void randomStreamsFromSeveralClients()
    {
        TestLobby lobby;
        TestClient *good = lobby.loggedIn("Good");
        TestClient *friendly = lobby.loggedIn("Friend");
        QList<TestClient *> fuzzers{lobby.connected()}; // one never logs in
        for (int i = 0; i < 4; ++i)
            fuzzers.append(lobby.loggedIn(QStringLiteral("Fuzz%1").arg(i)));
        const int friendId = lobby.idOf("Friend");

        // Streams built from real codes, separators, terminators and random bytes, so that the
        // handlers, not only the resynchronisation, see the garbage.
        QRandomGenerator random(20261123);
        QList<Code> codes; // every code a client may send
        for (std::size_t i = 0; i < protocol::kCodeCount; ++i) {
            if (protocol::fieldCount(Code(i), protocol::Direction::ToServer))
                codes.append(Code(i));
        }
        const auto randomChunk = [&] {
            QByteArray chunk;
            while (chunk.size() < 2000) {
                const int kind = random.bounded(6);
                if (kind < 2)
                    chunk += wire(codes[random.bounded(codes.size())]);
                else if (kind < 4)
                    chunk += kind == 2 ? protocol::kSeparator : protocol::kTerminator;
                else if (kind == 4)
                    chunk += QByteArray::number(random.bounded(-5, 50));
                else
                    for (int n = random.bounded(1, 12); n > 0; --n)
                        chunk += char(random.bounded(256));
            }
            return chunk;
        };

        good->send(Code::BuddyAdd, {QString::number(friendId)});
        for (int round = 0; round < 60; ++round) {
            for (TestClient *f : fuzzers)
                f->sendRaw(randomChunk());
            if (round % 12 == 0) {
                // Each acknowledged line still reaches the good client's friend.
                lobby.clock.advance(10'000);
                const QString text = QStringLiteral("round %1").arg(round);
                good->send(Code::ChatLine, {text});
                QVERIFY2(QTest::qWaitFor([&] {
                             const auto lines = friendly->takeAll(Code::ChatLine);
                             return std::any_of(
                                 lines.cbegin(), lines.cend(), [&](const Message &m) {
                                     return m.fields == QStringList{"Good", "0", text};
                                 });
                         }),
                         qPrintable(text));
            }
            QTest::qWait(5);
        }
        QVERIFY(good->isConnected() && friendly->isConnected());
        QVERIFY(good->receivedOnlyWellFormed());
        QVERIFY(friendly->receivedOnlyWellFormed());
        QCOMPARE(lobby.buddies.buddiesOf(lobby.idOf("Good")), QSet<int>({friendId}));
        // The server still takes new players.
        lobby.loggedIn("Newcomer");
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
