#pragma once

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <chrono>
#include <memory>

class QFile;

namespace client {

// Downloads one address to a file over HTTP, always from the network (no cached copy is used or
// kept). The file is written as the data arrives; on any failure (network error, an answer
// other than 200, no data for `timeout`, a file that cannot be written) it is removed, so a
// file at the path after success is the whole download.
class FileDownload : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kTimeout{30000};

    explicit FileDownload(std::chrono::milliseconds timeout = kTimeout, QObject *parent = nullptr);
    ~FileDownload() override;

    // Starts a download, abandoning one that still runs.
    void start(const QUrl &url, const QString &path);
    // Starts a download and runs the event loop until it ends; whether it succeeded.
    bool run(const QUrl &url, const QString &path);
    bool isRunning() const { return m_reply != nullptr; }
    QString errorString() const { return m_error; }

Q_SIGNALS:
    // `total` is -1 while the server has not said the size.
    void progress(qint64 received, qint64 total);
    void finished(bool ok);

private:
    void abandon();
    void onReadyRead();
    void onFinished();
    void fail(const QString &error);

    QNetworkAccessManager m_network;
    std::chrono::milliseconds m_timeout;
    QPointer<QNetworkReply> m_reply;
    std::unique_ptr<QFile> m_file;
    QString m_error;
};

} // namespace client
