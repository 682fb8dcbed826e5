#include "server/admin/updatekey.h"

#include <QFile>
#include <QSaveFile>
#include <sodium.h>

namespace server {

namespace {

int makeKey(const QString &keyFile, QTextStream &out, QTextStream &err)
{
    if (QFile::exists(keyFile)) {
        err << "quorvel-server: " << keyFile << " exists already; it is not replaced\n";
        return 1;
    }
    unsigned char publicKey[crypto_sign_PUBLICKEYBYTES];
    unsigned char secretKey[crypto_sign_SECRETKEYBYTES];
    crypto_sign_keypair(publicKey, secretKey);
    QFile file(keyFile);
    // Created 0600 from the start: the secret is never readable by others, not even briefly.
    const bool written = file.open(QIODevice::WriteOnly | QIODevice::NewOnly,
                                   QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
                         file.write(QByteArray::fromRawData(
                                        reinterpret_cast<const char *>(secretKey), sizeof secretKey)
                                        .toHex() +
                                    '\n') > 0 &&
                         file.flush();
    sodium_memzero(secretKey, sizeof secretKey);
    if (!written) {
        err << "quorvel-server: cannot write " << keyFile << ": " << file.errorString() << '\n';
        file.remove();
        return 1;
    }
    out << QByteArray::fromRawData(reinterpret_cast<const char *>(publicKey), sizeof publicKey)
               .toHex()
        << '\n';
    return 0;
}

int sign(const QString &keyFile, const QString &program, QTextStream &out, QTextStream &err)
{
    QFile key(keyFile);
    const QByteArray secretKey = key.open(QIODevice::ReadOnly)
                                     ? QByteArray::fromHex(key.read(1024).trimmed())
                                     : QByteArray();
    if (secretKey.size() != crypto_sign_SECRETKEYBYTES) {
        err << "quorvel-server: " << keyFile << " holds no update key\n";
        return 1;
    }
    QFile file(program);
    if (!file.open(QIODevice::ReadOnly)) {
        err << "quorvel-server: cannot read " << program << ": " << file.errorString() << '\n';
        return 1;
    }
    const QByteArray bytes = file.readAll();
    unsigned char signature[crypto_sign_BYTES];
    crypto_sign_detached(signature, nullptr, reinterpret_cast<const unsigned char *>(bytes.data()),
                         quint64(bytes.size()),
                         reinterpret_cast<const unsigned char *>(secretKey.data()));

    const QString signatureFile = program + QStringLiteral(".sig");
    QSaveFile saved(signatureFile);
    if (!saved.open(QIODevice::WriteOnly) ||
        saved.write(
            QByteArray::fromRawData(reinterpret_cast<const char *>(signature), sizeof signature)
                .toHex() +
            '\n') < 0 ||
        !saved.commit()) {
        err << "quorvel-server: cannot write " << signatureFile << ": " << saved.errorString()
            << '\n';
        return 1;
    }
    out << "signed " << program << " in " << signatureFile << '\n';
    return 0;
}

} // namespace

std::optional<int> runUpdateKeyCommand(const QStringList &arguments, QTextStream &out,
                                       QTextStream &err)
{
    const QString verb = arguments.value(1);
    if (verb != QLatin1String("make-update-key") && verb != QLatin1String("sign-update"))
        return std::nullopt;
    if (sodium_init() < 0) {
        err << "quorvel-server: the crypto library does not start\n";
        return 1;
    }
    if (verb == QLatin1String("make-update-key") && arguments.size() == 3)
        return makeKey(arguments[2], out, err);
    if (verb == QLatin1String("sign-update") && arguments.size() == 4)
        return sign(arguments[2], arguments[3], out, err);
    err << "quorvel-server: usage: " << verb
        << (verb == QLatin1String("sign-update") ? " KEYFILE PROGRAM\n" : " KEYFILE\n");
    return 2;
}

} // namespace server
