// What the server acknowledged survives SIGKILL: an account created by a login and a buddy
// change made just before the kill are there after a restart on the same database.
#include "serverprocess.h"
#include "testclient.h"

#include <QTemporaryDir>
#include <QTest>

using protocol::Code;
using protocol::Message;

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
    QString buddyId;
    {
        ServerProcess server;
        QVERIFY(server.start(arguments));
        TestClient buddy(server.port());
        const std::optional<Message> buddyLogin =
            buddy.login(QStringLiteral("Buddy"), QStringLiteral("b-pass"));
        QVERIFY(buddyLogin);
        buddyId = buddyLogin->field(0);

        TestClient fresh(server.port());
        QVERIFY(fresh.login(QStringLiteral("Fresh"), QStringLiteral("f-pass")));
        fresh.send(Code::BuddyAdd, {buddyId});
        // The buddy change has no answer; the echo of a line sent after it shows it was read.
        fresh.send(Code::ChatLine, {QStringLiteral("done")});
        QVERIFY(fresh.take(Code::ChatLine));
        server.killHard();
    }

    ServerProcess server;
    QVERIFY(server.start(arguments));
    TestClient fresh(server.port());
    QVERIFY(fresh.login(QStringLiteral("Fresh"), QStringLiteral("f-pass")));
    TestClient impostor(server.port());
    QVERIFY(!impostor.login(QStringLiteral("Fresh"), QStringLiteral("other")));
    TestClient buddy(server.port());
    const std::optional<Message> again =
        buddy.login(QStringLiteral("Buddy"), QStringLiteral("b-pass"));
    QVERIFY(again);
    QCOMPARE(again->field(0), buddyId);
    std::optional<Message> announced;
    while ((announced = fresh.take(Code::AddPlayer)) &&
           announced->field(0) != QLatin1String("Buddy")) {
    }
    QVERIFY(announced);
    QCOMPARE(announced->field(4), QStringLiteral("1"));
}

QTEST_GUILESS_MAIN(TestDurability)
#include "tst_durability.moc"
