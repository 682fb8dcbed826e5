#pragma once

#include <QByteArray>
#include <QString>

namespace client {

// The signature that makes a download installable: Ed25519 over the program's bytes, made with
// the lobby operator's secret key (`quorvel-server sign-update`) and published beside the
// program as 128 hex digits. The public key is built into the client, so whoever can change
// what the web server sends still cannot make a signature this client accepts.
QByteArray buildUpdatePublicKey();

// Whether `signatureText` (as published) is a signature of the file at `path` by `publicKey`
// (32 bytes). False for an unreadable file, a malformed signature or a wrong key.
bool signatureVerifies(const QString &path, const QByteArray &signatureText,
                       const QByteArray &publicKey);

} // namespace client
