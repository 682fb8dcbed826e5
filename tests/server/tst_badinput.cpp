// Bad input: stray and unknown bytes, short messages, numbers that are not numbers, a
// message that never ends, and random streams from several clients at once. The server
// keeps serving everyone else, sends nothing malformed and keeps what it acknowledged.
#include "testclient.h"
#include "testlobby.h"

#include <QRandomGenerator>
#include <QTest>

using protocol::Code;
using protocol::Message;

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
    void malformedThenGood_data();
    void malformedThenGood();
    void endlessMessageClosesOnlyThatConnection();
    void longMessageBelowTheLimitIsServed();
    void randomStreamsFromSeveralClients();
};

void TestBadInput::malformedThenGood_data()
{
    QTest::addColumn<QByteArray>("bad");
    QTest::newRow("stray bytes") << QByteArray("\x01\xFFxyz");
    QTest::newRow("unknown code") << QByteArray("ZZsome\x0E"
                                                "fields\x0F");
    QTest::newRow("code only the server sends") << wire(Code::AddPlayer) + "a\x0E"
                                                                           "1\x0F";
    QTest::newRow("lone terminator") << QByteArray("\x0F\x0F");
    QTest::newRow("presence without its address") << wire(Code::PlayerStatus) + "3\x0F";
    QTest::newRow("private message without text") << wire(Code::PrivateMessage) + "Bert\x0F";
    QTest::newRow("join without password") << wire(Code::JoinRoom) + "Bert\x0F";
    QTest::newRow("buddy id not a number") << wire(Code::BuddyAdd) + "twelve\x0F";
    QTest::newRow("buddy id negative") << wire(Code::BuddyAdd) + "-3\x0F";
    QTest::newRow("buddy id too large") << wire(Code::BuddyAdd) + "99999999999999999999\x0F";
    QTest::newRow("keep-alive with a body") << wire(Code::KeepAlive) + "junk\x0E\x0F";
    QTest::newRow("version again") << wire(Code::Version) + "V 6.0\x0F";
    QTest::newRow("login again") << wire(Code::Login) + "Bert\x0Epw\x0F";
}

void TestBadInput::malformedThenGood()
{
    QFETCH(QByteArray, bad);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    anna->clear();
    bert->clear();
    const int bertId = lobby.accounts().findByName(QStringLiteral("Bert"))->id;
    const int annaId = lobby.accounts().findByName(QStringLiteral("Anna"))->id;

    anna->sendRaw(bad + protocol::buildMessage(Code::ChatLine, {QStringLiteral("still here")}));
    const std::optional<Message> line = bert->take(Code::ChatLine);
    QVERIFY(line);
    QCOMPARE(line->field(2), QStringLiteral("still here"));
    QTest::qWait(100);
    // The chat line is all that came of it, for both.
    QVERIFY(bert->pending().isEmpty());
    QCOMPARE(anna->takeAllAfter(Code::ChatLine, 0).size(), 1);
    QVERIFY(anna->pending().isEmpty());
    QVERIFY(lobby.buddies().buddiesOf(annaId).isEmpty());
    QVERIFY(lobby.buddies().buddiesOf(bertId).isEmpty());
    QCOMPARE(lobby.server().lobby().size(), 2);
}

void TestBadInput::endlessMessageClosesOnlyThatConnection()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    TestClient *stranger = lobby.connected();
    QVERIFY(anna && bert);
    bert->clear();
    // Past 64 KiB without a terminator, from a player and from a connection never logged in.
    const QByteArray endless = wire(Code::ChatLine) + QByteArray(70 * 1024, 'x');
    anna->sendRaw(endless);
    stranger->sendRaw(endless);
    QVERIFY(anna->waitForDisconnected());
    QVERIFY(stranger->waitForDisconnected());
    const std::optional<Message> gone = bert->take(Code::RemovePlayer);
    QVERIFY(gone);
    QCOMPARE(gone->field(0), QStringLiteral("Anna"));
    QVERIFY(bert->takeAllAfter(Code::ChatLine, 100).isEmpty());
    bert->send(Code::ChatLine, {QStringLiteral("after")});
    QVERIFY(bert->take(Code::ChatLine));
    QVERIFY(lobby.loggedIn(QStringLiteral("Anna")));
}

