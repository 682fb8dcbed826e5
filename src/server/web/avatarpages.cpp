#include "server/web/avatarpages.h"

#include "server/web/webroutes.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QPainter>
#include <QRegularExpression>

namespace server {

namespace {

constexpr int kCells = 5;

bool isServedHash(const QString &hash)
{
    static const QRegularExpression plain(QStringLiteral("^[0-9A-Za-z]{1,128}$"));
    return plain.match(hash).hasMatch();
}

} // namespace

void AvatarPages::addRoutes(WebRoutes &routes)
{
    const QString prefix = QStringLiteral("/avatar/");
    routes.addPrefix(prefix, [prefix](const WebRequest &request) {
        const QString file = request.path.mid(prefix.size());
        const QString suffix = QStringLiteral(".jpg");
        const QString hash = file.endsWith(suffix) ? file.chopped(suffix.size()) : QString();
        bool ok = false;
        int side = request.query.queryItemValue(QStringLiteral("s")).toInt(&ok);
        side = ok ? std::clamp(side, 1, kMaxSide) : kDefaultSide;
        if (!isServedHash(hash))
            return WebResponse::plainText(QByteArrayLiteral("No such picture.\n"), 404);
        const QByteArray tag = '"' + hash.toLatin1() + '-' + QByteArray::number(side) + '"';
        WebResponse response{200, QByteArrayLiteral("image/jpeg"), {}, {}, {}};
        if (request.ifNoneMatch == tag || request.ifNoneMatch == "*")
            response.status = 304;
        else
            response.body = jpeg(hash, side);
        if (response.status == 200 && response.body.isEmpty())
            return WebResponse::plainText(QByteArrayLiteral("No picture.\n"), 500);
        return response.withHeader("ETag", tag)
            .withHeader("Cache-Control", "public, max-age=86400");
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
