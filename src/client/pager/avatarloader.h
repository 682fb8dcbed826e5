#pragma once

#include <QImage>
#include <QObject>
#include <QUrl>
#include <chrono>

class QNetworkAccessManager;
class QNetworkReply;

namespace client {

// Fetches players' avatars from the avatar service: "/avatar/" + the player's e-mail hash +
// ".jpg?s=150&r=pg&d=wavatar" below the service's address, which asks for a 150-pixel square
// picture and, for a hash the service does not know, a generated one.
//
// A download runs in the background and costs at most kMaxBytes and kTimeout: a larger answer
// is cut off, a slow one abandoned. Only a picture that decodes whole is announced; a failed
// download, a 404 or a broken file announce nothing, so the place stays empty.
class AvatarLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr qint64 kMaxBytes = 1024 * 1024;
    static constexpr std::chrono::milliseconds kTimeout{15000};
    static constexpr int kSide = 150;
    static constexpr auto kDefaultServer = "https://www.gravatar.com";

    explicit AvatarLoader(QUrl server, QObject *parent = nullptr);

    // The avatar address of `hash`; empty when the hash is not plain letters and digits.
    static QUrl address(const QUrl &server, const QString &hash);

    // Starts fetching the avatar of the player with id `index`.
    void load(qint64 index, const QString &hash);

    // Downloads still running.
    int pending() const { return m_pending; }

Q_SIGNALS:
    void loaded(qint64 index, const QImage &picture);
    // A download ended without a picture (for the curious; nothing needs it).
    void failed(qint64 index);

private:
    void finish(QNetworkReply *reply, qint64 index, const QByteArray &body);

    static constexpr qint64 kReadAhead = 64 * 1024;

    QUrl m_server;
    QNetworkAccessManager *m_network;
    int m_pending = 0;
};

} // namespace client
