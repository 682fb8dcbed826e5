// Bad input: short messages, messages out of their stage, a message that never ends, and
// random streams from several clients at once. The server keeps serving everyone else, sends
// nothing malformed and keeps what it acknowledged. (Messages that do not decode are the
// presence and room tests'; stray bytes the frame buffer's.)
#include "lobbytest.h"
#include "server/net/connection.h"

#include <QRandomGenerator>

class TestBadInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A short message is dropped whole by the connection before any handler sees it, so one
    // kind stands for all; the version and the login are read only before the login.
    void malformedThenGood()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        anna->clear();
        bert->clear();
        anna->sendRaw(wire(Code::PlayerStatus) + "3\x0F" + wire(Code::Login) + "Bert\x0Epw\x0F" +
                      protocol::buildMessage(Code::ChatLine, {"still here"}));
        QVERIFY(lobby.sync(anna));
        // The chat line is all that came of it, for both.
        for (TestClient *client : {anna, bert})
            QCOMPARE(fieldsOf(client->pending()), Rows({{"Anna", "0", "still here"}}));
    }

    // What the kernel cannot take at once waits behind it: a client that reads late still gets
    // every byte, in order.
    void aLateReaderGetsEveryByteInOrder()
    {
        QTcpServer listener;
        QVERIFY(listener.listen(QHostAddress::LocalHost));
        QTcpSocket client;
        client.connectToHost(QHostAddress::LocalHost, listener.serverPort());
        QVERIFY(listener.waitForNewConnection(5000));
        server::Connection connection(listener.nextPendingConnection());
        connection.setMaxUnsent(8 * 1024 * 1024); // all of it may wait
        QByteArray expected;
        for (int i = 0; expected.size() < 4 * 1024 * 1024; ++i) {
            const QByteArray piece = QByteArray::number(i).repeated(1 + i % 700);
            expected += piece;
            connection.send(piece);
        }
        QByteArray received;
        QVERIFY(waitUntil(
            [&] {
                received += client.readAll();
                return received.size() >= expected.size();
            },
            20000));
        QVERIFY(received == expected);
    }

    void endlessMessageClosesOnlyThatConnection()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        // Just under the 64 KiB limit a long line is still read.
        anna->sendRaw(wire(Code::ChatLine) + QByteArray(64 * 1024 - 16, 'y') + '\x0F');
        QVERIFY(bert->take(Code::ChatLine));
        bert->clear();
        // Past the limit without a terminator the connection is closed; the others stay.
        anna->sendRaw(wire(Code::ChatLine) + QByteArray(70 * 1024, 'x'));
        QVERIFY(anna->waitForDisconnected());
        QVERIFY(lobby.sync(bert));
        QCOMPARE(codesOf(bert->pending()), QStringList{"RN"});
        lobby.loggedIn("Anna");
    }

    void randomStreamsFromSeveralClients()
    {
        TestLobby lobby;
        auto [good, friendly, fuzz1, fuzz2, fuzz3] =
            lobby.loggedIn("Good", "Friend", "F1", "F2", "F3");
        // One of them never logs in.
        const QList<TestClient *> fuzzers{lobby.connected(), fuzz1, fuzz2, fuzz3};
        const int friendId = lobby.idOf("Friend");

        // Streams built from every code a client may send, framing bytes, numbers and random
        // bytes, so that the handlers, not only the resynchronisation, see the garbage.
        QRandomGenerator random(20261123);
        QList<QByteArray> pieces{"\x0E", "\x0F", "-1", "0", "1", "2", "3", "5", "2.5", "1e9"};
        for (std::size_t i = 0; i < protocol::kCodeCount; ++i) {
            if (protocol::fieldCount(Code(i), protocol::Direction::ToServer))
                pieces.append(wire(Code(i)));
        }
        const auto randomChunk = [&] {
            QByteArray chunk;
            while (chunk.size() < 2000)
                chunk += random.bounded(4) ? pieces[random.bounded(pieces.size())]
                                           : QByteArray(1, char(random.bounded(256)));
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
                QVERIFY2(friendly->takeChatLine(text), qPrintable(text));
            }
        }
        QVERIFY(good->isConnected() && friendly->isConnected());
        QVERIFY(good->receivedOnlyWellFormed() && friendly->receivedOnlyWellFormed());
        QCOMPARE(lobby.buddies.buddiesOf(lobby.idOf("Good")), QSet<int>({friendId}));
        // The server still takes new players.
        lobby.loggedIn("Newcomer");
    }
};

QTEST_GUILESS_MAIN(TestBadInput)
#include "tst_badinput.moc"
