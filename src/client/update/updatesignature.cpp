#include "client/update/updatesignature.h"

#include <QFile>
#include <algorithm>
#include <cctype>
#include <sodium.h>

namespace client {

QByteArray buildUpdatePublicKey()
{
    return QByteArray::fromHex(QUORVEL_UPDATE_PUBLIC_KEY);
}

bool signatureVerifies(const QString &path, const QByteArray &signatureText,
                       const QByteArray &publicKey)
{
    const QByteArray hex = signatureText.trimmed();
    // fromHex skips what is not a hex digit; demand exactly the digits a signature has.
    const bool wellFormed =
        hex.size() == 2 * crypto_sign_BYTES && std::all_of(hex.begin(), hex.end(), [](char c) {
            return std::isxdigit(static_cast<unsigned char>(c)) != 0;
        });
    if (!wellFormed || publicKey.size() != crypto_sign_PUBLICKEYBYTES || sodium_init() < 0)
        return false;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray program = file.readAll();
    const QByteArray signature = QByteArray::fromHex(hex);
    return crypto_sign_verify_detached(
               reinterpret_cast<const unsigned char *>(signature.data()),
               reinterpret_cast<const unsigned char *>(program.data()), quint64(program.size()),
               reinterpret_cast<const unsigned char *>(publicKey.data())) == 0;
}

} // namespace client
