#pragma once

#include <QString>
#include <optional>

namespace client {

// A value of the Windows Run key ("start this program when the user logs on"), kept as an
// XDG autostart entry, ~/.config/autostart/NAME.desktop, which the desktop session starts at
// log-in. An entry that is present and enabled holds the program it starts; a disabled one
// (Hidden=true, X-GNOME-Autostart-enabled=false) is an empty value.
namespace AutostartEntry {

// The program the entry at `entryPath` starts; empty when the entry is disabled or starts
// nothing; nullopt when there is no entry.
std::optional<QString> read(const QString &entryPath);

// Writes an enabled entry that starts `program`; an empty `program` removes the entry. False
// when the file cannot be written or removed.
bool write(const QString &entryPath, const QString &program);

// The Exec line's form of one argument: quoted when it needs to be, '%' doubled.
QString quoteArgument(const QString &argument);
// The first argument of an Exec value (as stored in the file, string escapes included).
QString firstArgument(const QString &execValue);

} // namespace AutostartEntry

} // namespace client
