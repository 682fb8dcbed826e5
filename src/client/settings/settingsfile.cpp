#include "client/settings/settingsfile.h"

#include "client/platform/privatefiles.h"
#include "client/settings/options.h"
#include "client/text/blanks.h"
#include "protocol/cp1252.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringList>
#include <optional>

namespace client {

namespace {

// Far more than seven lines of settings ever need; the rest of a larger file is not read.
constexpr qint64 kMaxBytes = 64 * 1024;

QString decode(const QByteArray &bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(bytes);
    return utf8.hasError() ? protocol::fromCp1252(bytes) : text;
}

// A check-box line: 0 or 1 with blanks around it; anything else cannot be converted.
std::optional<bool> checkValue(const QString &line)
{
    bool ok = false;
    const int value = trimBlanks(line).toInt(&ok);
    if (!ok || (value != 0 && value != 1))
        return std::nullopt;
    return value == 1;
}

} // namespace

namespace SettingsFile {

bool read(const QString &path, Options &options)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    parse(file.read(kMaxBytes), options);
    return true;
}

void parse(const QByteArray &content, Options &options)
{
    QStringList lines = decode(content).split(u'\n');
    for (QString &line : lines) {
        if (line.endsWith(u'\r'))
            line.chop(1);
    }
    // The text after the last line end is a line only when it holds something.
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();

    const auto readCheck = [&lines, &options](int line, void (Options::*set)(bool)) {
        if (line >= lines.size())
            return;
        if (const auto value = checkValue(lines[line]))
            (options.*set)(*value);
    };
    readCheck(0, &Options::setAutoStart);
    readCheck(1, &Options::setAutoLogIn);
    readCheck(2, &Options::setSound);
    readCheck(3, &Options::setReset);
    if (lines.size() > 4)
        options.setHotKeyTag(trimBlanks(lines[4]).toString());
    if (lines.size() > 5)
        options.setPathRS(trimBlanks(lines[5]).toString());
    if (lines.size() > 6)
        options.setPathBlackOps(trimBlanks(lines[6]).toString());
    readCheck(7, &Options::setBuddyNotifications);
}

QByteArray format(const Options &options)
{
    const QStringList lines = {
        QString::number(int(options.autoStart())),
        QString::number(int(options.autoLogIn())),
        QString::number(int(options.sound())),
        QString::number(int(options.reset())),
        options.hotKeyTag(),
        options.pathRS(),
        options.pathBlackOps(),
        QString::number(int(options.buddyNotifications())),
    };
    const QString text = lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
    // A folder that code page 1252 cannot hold would lose its name to '?'; it is kept whole as
    // UTF-8, which the reader takes as well.
    const QByteArray cp1252 = protocol::toCp1252(text);
    return protocol::fromCp1252(cp1252) == text ? cp1252 : text.toUtf8();
}

bool write(const QString &path, const Options &options)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(PrivateFiles::kFile))
        return false;
    file.write(format(options));
    return file.commit();
}

} // namespace SettingsFile

} // namespace client
