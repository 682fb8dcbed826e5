#pragma once

#include "client/presence/chatlog.h"

#include <QDate>
#include <QList>
#include <QObject>
#include <QString>

namespace client {

class Clock;

// A chat kept on disk (the lobby chat, a private conversation), so that the last lines are
// there again after a restart: one UTF-8 file a day, "YYYY-MM-DD.txt" in its folder, one line per
// chat line (time, colour, sender and text, tab-separated, with tabs, line breaks and backslashes
// escaped). Lines are written together once per turn of the event loop. A day's file stops growing
// at `maxDayBytes`, and the oldest days go when the folder holds more than `maxTotalBytes`.
class ChatArchive : public QObject
{
    Q_OBJECT

public:
    struct Limits
    {
        qint64 maxDayBytes = 1024 * 1024;
        qint64 maxTotalBytes = 16 * 1024 * 1024;
        int restoredLines = 50;
    };

    ChatArchive(QString folder, const Clock &clock, Limits limits, QObject *parent = nullptr);
    ChatArchive(QString folder, const Clock &clock, QObject *parent = nullptr)
        : ChatArchive(std::move(folder), clock, Limits{}, parent)
    {
    }

    // Appends the newest lines kept (at most `restoredLines`, oldest first) to `log`, then
    // keeps every line appended to it from now on.
    void attach(ChatLog &log);

    // The newest `count` lines kept, oldest first.
    QList<ChatLine> newestLines(int count) const;
    // Keeps `line`, for an archive fed without a chat log.
    void keep(const ChatLine &line);

private:
    void flush();
    void removeOldestDays();
    QString dayFile(const QDate &day) const;

    QString m_folder;
    const Clock &m_clock;
    Limits m_limits;
    QList<ChatLine> m_pending;
    bool m_flushQueued = false;
};

} // namespace client
