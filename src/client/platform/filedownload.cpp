#include "client/platform/filedownload.h"

#include <QEventLoop>
#include <QFile>
#include <QNetworkReply>
#include <QNetworkRequest>

namespace client {

FileDownload::FileDownload(std::chrono::milliseconds timeout, QObject *parent)
    : QObject(parent), m_timeout(timeout)
{
}

FileDownload::~FileDownload()
{
    abandon();
}

void FileDownload::abandon()
{
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        if (m_file)
            m_file->remove();
    }
}

void FileDownload::start(const QUrl &url, const QString &path)
{
    abandon();
    m_error.clear();
    m_file = std::make_unique<QFile>(path);
    if (!m_file->open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        m_error = QStringLiteral("cannot write %1: %2").arg(path, m_file->errorString());
        m_file.reset();
        // Announced from the event loop, as a network failure would be.
        QMetaObject::invokeMethod(
            this, [this] { Q_EMIT finished(false); }, Qt::QueuedConnection);
        return;
    }

    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setRawHeader("Cache-Control", "no-cache");
    request.setRawHeader("Pragma", "no-cache");
    request.setTransferTimeout(int(m_timeout.count()));
    m_reply = m_network.get(request);
    connect(m_reply, &QNetworkReply::readyRead, this, &FileDownload::onReadyRead);
    connect(m_reply, &QNetworkReply::downloadProgress, this, &FileDownload::progress);
    connect(m_reply, &QNetworkReply::finished, this, &FileDownload::onFinished);
}

bool FileDownload::run(const QUrl &url, const QString &path)
{
    QEventLoop loop;
    bool ok = false;
    const auto connection = connect(this, &FileDownload::finished, &loop, [&](bool success) {
        ok = success;
        loop.quit();
    });
    start(url, path);
    loop.exec();
    disconnect(connection);
    return ok;
}

void FileDownload::onReadyRead()
{
    const QByteArray data = m_reply->readAll();
    if (m_file->write(data) != data.size())
        fail(QStringLiteral("cannot write %1: %2").arg(m_file->fileName(), m_file->errorString()));
}

void FileDownload::onFinished()
{
    if (!m_reply)
        return;
    const int status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (m_reply->error() == QNetworkReply::OperationCanceledError)
        return fail(QStringLiteral("no answer from %1").arg(m_reply->url().toString()));
    if (m_reply->error() != QNetworkReply::NoError && status == 0)
        return fail(m_reply->errorString());
    if (status != 200)
        return fail(
            QStringLiteral("%1 answered %2 %3")
                .arg(m_reply->url().toString())
                .arg(status)
                .arg(m_reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString()));
    onReadyRead();
    if (!m_reply)
        return;
    const bool flushed = m_file->flush();
    m_file->close();
    if (!flushed)
        return fail(QStringLiteral("cannot write %1").arg(m_file->fileName()));
    m_reply->deleteLater();
    m_reply = nullptr;
    m_file.reset();
    Q_EMIT finished(true);
}

void FileDownload::fail(const QString &error)
{
    m_error = error;
    if (m_reply) {
        m_reply->disconnect(this);
        m_reply->abort();
        m_reply->deleteLater();
        m_reply = nullptr;
    }
    if (m_file) {
        m_file->close();
        m_file->remove();
        m_file.reset();
    }
    Q_EMIT finished(false);
}

} // namespace client
