// Lobby chat and private messages: who receives what, the shared rate limit and the service
// account's diagnostics. (The cleaning of relayed text is the hostile tests'.)
#include "lobbytest.h"
#include "server/core/ratelimiter.h"

class TestChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // At most five lines in any ten seconds; a refused line does not count.
    void rateLimiterSlides()
    {
        server::RateLimiter limit;
        QList<bool> accepted;
        for (const qint64 ms : {0, 1000, 2000, 3000, 4000, 9999, 10000, 10001, 11000})
            accepted.append(limit.tryAcquire(ms));
        QCOMPARE(accepted, QList<bool>({true, true, true, true, true, false, true, false, true}));
    }

    void chatAndPrivateMessagesShareOneLimitPerPlayer()
    {
        TestLobby lobby;
        auto [anna, bert] = lobby.loggedIn("Anna", "Bert");
        bert->clear();
        for (int i = 0; i < 7; ++i) {
            if (i % 2)
                anna->send(Code::ChatLine, {"hi"});
            else
                anna->send(Code::PrivateMessage, {"Bert", "hi"});
        }
        // Bert has all that Anna sent once he has her presence change, which has no limit.
        anna->send(Code::PlayerStatus, {"3", QString()});
        QVERIFY(bert->take(Code::PlayerStatus));
        QCOMPARE(codesOf(bert->pending()), QStringList({"PM", "MD", "PM", "MD", "PM"}));
        bert->send(Code::ChatLine, {"his own"}); // Bert has a limit of his own
        QVERIFY(anna->takeChatLine("his own"));
        QVERIFY(lobby.sync(anna)); // and a window later Anna may speak again
    }

    // Only a player online under the exact name gets a private message; the service account
    // keeps it as a diagnostic.
    void privateMessages()
    {
        TestLobby lobby;
        auto [anna, bert, carl] = lobby.loggedIn("Anna", "Bert", "Carl");
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
        for (const char *recipient : {"Nobody", "bert", "QUORVEL", "Bert"})
            anna->send(Code::PrivateMessage, {recipient, "psst"});
        QVERIFY(lobby.sync(anna));
        // Bert gets it from Anna; Anna gets her echo, marked as sent, to Bert.
        QCOMPARE(fieldsOf(bert->takeAll(Code::PrivateMessage)), Rows({{"Anna", "psst", "0"}}));
        QCOMPARE(fieldsOf(anna->takeAll(Code::PrivateMessage)), Rows({{"Bert", "psst", "1"}}));
        QVERIFY(carl->takeAll(Code::PrivateMessage).isEmpty());
        const QList<server::Diagnostic> stored = lobby.diagnostics.all();
        QCOMPARE(stored.size(), 1);
        QCOMPARE(stored[0].senderId, lobby.idOf("Anna"));
        QCOMPARE(stored[0].text, "psst");
        QVERIFY(stored[0].received >= before);
    }
};

QTEST_GUILESS_MAIN(TestChat)
#include "tst_chat.moc"
