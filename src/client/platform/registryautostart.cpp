#include "client/platform/registryautostart.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace client {

namespace {

// The escapes every string value of a desktop entry may carry.
QString unescapeValue(QStringView value)
{
    QString out;
    out.reserve(value.size());
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != u'\\' || i + 1 == value.size()) {
            out.append(value[i]);
            continue;
        }
        switch (value[++i].unicode()) {
        case 's':
            out.append(u' ');
            break;
        case 'n':
            out.append(u'\n');
            break;
        case 't':
            out.append(u'\t');
            break;
        case 'r':
            out.append(u'\r');
            break;
        default:
            out.append(value[i]);
        }
    }
    return out;
}

QString escapeValue(const QString &value)
{
    QString out = value;
    out.replace(u'\\', QLatin1String("\\\\"));
    out.replace(u'\n', QLatin1String("\\n"));
    out.replace(u'\t', QLatin1String("\\t"));
    out.replace(u'\r', QLatin1String("\\r"));
    return out;
}

bool isFalse(const QString &value)
{
    return value.trimmed().compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
}

bool isTrue(const QString &value)
{
    return value.trimmed().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

} // namespace

namespace AutostartEntry {

QString quoteArgument(const QString &argument)
{
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool needsQuotes = argument.isEmpty();
    for (QChar c : argument)
        needsQuotes = needsQuotes || reserved.contains(c);
    QString out;
    if (needsQuotes) {
        out.append(u'"');
        for (QChar c : argument) {
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
                out.append(u'\\');
            out.append(c);
        }
        out.append(u'"');
    } else {
        out = argument;
    }
    out.replace(u'%', QLatin1String("%%"));
    return out;
}

QString firstArgument(const QString &execValue)
{
    const QString exec = unescapeValue(execValue).trimmed();
    QString out;
    if (exec.startsWith(u'"')) {
        for (qsizetype i = 1; i < exec.size(); ++i) {
            if (exec[i] == u'"')
                break;
            if (exec[i] == u'\\' && i + 1 < exec.size())
                ++i;
            out.append(exec[i]);
        }
    } else {
        out = exec.section(u' ', 0, 0);
    }
    out.replace(QLatin1String("%%"), QLatin1String("%"));
    return out;
}

std::optional<QString> read(const QString &entryPath)
{
    QFile file(entryPath);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    bool inEntry = false;
    bool enabled = true;
    QString exec;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(u'[')) {
            inEntry = line == QLatin1String("[Desktop Entry]");
            continue;
        }
        const qsizetype eq = line.indexOf(u'=');
        if (!inEntry || eq < 0 || line.startsWith(u'#'))
            continue;
        const QString key = line.left(eq).trimmed();
        const QString value = line.mid(eq + 1).trimmed();
        if (key == QLatin1String("Exec"))
            exec = value;
        else if (key == QLatin1String("Hidden") && isTrue(value))
            enabled = false;
        else if (key == QLatin1String("X-GNOME-Autostart-enabled") && isFalse(value))
            enabled = false;
    }
    return enabled ? firstArgument(exec) : QString();
}

bool write(const QString &entryPath, const QString &program)
{
    if (program.isEmpty())
        return !QFileInfo::exists(entryPath) || QFile::remove(entryPath);
    if (!QDir().mkpath(QFileInfo(entryPath).absolutePath()))
        return false;
    QSaveFile file(entryPath);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=QUORVEL\n"
                                        "Comment=Lobby for Rogue Spear and Black Ops players\n"
                                        "Exec=%1\n"
                                        "Terminal=false\n"
                                        "X-GNOME-Autostart-enabled=true\n")
                             .arg(escapeValue(quoteArgument(program)));
    file.write(text.toUtf8());
    return file.commit();
}

} // namespace AutostartEntry

} // namespace client
