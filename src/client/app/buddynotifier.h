#pragma once

#include <QDateTime>
#include <QObject>

namespace client {

class Clock;
class Options;
class TrayService;

// A desktop message from the tray icon when a buddy comes online or starts a game, while the
// option is on. The players announced in the first seconds after the login are those already
// online, so they raise none.
class BuddyNotifier : public QObject
{
    Q_OBJECT

public:
    static constexpr int kLoginQuietSeconds = 5;

    BuddyNotifier(TrayService &tray, const Options &options, const Clock &clock,
                  QObject *parent = nullptr);

    void loggedIn();
    void buddyAnnounced(const QString &name);
    void buddyStartedGame(const QString &name);

private:
    void notify(const QString &text);

    TrayService &m_tray;
    const Options &m_options;
    const Clock &m_clock;
    QDateTime m_loginTime;
};

} // namespace client
