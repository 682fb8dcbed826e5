#include "protocol/cp1252.h"

#include <array>

namespace protocol {
namespace {

// 0x80..0x9F; the rest of the code page equals Latin-1.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char encodeOne(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<char>(c);
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == c)
            return static_cast<char>(0x80 + i);
    }
    return kUnmappable;
}

} // namespace

char16_t cp1252ToUnicode(unsigned char byte)
{
    if (byte >= 0x80 && byte < 0xA0)
        return kHighControls[byte - 0x80];
    return byte;
}

namespace {
constexpr std::array<char16_t, 256> makeDecodeTable()
{
    std::array<char16_t, 256> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = (i >= 0x80 && i < 0xA0) ? kHighControls[i - 0x80] : char16_t(i);
    return table;
}
constexpr std::array<char16_t, 256> kDecode = makeDecodeTable();
} // namespace

QString fromCp1252(QByteArrayView bytes)
{
    if (bytes.isEmpty())
        return QString();
    QString text(bytes.size(), Qt::Uninitialized);
    char16_t *out = reinterpret_cast<char16_t *>(text.data());
    const auto *in = reinterpret_cast<const unsigned char *>(bytes.data());
    for (qsizetype i = 0; i < bytes.size(); ++i)
        out[i] = kDecode[in[i]];
    return text;
}

QByteArray toCp1252(QStringView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i; // one character outside the BMP becomes one '?', not two
        bytes.append(c.isSurrogate() ? kUnmappable : encodeOne(c.unicode()));
    }
    return bytes;
}

} // namespace protocol
