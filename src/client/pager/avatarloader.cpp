#include "client/pager/avatarloader.h"

#include "client/image/picture.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegularExpression>
#include <QUrlQuery>

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
    // Past the cap the answer is abandoned: declared too large, or growing too large.
    const auto checkSize = [reply] {
        const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
        if (reply->bytesAvailable() > kMaxBytes ||
            (length.isValid() && length.toLongLong() > kMaxBytes))
            reply->abort();
    };
    connect(reply, &QNetworkReply::metaDataChanged, this, checkSize);
    connect(reply, &QIODevice::readyRead, this, checkSize);
    connect(reply, &QNetworkReply::finished, this, [this, reply, index] { finish(reply, index); });
}

void AvatarLoader::finish(QNetworkReply *reply, qint64 index)
{
    reply->deleteLater();
    --m_pending;
    QImage picture;
    if (reply->error() == QNetworkReply::NoError && reply->bytesAvailable() <= kMaxBytes)
        picture = Picture::load(reply->readAll(), {kSide, kSide});
    if (picture.isNull())
        Q_EMIT failed(index);
    else
        Q_EMIT loaded(index, picture);
}

} // namespace client
