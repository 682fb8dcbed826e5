#include "client/update/checksum.h"

#include <QCryptographicHash>
#include <QFile>

namespace client {

std::optional<QByteArray> sha256OfFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!hash.addData(&file))
        return std::nullopt;
    return hash.result().toHex();
}

std::optional<QByteArray> parseSha256Line(const QByteArray &text)
{
    const QByteArray sum = text.trimmed().split(' ').value(0).split('\t').value(0).toLower();
    if (sum.size() != 64)
        return std::nullopt;
    for (const char c : sum) {
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'f')))
            return std::nullopt;
    }
    return sum;
}

} // namespace client
