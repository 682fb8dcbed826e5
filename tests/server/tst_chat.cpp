// Lobby chat and private messages: who receives what, the cleaning of relayed text, the
// shared rate limit and the service account's diagnostics.
#include "testclient.h"
#include "testlobby.h"

#include <QTest>

using protocol::Code;
using protocol::Message;

class TestChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chatReachesEveryoneWithColour();
    void chatTextIsCleaned_data();
    void chatTextIsCleaned();
    void rateLimitIsSharedAndSlides();
    void privateMessageWithEcho();
    void privateMessageToNobody_data();
    void privateMessageToNobody();
    void diagnosticsGoToTheServiceAccount();
};

void TestChat::chatReachesEveryoneWithColour()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    TestClient *notLoggedIn = lobby.connected();
    QVERIFY(anna && bert && notLoggedIn->greet());
    anna->send(Code::ChatLine, {QStringLiteral("Grüße, Öland")});
    for (TestClient *client : {anna, bert}) {
        const std::optional<Message> line = client->take(Code::ChatLine);
        QVERIFY(line);
        QCOMPARE(line->fields, QStringList({"Anna", "0", "Grüße, Öland"}));
    }
    QVERIFY(notLoggedIn->takeAllAfter(Code::ChatLine, 100).isEmpty());
}

void TestChat::chatTextIsCleaned_data()
{
    QTest::addColumn<QByteArray>("body"); // the raw bytes after "MD"
    QTest::addColumn<QString>("relayed");
    QTest::newRow("separator removed") << QByteArray("a\x0E"
                                                     "b")
                                       << "ab";
    QTest::newRow("long line cut to 512")
        << QByteArray(600, 'x') << QString(server::ChatHandler::kMaxChatBytes, QLatin1Char('x'));
    QTest::newRow("exactly 512 kept") << QByteArray(512, 'y') << QString(512, QLatin1Char('y'));
    QTest::newRow("empty") << QByteArray() << "";
}

void TestChat::chatTextIsCleaned()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, relayed);
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    QVERIFY(anna);
    anna->sendRaw(QByteArray(protocol::wireCode(Code::ChatLine).data(), 2) + body + '\x0F');
    const std::optional<Message> line = anna->take(Code::ChatLine);
    QVERIFY(line);
    QCOMPARE(line->field(2), relayed);
}

void TestChat::rateLimitIsSharedAndSlides()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    bert->clear();
    // Five lines in the window: three chat lines and two private messages. Each is read by
    // the server (its echo is back) before the clock moves.
    for (int i = 0; i < 3; ++i) {
        anna->send(Code::ChatLine, {QStringLiteral("line %1").arg(i)});
        QVERIFY(anna->take(Code::ChatLine));
        lobby.clock().advance(1000);
    }
    anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("pm 1")});
    anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("pm 2")});
    QCOMPARE(anna->takeCount(Code::PrivateMessage, 2).size(), 2);
    anna->send(Code::ChatLine, {QStringLiteral("dropped")});
    anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("dropped")});
    QCOMPARE(bert->takeCount(Code::ChatLine, 3).size(), 3);
    QCOMPARE(bert->takeCount(Code::PrivateMessage, 2).size(), 2);
    QVERIFY(bert->takeAllAfter(Code::ChatLine, 200).isEmpty());
    QVERIFY(bert->takeAllAfter(Code::PrivateMessage, 0).isEmpty());

    // Ten seconds after the first line one slot is free again, and only one.
    lobby.clock().advance(6999);
    anna->send(Code::ChatLine, {QStringLiteral("a moment early")});
    QVERIFY(bert->takeAllAfter(Code::ChatLine, 200).isEmpty());
    lobby.clock().advance(1);
    anna->send(Code::ChatLine, {QStringLiteral("again")});
    anna->send(Code::ChatLine, {QStringLiteral("too soon")});
    const QList<Message> later = bert->takeAllAfter(Code::ChatLine, 300);
    QCOMPARE(later.size(), 1);
    QCOMPARE(later.first().field(2), QStringLiteral("again"));
    // Each player has his own limit.
    bert->send(Code::ChatLine, {QStringLiteral("Bert speaks")});
    QVERIFY(anna->take(Code::ChatLine));
}

void TestChat::privateMessageWithEcho()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    TestClient *carl = lobby.loggedIn(QStringLiteral("Carl"));
    QVERIFY(anna && bert && carl);
    anna->send(Code::PrivateMessage, {QStringLiteral("Bert"), QStringLiteral("psst")});
    const std::optional<Message> received = bert->take(Code::PrivateMessage);
    const std::optional<Message> echo = anna->take(Code::PrivateMessage);
    QVERIFY(received && echo);
    QCOMPARE(received->fields, QStringList({"Anna", "psst", "0"}));
    QCOMPARE(echo->fields, QStringList({"Bert", "psst", "1"}));
    QVERIFY(carl->takeAllAfter(Code::PrivateMessage, 200).isEmpty());
}

void TestChat::privateMessageToNobody_data()
{
    QTest::addColumn<QString>("recipient");
    QTest::newRow("offline account") << "Dora";
    QTest::newRow("unknown name") << "Nobody";
    QTest::newRow("other case") << "bert";
    QTest::newRow("empty") << "";
}

void TestChat::privateMessageToNobody()
{
    QFETCH(QString, recipient);
    TestLobby lobby;
    lobby.addAccount(QStringLiteral("Dora"));
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    anna->send(Code::PrivateMessage, {recipient, QStringLiteral("hello?")});
    QVERIFY(anna->takeAllAfter(Code::PrivateMessage, 300).isEmpty());
    QVERIFY(bert->takeAllAfter(Code::PrivateMessage, 0).isEmpty());
    QVERIFY(lobby.diagnostics().all().isEmpty());
}

void TestChat::diagnosticsGoToTheServiceAccount()
{
    TestLobby lobby;
    TestClient *anna = lobby.loggedIn(QStringLiteral("Anna"));
    TestClient *bert = lobby.loggedIn(QStringLiteral("Bert"));
    QVERIFY(anna && bert);
    const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
    anna->send(Code::PrivateMessage,
               {QStringLiteral("QUORVEL"), QStringLiteral("harvest failed at 3")});
    anna->send(Code::ChatLine, {QStringLiteral("sync")});
    QVERIFY(anna->take(Code::ChatLine));
    const QList<server::Diagnostic> stored = lobby.diagnostics().all();
    QCOMPARE(stored.size(), 1);
    QCOMPARE(stored.first().senderId, lobby.accounts().findByName(QStringLiteral("Anna"))->id);
    QCOMPARE(stored.first().text, QStringLiteral("harvest failed at 3"));
    QVERIFY(stored.first().received >= before);
    QVERIFY(anna->takeAllAfter(Code::PrivateMessage, 100).isEmpty());
    QVERIFY(bert->takeAllAfter(Code::PrivateMessage, 0).isEmpty());
}

QTEST_GUILESS_MAIN(TestChat)
#include "tst_chat.moc"
