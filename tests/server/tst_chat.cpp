// Lobby chat and private messages: who receives what, the cleaning of relayed text, the
// shared rate limit and the service account's diagnostics.
#include "lobbytest.h"

#include <QTest>

class TestChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chatReachesEveryoneCleaned_data();
    void chatReachesEveryoneCleaned();
    void rateLimitIsSharedAndSlides();
    void privateMessages_data();
    void privateMessages();
};

void TestChat::chatReachesEveryoneCleaned_data()
{
    QTest::addColumn<QByteArray>("body"); // the raw bytes after "MD"
    QTest::addColumn<QString>("relayed");
    QTest::newRow("code page 1252") << QByteArray("Gr\xFC\xDF"
                                                  "e, \xD6land")
                                    << QStringLiteral("Grüße, Öland");
    QTest::newRow("separator removed") << QByteArray("a\x0E"
                                                     "b")
                                       << "ab";
    QTest::newRow("long line cut to 512") << QByteArray(600, 'x') << QString(512, QLatin1Char('x'));
    QTest::newRow("exactly 512 kept") << QByteArray(512, 'y') << QString(512, QLatin1Char('y'));
    QTest::newRow("empty") << QByteArray() << "";
}

void TestChat::chatReachesEveryoneCleaned()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, relayed);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    TestClient *notLoggedIn = lobby.connected();
    QVERIFY(notLoggedIn->greet());
    anna->sendRaw(QByteArray(protocol::wireCode(Code::ChatLine).data(), 2) + body + '\x0F');
    for (TestClient *client : {anna, bert})
        QCOMPARE(fieldsOf(client->takeCount(Code::ChatLine, 1)),
                 QList<QStringList>({{"Anna", "0", relayed}}));
    QVERIFY(notLoggedIn->takeAllAfter(Code::ChatLine, 100).isEmpty());
}

void TestChat::rateLimitIsSharedAndSlides()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    bert->clear();
    // Five lines in the window: three chat lines and two private messages. Each is read by
    // the server (its echo is back) before the clock moves.
    for (int i = 0; i < 3; ++i) {
        anna->send(Code::ChatLine, {QStringLiteral("line %1").arg(i)});
        QVERIFY(anna->take(Code::ChatLine));
        lobby.clock.advance(1000);
    }
    for (int i = 0; i < 2; ++i)
        anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("pm")});
    QCOMPARE(anna->takeCount(Code::PrivateMessage, 2).size(), 2);
    anna->send(Code::ChatLine, {QStringLiteral("dropped")});
    anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("dropped")});
    QCOMPARE(bert->takeAllAfter(Code::ChatLine).size(), 3);
    QCOMPARE(bert->takeAllAfter(Code::PrivateMessage, 0).size(), 2);

    // Ten seconds after the first line one slot is free again, and only one.
    lobby.clock.advance(6999);
    anna->send(Code::ChatLine, {QStringLiteral("a moment early")});
    QVERIFY(bert->takeAllAfter(Code::ChatLine, 200).isEmpty());
    lobby.clock.advance(1);
    anna->send(Code::ChatLine, {QStringLiteral("again")});
    anna->send(Code::ChatLine, {QStringLiteral("too soon")});
    const QList<Message> later = bert->takeAllAfter(Code::ChatLine);
    QCOMPARE(later.size(), 1);
    QCOMPARE(later.first().field(2), QStringLiteral("again"));
    // Each player has his own limit.
    bert->send(Code::ChatLine, {QStringLiteral("Bert speaks")});
    QVERIFY(anna->take(Code::ChatLine));
}

void TestChat::privateMessages_data()
{
    QTest::addColumn<QString>("recipient");
    QTest::addColumn<bool>("delivered");
    QTest::newRow("online player") << "Bert" << true;
    QTest::newRow("offline account") << "Dora" << false;
    QTest::newRow("unknown name") << "Nobody" << false;
    QTest::newRow("other case") << "bert" << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("service account keeps it") << "QUORVEL" << false;
}

void TestChat::privateMessages()
{
    QFETCH(QString, recipient);
    QFETCH(bool, delivered);
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Dora"));
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    TestClient *carl = lobby.loggedIn(QStringLiteral("Carl"));
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    anna->send(Code::PrivateMessage, {recipient, QStringLiteral("psst")});
    // The recipient gets it from Anna; Anna gets her echo, marked as sent, to the recipient.
    const auto expect = [delivered](const char *name, const char *echo) {
        return delivered ? QList<QStringList>{{name, "psst", echo}} : QList<QStringList>{};
    };
    QCOMPARE(fieldsOf(bert->takeAllAfter(Code::PrivateMessage)), expect("Anna", "0"));
    QCOMPARE(fieldsOf(anna->takeAllAfter(Code::PrivateMessage, 0)), expect("Bert", "1"));
    QVERIFY(carl->takeAllAfter(Code::PrivateMessage, 0).isEmpty());

    const QList<server::Diagnostic> stored = lobby.diagnostics.all();
    QCOMPARE(stored.size(), recipient == QLatin1String("QUORVEL") ? 1 : 0);
    for (const server::Diagnostic &d : stored) {
        QCOMPARE(d.senderId, lobby.idOf(QStringLiteral("Anna")));
        QCOMPARE(d.text, QStringLiteral("psst"));
        QVERIFY(d.received >= before);
    }
}

QTEST_GUILESS_MAIN(TestChat)
#include "tst_chat.moc"
