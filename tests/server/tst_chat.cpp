// Lobby chat and private messages: who receives what, the cleaning of relayed text, the
// shared rate limit and the service account's diagnostics.
#include "lobbytest.h"

class TestChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chatReachesEveryoneCleaned_data()
    {
        QTest::addColumn<QByteArray>("body"); // the raw bytes after "MD"
        QTest::addColumn<QString>("relayed");
        QTest::newRow("code page 1252") << QByteArray("gr\xFC\xDFt \xD6l") << "grüßt Öl";
        QTest::newRow("separator removed") << QByteArray("a\x0Ez") << "az";
        QTest::newRow("long line cut to 512")
            << QByteArray(600, 'x') << QString(512, QLatin1Char('x'));
        QTest::newRow("exactly 512 kept") << QByteArray(512, 'y') << QString(512, QLatin1Char('y'));
        QTest::newRow("empty") << QByteArray() << "";
    }

    void chatReachesEveryoneCleaned()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, relayed);
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        TestClient *notLoggedIn = lobby.connected();
        QVERIFY(notLoggedIn->greet());
        anna->sendRaw(QByteArray(protocol::wireCode(Code::ChatLine).data(), 2) + body + '\x0F');
        for (TestClient *client : {anna, bert})
            QCOMPARE(fieldsOf(client->takeCount(Code::ChatLine, 1)),
                     QList<QStringList>({{"Anna", "0", relayed}}));
        // Had the line gone to a connection not logged in, it would have come before this refusal.
        notLoggedIn->send(Code::Login, {"Nobody", "x"});
        QVERIFY(notLoggedIn->take(Code::LoginFailed));
        QVERIFY(notLoggedIn->pending().isEmpty());
    }

    void rateLimitIsSharedAndSlides()
    {
        TestLobby lobby;
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        bert->clear();
        // Bert has all that Anna sent before once he has her presence change, which has no limit.
        const auto chatBertGot = [&] {
            anna->send(Code::PlayerStatus, {"3", QString()});
            return bert->take(Code::PlayerStatus) ? bert->takeAll(Code::ChatLine)
                                                  : QList<Message>{};
        };
        // Five lines in the window: three chat lines and two private messages. Each is read by
        // the server (its echo is back) before the clock moves.
        for (int i = 0; i < 3; ++i) {
            anna->send(Code::ChatLine, {QStringLiteral("line %1").arg(i)});
            QVERIFY(anna->take(Code::ChatLine));
            lobby.clock.advance(1000);
        }
        for (int i = 0; i < 2; ++i)
            anna->send(Code::PrivateMessage, {"Bert", "pm"});
        QCOMPARE(anna->takeCount(Code::PrivateMessage, 2).size(), 2);
        anna->send(Code::ChatLine, {"dropped"});
        anna->send(Code::PrivateMessage, {"Bert", "dropped"});
        QCOMPARE(chatBertGot().size(), 3);
        QCOMPARE(bert->takeAll(Code::PrivateMessage).size(), 2);

        // Ten seconds after the first line one slot is free again, and only one.
        lobby.clock.advance(6999);
        anna->send(Code::ChatLine, {"a moment early"});
        QVERIFY(chatBertGot().isEmpty());
        lobby.clock.advance(1);
        anna->send(Code::ChatLine, {"again"});
        anna->send(Code::ChatLine, {"too soon"});
        const QList<Message> later = chatBertGot();
        QCOMPARE(later.size(), 1);
        QCOMPARE(later.first().field(2), "again");
        // Each player has his own limit.
        bert->send(Code::ChatLine, {"Bert speaks"});
        QVERIFY(anna->take(Code::ChatLine));
    }

    void privateMessages_data()
    {
        QTest::addColumn<QString>("recipient");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("online player") << "Bert" << true;
        QTest::newRow("offline account") << "Dora" << false;
        QTest::newRow("unknown name") << "Nobody" << false;
        QTest::newRow("other case") << "bert" << false;
        QTest::newRow("service account keeps it") << "QUORVEL" << false;
    }

    void privateMessages()
    {
        QFETCH(QString, recipient);
        QFETCH(bool, delivered);
        TestLobby lobby;
        lobby.addAccount("Dora");
        TestClient *anna = lobby.loggedIn("Anna");
        TestClient *bert = lobby.loggedIn("Bert");
        TestClient *carl = lobby.loggedIn("Carl");
        const QDateTime before = QDateTime::currentDateTimeUtc().addSecs(-1);
        anna->send(Code::PrivateMessage, {recipient, "psst"});
        QVERIFY(lobby.sync(anna));
        // The recipient gets it from Anna; Anna gets her echo, marked as sent, to the recipient.
        const auto expect = [delivered](const char *name, const char *echo) {
            return delivered ? QList<QStringList>{{name, "psst", echo}} : QList<QStringList>{};
        };
        QCOMPARE(fieldsOf(bert->takeAll(Code::PrivateMessage)), expect("Anna", "0"));
        QCOMPARE(fieldsOf(anna->takeAll(Code::PrivateMessage)), expect("Bert", "1"));
        QVERIFY(carl->takeAll(Code::PrivateMessage).isEmpty());

        const QList<server::Diagnostic> stored = lobby.diagnostics.all();
        QCOMPARE(stored.size(), recipient == QLatin1String("QUORVEL") ? 1 : 0);
        for (const server::Diagnostic &d : stored) {
            QCOMPARE(d.senderId, lobby.idOf("Anna"));
            QCOMPARE(d.text, "psst");
            QVERIFY(d.received >= before);
        }
    }
};

QTEST_GUILESS_MAIN(TestChat)
#include "tst_chat.moc"
