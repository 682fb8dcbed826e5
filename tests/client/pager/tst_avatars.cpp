// Avatars from the lobby server's own avatar pages, and answers from elsewhere that must cost
// the client nothing: a 404, a cut-short JPEG, and 20 MB with or without a declared length.
#include "client/pager/avatarloader.h"
#include "support/lobbyclient.h"
#include "support/scriptedserver.h"
#include "support/wait.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>

using namespace client;

namespace {

QUrl local(quint16 port)
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(port));
}

// Starts loading an avatar; the picture once the loader is done, null when none was announced.
QImage picture(AvatarLoader &loader, const QString &hash)
{
    QSignalSpy loaded(&loader, &AvatarLoader::loaded);
    loader.load(7, hash);
    if (!waitUntil([&] { return loader.pending() == 0; }, 10000))
        return QImage(1, 1, QImage::Format_Mono); // a hang shows as a wrong picture
    return loaded.isEmpty() ? QImage() : loaded.first().at(1).value<QImage>();
}

QByteArray httpAnswer(const QByteArray &status, const QByteArray &body, bool withLength)
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: image/jpeg\r\nConnection: close\r\n" +
           (withLength ? "Content-Length: " + QByteArray::number(body.size()) + "\r\n" : "") +
           "\r\n" + body;
}

} // namespace

class TestAvatars : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every hash has its picture, always the same one, and another hash another one.
    void lobbyPagesDrawEachHash()
    {
        ServerProcess lobby;
        QTemporaryDir home;
        QVERIFY(startOpenLobby(lobby, home));
        AvatarLoader loader(local(lobby.webPort()));
        const QImage first = picture(loader, QStringLiteral("5d41402abc4b2a76b9719d911017c592"));
        QCOMPARE(first.size(), QSize(150, 150));
        QCOMPARE(picture(loader, QStringLiteral("5d41402abc4b2a76b9719d911017c592")), first);
        QVERIFY(picture(loader, QStringLiteral("7d793037a0760186574b0282f2f435e7")) != first);
    }

    void answersFromElsewhere_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("cutOff"); // the client goes away before it has the whole answer

        QImage image(150, 150, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QByteArray jpeg;
        QBuffer buffer(&jpeg);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPG");
        // A picture in front, so that only the cap keeps it from the screen.
        const QByteArray huge = jpeg + QByteArray(20 * 1024 * 1024, 'x');
        QTest::newRow("whole JPEG") << httpAnswer("200 OK", jpeg, false) << true << false;
        QTest::newRow("404") << httpAnswer("404 Not Found", jpeg, true) << false << false;
        QTest::newRow("cut-short JPEG")
            << httpAnswer("200 OK", jpeg.left(jpeg.size() / 2), true) << false << false;
        QTest::newRow("20 MB declared") << httpAnswer("200 OK", huge, true) << false << true;
        QTest::newRow("20 MB undeclared") << httpAnswer("200 OK", huge, false) << false << true;
    }

    void answersFromElsewhere()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, shown);
        QFETCH(bool, cutOff);
        ScriptedServer web;
        AvatarLoader loader(local(web.port()));
        QSignalSpy loaded(&loader, &AvatarLoader::loaded);
        loader.load(7, QStringLiteral("abc123"));
        QVERIFY(waitUntil([&] { return web.received().contains("\r\n\r\n"); }));
        web.send(answer);
        web.dropClient();
        QVERIFY(waitUntil([&] { return loader.pending() == 0; }, 10000));
        QCOMPARE(loaded.size(), shown ? 1 : 0);
        QTRY_COMPARE(web.written() < answer.size(), cutOff);
    }
};

QTEST_MAIN(TestAvatars)
#include "tst_avatars.moc"
