// Downloads from a web server that stops answering end after the timeout, and leave no file.
#include "client/platform/filedownload.h"

#include <QFile>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

using namespace client;
using namespace std::chrono_literals;

class TestFileDownload : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void stalledServerTimesOut_data()
    {
        QTest::addColumn<QByteArray>("said"); // what the server says before it falls silent
        QTest::newRow("no answer") << QByteArray();
        QTest::newRow("stalls in the body")
            << QByteArray("HTTP/1.1 200 OK\r\nContent-Length: 100000\r\n\r\npartial data");
    }

    void stalledServerTimesOut()
    {
        QFETCH(QByteArray, said);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, &server, [&] {
            QTcpSocket *socket = server.nextPendingConnection();
            socket->write(said);
        });
        QTemporaryDir dir;
        const QString path = dir.filePath("download");
        FileDownload download(300ms);
        QSignalSpy finished(&download, &FileDownload::finished);
        download.start(QUrl(QStringLiteral("http://127.0.0.1:%1/file").arg(server.serverPort())),
                       path);
        QVERIFY(finished.wait(5000));
        QCOMPARE(finished.first().first().toBool(), false);
        QVERIFY(!download.errorString().isEmpty());
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_MAIN(TestFileDownload)
#include "tst_filedownload.moc"
