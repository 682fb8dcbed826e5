#pragma once

#include <QByteArray>
#include <QString>

namespace client {

class Options;

// "settingRS.txt" in the data folder: seven lines, CR LF, in this order: autostart, auto
// login, sounds, reset key on (each 0 or 1, blanks around the digit allowed), the hot key's
// virtual-key code (or empty), the Rogue Spear folder, the Black Ops folder; then an eighth line,
// buddy notifications (0 or 1), which files of older clients lack.
//
// Reading is tolerant: a missing or unreadable line is skipped and its setting keeps its
// value; the lines after it are still read. Text is read as UTF-8, or as Windows code page
// 1252 when it is not valid UTF-8. It is written in 1252, as on Windows, unless a folder
// name needs characters 1252 does not have; then the file is UTF-8.
namespace SettingsFile {

inline QString fileName()
{
    return QStringLiteral("settingRS.txt");
}

// False when there is no file to read; the settings are left as they are then.
bool read(const QString &path, Options &options);
void parse(const QByteArray &content, Options &options);

// Creates or replaces the file with all eight lines. False when it cannot be written.
bool write(const QString &path, const Options &options);
QByteArray format(const Options &options);

} // namespace SettingsFile

} // namespace client
