#pragma once

#include <QHash>
#include <QLoggingCategory>
#include <QString>
#include <QTimer>

namespace server {

// The server's log: one line per event with its time, level and category, and for events of
// a connection its session number and peer address (sessionTag()).
Q_DECLARE_LOGGING_CATEGORY(lcLobby) // connections, limits that bite
Q_DECLARE_LOGGING_CATEGORY(lcLogin) // logins, registrations, the slow-down
Q_DECLARE_LOGGING_CATEGORY(lcStore) // the database

// Sets the line format and the lowest level written: "debug", "info", "warning" or "error".
// False for any other level. From then on every message passes through escapedLogText()
// before the handler that was installed before it writes it, so that whatever text a player
// put into a message (a name, a field of an upload) stays inside its one line.
bool setUpServerLog(const QString &level);

// A message as the log writes it: control characters (C0, DEL, C1) and the Unicode line
// separators shown as \xNN or \uNNNN, and the whole cut to kMaxLogTextChars with an ellipsis.
inline constexpr qsizetype kMaxLogTextChars = 300;
QString escapedLogText(QStringView text);

// Refusals of one cause from one address (a connection over a cap, a login turned away):
// the first is logged at once, the ones after it are counted and written as one line with
// their count at the end of each interval in which there were any, so that a flood of
// refusals writes a few lines rather than one each. At most kMaxAddresses addresses are
// told apart per cause; refusals from others are counted together.
class RefusalLog
{
public:
    using Category = const QLoggingCategory &(*)();
    static constexpr qsizetype kMaxAddresses = 4096;

    RefusalLog(Category category, int intervalMs);
    ~RefusalLog();

    void refused(const QString &address, const QString &cause);

private:
    void summarise();

    Category m_category;
    int m_intervalMs;
    QHash<std::pair<QString, QString>, int> m_counts; // refusals not yet written
    QTimer m_timer;
};

} // namespace server
