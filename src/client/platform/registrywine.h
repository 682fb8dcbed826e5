#pragma once

#include "client/platform/registry.h"

#include <QByteArrayView>
#include <QStringView>
#include <optional>

namespace client {

// Reading the registry files of a Wine prefix (system.reg for the machine root, user.reg for
// the user's). Their text holds one section per key, "[Software\\Vendor\\Game] <time>", then
// one line per value: "name"="text", "name"=dword:0000002a, or another type (str(2):, hex:)
// that counts as Other; "@" names the key's default value. Names are escaped C-style.
namespace WineRegistry {

// The value `name` of the key `keyPath` (backslash-separated, relative to the file's root),
// or nullopt when the key or the value is not in the file. Names compare without regard to
// case. Text that is not a registry file yields nullopt, never a failure.
std::optional<RegistryValue> findValue(QByteArrayView content, QStringView keyPath,
                                       QStringView name);

// Where a 64-bit Windows keeps the machine values of 32-bit programs: "Software\X" becomes
// "Software\Wow6432Node\X". Other paths are returned unchanged.
QString wow6432Path(const QString &keyPath);

} // namespace WineRegistry

} // namespace client
