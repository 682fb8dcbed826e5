// What the server acknowledged survives SIGKILL: an account created by a login and a buddy
// change made just before the kill are there after a restart on the same database.
#include "lobbytest.h"

#include <QTest>

class TestDurability : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesKill();
};

void TestDurability::survivesKill()
{
    QTemporaryDir dir;
    const QStringList arguments{"--db", dir.filePath("lobby.sqlite"), "--registration", "open"};
    ServerProcess server;
    QVERIFY(server.start(arguments));
    auto buddy = std::make_unique<TestClient>(server.port());
    const auto buddyLogin = buddy->login(QStringLiteral("Buddy"), QStringLiteral("b-pass"));
    QVERIFY(buddyLogin);
    auto fresh = std::make_unique<TestClient>(server.port());
    QVERIFY(fresh->login(QStringLiteral("Fresh"), QStringLiteral("f-pass")));
    fresh->send(Code::BuddyAdd, {buddyLogin->field(0)});
    // The buddy change has no answer; the echo of a line sent after it shows it was read.
    fresh->send(Code::ChatLine, {QStringLiteral("done")});
    QVERIFY(fresh->take(Code::ChatLine));
    server.killHard();

    QVERIFY(server.start(arguments));
    fresh = std::make_unique<TestClient>(server.port());
    QVERIFY(fresh->login(QStringLiteral("Fresh"), QStringLiteral("f-pass")));
    QVERIFY(!TestClient(server.port()).login(QStringLiteral("Fresh"), QStringLiteral("other")));
    buddy = std::make_unique<TestClient>(server.port());
    const auto again = buddy->login(QStringLiteral("Buddy"), QStringLiteral("b-pass"));
    QVERIFY(again);
    QCOMPARE(again->field(0), buddyLogin->field(0));
    const QList<Message> announced = fresh->takeCount(Code::AddPlayer, 2);
    QCOMPARE(namesOf(announced), QStringList({"Fresh", "Buddy"}));
    QCOMPARE(announced[1].field(4), QStringLiteral("1"));
}

QTEST_GUILESS_MAIN(TestDurability)
#include "tst_durability.moc"
