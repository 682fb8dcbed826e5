#include "server/web/avatarpages.h"

#include "server/web/webserver.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QHttpServerRequest>
#include <QHttpServerResponse>
#include <QPainter>
#include <QRegularExpression>
#include <QUrlQuery>

namespace server {

namespace {

constexpr int kCells = 5;

bool isServedHash(const QString &hash)
{
    static const QRegularExpression plain(QStringLiteral("^[0-9A-Za-z]{1,128}$"));
    return plain.match(hash).hasMatch();
}

} // namespace

AvatarPages::AvatarPages(WebServer &web)
{
    web.http().route(QStringLiteral("/avatar/<arg>"), [](const QString &file,
                                                         const QHttpServerRequest &request) {
        const QString suffix = QStringLiteral(".jpg");
        const QString hash = file.endsWith(suffix) ? file.chopped(suffix.size()) : QString();
        bool ok = false;
        int side = QUrlQuery(request.url()).queryItemValue(QStringLiteral("s")).toInt(&ok);
        if (!ok)
            side = kDefaultSide;
        const QByteArray picture = jpeg(hash, std::clamp(side, 1, kMaxSide));
        if (picture.isEmpty())
            return QHttpServerResponse(QHttpServerResponder::StatusCode::NotFound);
        return QHttpServerResponse(QByteArrayLiteral("image/jpeg"), picture);
    });
}

QImage AvatarPages::draw(const QString &hash, int side)
{
    const QByteArray digest = QCryptographicHash::hash(hash.toLatin1(), QCryptographicHash::Md5);
    const auto byte = [&digest](int i) { return quint8(digest[i % digest.size()]); };
    const QColor ink =
        QColor::fromHsv(byte(0) * 359 / 255, 140 + byte(1) % 100, 130 + byte(2) % 90);

    QImage image(side, side, QImage::Format_RGB32);
    image.fill(QColor(240, 240, 240));
    QPainter painter(&image);
    // A 5 x 5 grid mirrored about its middle column: 15 cells decide, one bit of the hash each.
    const double cell = double(side) / (kCells + 1);
    const double margin = cell / 2;
    for (int row = 0; row < kCells; ++row) {
        for (int column = 0; column <= kCells / 2; ++column) {
            const int bit = row * 3 + column;
            if (!((byte(3 + bit / 8) >> (bit % 8)) & 1))
                continue;
            for (const int x : {column, kCells - 1 - column})
                painter.fillRect(QRectF(margin + x * cell, margin + row * cell, cell, cell), ink);
        }
    }
    return image;
}

QByteArray AvatarPages::jpeg(const QString &hash, int side)
{
    if (!isServedHash(hash) || side < 1 || side > kMaxSide)
        return {};
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!draw(hash, side).save(&buffer, "JPG", 90))
        return {};
    return bytes;
}

} // namespace server
