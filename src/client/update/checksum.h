#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace client {

// SHA-256 as lowercase hex, of a file or as published in a "sha256sum" line ("HEX  NAME" or
// just "HEX"). nullopt for an unreadable file or a text that holds no such sum.
std::optional<QByteArray> sha256OfFile(const QString &path);
std::optional<QByteArray> parseSha256Line(const QByteArray &text);

} // namespace client
