#include "client/presence/chatarchive.h"

#include "client/platform/clock.h"
#include "client/platform/privatefiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace client {

namespace {

const QString kTimeFormat = QStringLiteral("HH:mm:ss");

QString escaped(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'\\':
            out += QStringLiteral("\\\\");
            break;
        case u'\t':
            out += QStringLiteral("\\t");
            break;
        case u'\n':
            out += QStringLiteral("\\n");
            break;
        case u'\r':
            out += QStringLiteral("\\r");
            break;
        default:
            out += c;
        }
    }
    return out;
}

QString unescaped(QStringView text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != u'\\' || i + 1 == text.size()) {
            out += text[i];
            continue;
        }
        const QChar next = text[++i];
        out += next == u't'   ? QChar(u'\t')
               : next == u'n' ? QChar(u'\n')
               : next == u'r' ? QChar(u'\r')
                              : next;
    }
    return out;
}

QByteArray formatLine(const ChatLine &line)
{
    return (line.time.toString(kTimeFormat) + u'\t' + line.colour.name() + u'\t' +
            escaped(line.name) + u'\t' + escaped(line.text) + u'\n')
        .toUtf8();
}

// A kept line, or nothing for a line that is not one (a file cut short, edited by hand).
std::optional<ChatLine> parseLine(QStringView text)
{
    const QList<QStringView> fields = text.split(u'\t');
    if (fields.size() != 4)
        return std::nullopt;
    const QTime time = QTime::fromString(fields[0].toString(), kTimeFormat);
    const QColor colour = QColor::fromString(fields[1]);
    if (!time.isValid() || !colour.isValid())
        return std::nullopt;
    return ChatLine{time, unescaped(fields[2]), colour, unescaped(fields[3])};
}

// The day files of the folder, newest first.
QFileInfoList dayFiles(const QString &folder)
{
    static const QRegularExpression dayName(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}\\.txt$"));
    QFileInfoList days;
    const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.txt")}, QDir::Files,
                                                           QDir::Name | QDir::Reversed);
    for (const QFileInfo &file : files) {
        if (dayName.match(file.fileName()).hasMatch())
            days.append(file);
    }
    return days;
}

} // namespace

ChatArchive::ChatArchive(QString folder, const Clock &clock, Limits limits, QObject *parent)
    : QObject(parent), m_folder(std::move(folder)), m_clock(clock), m_limits(limits)
{
}

void ChatArchive::attach(ChatLog &log)
{
    for (const ChatLine &line : newestLines(m_limits.restoredLines))
        log.append(line);
    connect(&log, &ChatLog::lineAppended, this, &ChatArchive::keep);
}

QList<ChatLine> ChatArchive::newestLines(int count) const
{
    QList<ChatLine> lines;
    for (const QFileInfo &day : dayFiles(m_folder)) {
        if (lines.size() >= count)
            break;
        QFile file(day.filePath());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.read(m_limits.maxDayBytes * 2));
        QList<ChatLine> ofDay;
        for (const QStringView row : QStringView(text).split(u'\n', Qt::SkipEmptyParts)) {
            if (const std::optional<ChatLine> line = parseLine(row))
                ofDay.append(*line);
        }
        lines = ofDay.mid(std::max<qsizetype>(0, ofDay.size() - (count - lines.size()))) + lines;
    }
    return lines;
}

QString ChatArchive::dayFile(const QDate &day) const
{
    return QDir(m_folder).filePath(day.toString(Qt::ISODate) + QStringLiteral(".txt"));
}

void ChatArchive::keep(const ChatLine &line)
{
    m_pending.append(line);
    if (m_flushQueued)
        return;
    m_flushQueued = true;
    QMetaObject::invokeMethod(this, &ChatArchive::flush, Qt::QueuedConnection);
}

void ChatArchive::flush()
{
    m_flushQueued = false;
    const QList<ChatLine> lines = std::exchange(m_pending, {});
    // A folder or file that cannot be written loses the lines: the chat goes on without them.
    if (!PrivateFiles::makeFolder(m_folder))
        return;
    QFile file(dayFile(m_clock.now().date()));
    const bool isNew = !file.exists();
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return;
    file.setPermissions(PrivateFiles::kFile);
    qint64 size = file.size();
    QByteArray bytes;
    for (const ChatLine &line : lines) {
        const QByteArray row = formatLine(line);
        if (size + bytes.size() + row.size() > m_limits.maxDayBytes)
            break;
        bytes += row;
    }
    file.write(bytes);
    file.close();
    if (isNew)
        removeOldestDays();
}

void ChatArchive::removeOldestDays()
{
    QFileInfoList days = dayFiles(m_folder);
    qint64 total = 0;
    for (const QFileInfo &day : days)
        total += day.size();
    // The newest day (just begun) always stays.
    while (total > m_limits.maxTotalBytes && days.size() > 1) {
        total -= days.last().size();
        QFile::remove(days.last().filePath());
        days.removeLast();
    }
}

} // namespace client
