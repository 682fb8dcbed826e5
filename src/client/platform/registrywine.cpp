#include "client/platform/registrywine.h"

#include <QString>

namespace client {

namespace {

bool isOctal(QChar c)
{
    return c >= u'0' && c <= u'7';
}

int hexDigit(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

// Reads escaped text from `pos` up to the unescaped `end` character; `pos` is left after it.
// nullopt when the line ends first.
std::optional<QString> readEscaped(QStringView line, qsizetype &pos, QChar end)
{
    QString out;
    while (pos < line.size()) {
        const QChar c = line[pos++];
        if (c == end)
            return out;
        if (c != u'\\' || pos >= line.size()) {
            out.append(c);
            continue;
        }
        const QChar e = line[pos++];
        // The C escapes a registry file uses for control characters.
        static const QString letters = QStringLiteral("abtnvfre");
        static const char16_t controls[] = {7, 8, 9, 10, 11, 12, 13, 27};
        if (const qsizetype i = letters.indexOf(e); i >= 0) {
            out.append(QChar(controls[i]));
            continue;
        }
        if (e == u'x') {
            char16_t value = 0;
            int digits = 0;
            for (int d; digits < 4 && pos < line.size() && (d = hexDigit(line[pos])) >= 0;
                 ++digits, ++pos)
                value = char16_t(value * 16 + d);
            out.append(digits ? QChar(value) : e);
        } else if (isOctal(e)) {
            int value = e.unicode() - u'0';
            for (int digits = 1; digits < 3 && pos < line.size() && isOctal(line[pos]); ++digits)
                value = value * 8 + (line[pos++].unicode() - u'0');
            out.append(QChar(char16_t(value)));
        } else {
            out.append(e); // \\, \", \[ and \] stand for themselves
        }
    }
    return std::nullopt;
}

RegistryValue parseData(QStringView data)
{
    if (data.startsWith(u'"')) {
        qsizetype pos = 1;
        if (auto text = readEscaped(data, pos, u'"'))
            return RegistryValue::string(*text);
        return {};
    }
    if (data.startsWith(QLatin1String("dword:"))) {
        bool ok = false;
        const uint number = data.mid(6).trimmed().toString().toUInt(&ok, 16);
        if (ok)
            return RegistryValue::fromNumber(number);
    }
    return {};
}

} // namespace

namespace WineRegistry {

std::optional<RegistryValue> findValue(QByteArrayView content, QStringView keyPath,
                                       QStringView name)
{
    bool inKey = false;
    qsizetype start = 0;
    while (start < content.size()) {
        qsizetype end = content.indexOf('\n', start);
        if (end < 0)
            end = content.size();
        const QString line = QString::fromUtf8(content.sliced(start, end - start)).trimmed();
        start = end + 1;
        if (line.isEmpty())
            continue;

        if (line.startsWith(u'[')) {
            if (inKey)
                return std::nullopt; // a key is written once: its section has ended
            qsizetype pos = 1;
            const auto key = readEscaped(line, pos, u']');
            inKey = key && key->compare(keyPath, Qt::CaseInsensitive) == 0;
            continue;
        }
        if (!inKey)
            continue;

        QString valueName;
        qsizetype pos = 0;
        if (line.startsWith(u'@')) {
            pos = 1;
        } else if (line.startsWith(u'"')) {
            pos = 1;
            const auto parsed = readEscaped(line, pos, u'"');
            if (!parsed)
                continue;
            valueName = *parsed;
        } else {
            continue; // comments, options and continuation lines of long values
        }
        if (pos >= line.size() || line[pos] != u'=')
            continue;
        if (valueName.compare(name, Qt::CaseInsensitive) == 0)
            return parseData(QStringView(line).mid(pos + 1));
    }
    return std::nullopt;
}

QString wow6432Path(const QString &keyPath)
{
    static const QLatin1String software("Software\\");
    if (!keyPath.startsWith(software, Qt::CaseInsensitive))
        return keyPath;
    return keyPath.left(software.size()) + QLatin1String("Wow6432Node\\") +
           keyPath.mid(software.size());
}

} // namespace WineRegistry

} // namespace client
