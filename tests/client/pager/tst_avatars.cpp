// Avatars fetched from the lobby server's own avatar pages, and answers that must cost the
// client nothing: a 404, a cut-short JPEG, and 20 MB with or without a declared length.
#include "client/pager/avatarloader.h"
#include "support/serverprocess.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace client;

namespace {

// Answers every request with the same bytes and remembers whether a client went away before
// it had them all.
class CannedHttpServer : public QTcpServer
{
public:
    explicit CannedHttpServer(QByteArray answer) : m_answer(std::move(answer))
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            auto *written = new qint64(0);
            connect(socket, &QTcpSocket::bytesWritten, socket,
                    [written](qint64 bytes) { *written += bytes; });
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                if (socket->readAll().contains("\r\n\r\n")) {
                    socket->write(m_answer);
                    socket->disconnectFromHost();
                }
            });
            connect(socket, &QTcpSocket::stateChanged, socket, [this, socket, written] {
                if (socket->state() != QAbstractSocket::UnconnectedState)
                    return;
                cutOff = cutOff || *written < m_answer.size();
                ended = true;
                delete written;
                socket->deleteLater();
            });
        });
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(serverPort())); }
    bool cutOff = false; // a client went away before it had the whole answer
    bool ended = false;

private:
    QByteArray m_answer;
};

QByteArray jpegFile()
{
    QImage image(150, 150, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG");
    return bytes;
}

QByteArray httpAnswer(const QByteArray &body, bool withLength)
{
    QByteArray head = "HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\nConnection: close\r\n";
    if (withLength)
        head += "Content-Length: " + QByteArray::number(body.size()) + "\r\n";
    return head + "\r\n" + body;
}

} // namespace

class TestAvatars : public QObject
{
    Q_OBJECT

private:
    ServerProcess m_lobby;
    QTemporaryDir m_home;

    QUrl lobbyPages(const QString &path = {}) const
    {
        return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(m_lobby.webPort()).arg(path));
    }

    // Loads one avatar from `server`; the picture, null when none was announced.
    static QImage fetch(const QUrl &server, const QString &hash)
    {
        AvatarLoader loader(server);
        QSignalSpy loaded(&loader, &AvatarLoader::loaded);
        loader.load(7, hash);
        if (!QTest::qWaitFor([&] { return loader.pending() == 0; }, 10000))
            return QImage(1, 1, QImage::Format_Mono); // a hang shows as a wrong picture
        return loaded.isEmpty() ? QImage() : loaded.first().at(1).value<QImage>();
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_lobby.start(kLobbyServer, {"--listen", "127.0.0.1", "--port", "0", "--db",
                                             m_home.filePath(QStringLiteral("lobby.sqlite"))}));
    }

    // Every hash has its picture, always the same one, and another hash another one.
    void lobbyPagesDrawEachHash()
    {
        const QImage first =
            fetch(lobbyPages(), QStringLiteral("5d41402abc4b2a76b9719d911017c592"));
        QCOMPARE(first.size(), QSize(150, 150));
        QCOMPARE(fetch(lobbyPages(), QStringLiteral("5d41402abc4b2a76b9719d911017c592")), first);
        QVERIFY(fetch(lobbyPages(), QStringLiteral("7d793037a0760186574b0282f2f435e7")) != first);
    }

    void badAnswersLeaveThePlaceEmpty_data()
    {
        QTest::addColumn<QByteArray>("answer"); // empty: the lobby's 404 page
        QTest::addColumn<bool>("cutOff");

        const QByteArray whole = jpegFile();
        const QByteArray huge(20 * 1024 * 1024, 'x');
        QTest::newRow("404") << QByteArray() << false;
        QTest::newRow("cut-short JPEG") << httpAnswer(whole.left(whole.size() / 2), true) << false;
        QTest::newRow("20 MB declared") << httpAnswer(huge, true) << true;
        QTest::newRow("20 MB undeclared") << httpAnswer(huge, false) << true;
    }

    void badAnswersLeaveThePlaceEmpty()
    {
        QFETCH(QByteArray, answer);
        QFETCH(bool, cutOff);
        CannedHttpServer canned(answer);
        const QUrl server =
            answer.isEmpty() ? lobbyPages(QStringLiteral("/nothing")) : canned.url();
        QVERIFY(fetch(server, QStringLiteral("abc123")).isNull());
        if (!answer.isEmpty())
            QTRY_VERIFY(canned.ended);
        QCOMPARE(canned.cutOff, cutOff);
    }

    void aWellFormedAnswerFromElsewhereIsShown()
    {
        CannedHttpServer canned(httpAnswer(jpegFile(), false));
        QCOMPARE(fetch(canned.url(), QStringLiteral("abc123")).size(), QSize(150, 150));
    }
};

QTEST_MAIN(TestAvatars)
#include "tst_avatars.moc"