void TestBadInput::longMessageBelowTheLimitIsServed()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    QVERIFY(anna);
    // Just under the limit, in pieces: a slow sender of a long line is not cut off.
    const QByteArray body(64 * 1024 - 16, 'y');
    anna->sendRaw(wire(Code::ChatLine) + body.left(30000));
    QTest::qWait(50);
    anna->sendRaw(body.mid(30000) + '\x0F');
    const std::optional<Message> line = anna->take(Code::ChatLine);
    QVERIFY(line);
    QCOMPARE(line->field(2).size(), 512);
    QVERIFY(anna->isConnected());
}

void TestBadInput::randomStreamsFromSeveralClients()
{
    TestLobby lobby;
    TestClient *good = lobby.loggedIn(QStringLiteral("Good"));
    TestClient *friendly = lobby.loggedIn(QStringLiteral("Friend"));
    QVERIFY(good && friendly);
    QList<TestClient *> fuzzers;
    for (int i = 0; i < 4; ++i) {
        TestClient *f = lobby.loggedIn(QStringLiteral("Fuzz%1").arg(i));
        QVERIFY(f);
        fuzzers.append(f);
    }
    fuzzers.append(lobby.connected()); // never logs in
    const int friendId = lobby.accounts().findByName(QStringLiteral("Friend"))->id;
    const int goodId = lobby.accounts().findByName(QStringLiteral("Good"))->id;

    // Streams built from real codes, separators, terminators and random bytes, so that the
    // handlers, not only the resynchronisation, see the garbage.
    QRandomGenerator random(20261123);
    const QList<Code> codes = {Code::PlayerStatus, Code::ChatLine,    Code::AddRoom,
                               Code::MemberReady,  Code::RoomChat,    Code::RoomStatus,
                               Code::RemoveRoom,   Code::LockRoom,    Code::PrivateMessage,
                               Code::Version,      Code::Login,       Code::KeepAlive,
                               Code::BuddyAdd,     Code::BuddyRemove, Code::JoinRoom,
                               Code::LeaveRoom,    Code::StatsUpload, Code::StatsReset};
    const auto randomChunk = [&] {
        QByteArray chunk;
        while (chunk.size() < 2000) {
            switch (random.bounded(6)) {
            case 0:
            case 1:
                chunk += wire(codes[random.bounded(codes.size())]);
                break;
            case 2:
                chunk += protocol::kSeparator;
                break;
            case 3:
                chunk += protocol::kTerminator;
                break;
            case 4:
                chunk += QByteArray::number(random.bounded(-5, 50));
                break;
            default:
                for (int n = random.bounded(1, 12); n > 0; --n)
                    chunk += char(random.bounded(256));
            }
        }
        return chunk;
    };

    good->send(Code::BuddyAdd, {QString::number(friendId)});
    for (int round = 0; round < 60; ++round) {
        for (TestClient *f : fuzzers)
            f->sendRaw(randomChunk());
        if (round % 12 == 0) {
            // Each acknowledged line still reaches the good client's friend.
            lobby.clock().advance(10'000);
            const QString text = QStringLiteral("round %1").arg(round);
            good->send(Code::ChatLine, {text});
            bool seen = false;
            for (int tries = 0; tries < 50 && !seen; ++tries) {
                const std::optional<Message> line = friendly->take(Code::ChatLine, 100);
                seen = line && line->field(0) == QLatin1String("Good") && line->field(2) == text;
            }
            QVERIFY2(seen, qPrintable(text));
        }
        QTest::qWait(5);
    }
    QTest::qWait(300);
    QVERIFY(good->isConnected());
    QVERIFY(friendly->isConnected());
    QVERIFY(good->receivedOnlyWellFormed());
    QVERIFY(friendly->receivedOnlyWellFormed());
    QCOMPARE(lobby.buddies().buddiesOf(goodId), QSet<int>({friendId}));
    // The server still takes new players.
    QVERIFY(lobby.loggedIn(QStringLiteral("Newcomer")));
}

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
