#include "client/pager/avatarloader.h"

#include "client/image/picture.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QUrlQuery>

#include <memory>

namespace client {

AvatarLoader::AvatarLoader(QUrl server, QObject *parent)
    : QObject(parent), m_server(std::move(server)), m_network(new QNetworkAccessManager(this))
{
}

QUrl AvatarLoader::address(const QUrl &server, const QString &hash)
{
    static const QRegularExpression plain(QStringLiteral("^[0-9A-Za-z]{1,128}$"));
    if (!plain.match(hash).hasMatch() || !server.isValid())
        return {};
    QUrl url = server;
    QString path = url.path();
    if (path.endsWith(QLatin1Char('/')))
        path.chop(1);
    url.setPath(path + QStringLiteral("/avatar/") + hash + QStringLiteral(".jpg"));
    url.setQuery(QStringLiteral("s=%1&r=pg&d=wavatar").arg(kSide));
    return url;
}

void AvatarLoader::load(qint64 index, const QString &hash)
{
    const QUrl url = address(m_server, hash);
    if (url.isEmpty()) {
        Q_EMIT failed(index);
        return;
    }
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setTransferTimeout(int(kTimeout.count()));
    QNetworkReply *reply = m_network->get(request);
    ++m_pending;
    // The answer is taken out of the reply as it comes, and the network thread reads at most
    // kReadAhead beyond it, so an endless answer is cut off near the cap instead of being read
    // into memory faster than the abort can follow.
    reply->setReadBufferSize(kReadAhead);
    auto body = std::make_shared<QByteArray>();
    // Past the cap the answer is abandoned: declared too large, or growing too large.
    connect(reply, &QNetworkReply::metaDataChanged, this, [reply] {
        const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > kMaxBytes)
            reply->abort();
    });
    const auto take = [reply, body] {
        body->append(reply->read(kMaxBytes + 1 - body->size()));
        if (body->size() > kMaxBytes && reply->isRunning())
            reply->abort();
    };
    connect(reply, &QIODevice::readyRead, this, take);
    connect(reply, &QNetworkReply::finished, this, [this, reply, index, body, take] {
        take();
        finish(reply, index, *body);
    });
}

void AvatarLoader::finish(QNetworkReply *reply, qint64 index, const QByteArray &body)
{
    reply->deleteLater();
    --m_pending;
    QImage picture;
    if (reply->error() == QNetworkReply::NoError && body.size() <= kMaxBytes)
        picture = Picture::load(body, {kSide, kSide});
    if (picture.isNull())
        Q_EMIT failed(index);
    else
        Q_EMIT loaded(index, picture);
}

} // namespace client
