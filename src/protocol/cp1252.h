#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace protocol {

// The lobby stream is single-byte text in Windows code page 1252: one character per byte,
// so byte offsets and character offsets are the same. "Ö" is 0xD6.

// Every byte maps to one character; the five bytes 1252 leaves undefined map to the C1
// control with the same value, as Windows does.
QString fromCp1252(QByteArrayView bytes);
char16_t cp1252ToUnicode(unsigned char byte);

// A character that 1252 cannot hold becomes '?', so the text never loses its length
// and never turns into a separator or terminator by accident.
QByteArray toCp1252(QStringView text);
inline constexpr char kUnmappable = '?';

} // namespace protocol
