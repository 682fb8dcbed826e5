#pragma once

#include <QDateTime>
#include <QObject>

namespace client {

class Clock;
class DesktopNotes;
class Options;

// A desktop message from the tray icon when a buddy comes online or starts a game, while the
// option is on; a click on the note of a started game joins that game. The players announced
// in the first seconds after the login are those already online, so they raise none.
class BuddyNotifier : public QObject
{
    Q_OBJECT

public:
    static constexpr int kLoginQuietSeconds = 5;

    BuddyNotifier(DesktopNotes &notes, const Options &options, const Clock &clock,
                  QObject *parent = nullptr);

    void loggedIn();
    void buddyAnnounced(const QString &name);
    // `address`: the game server's, empty when the lobby did not say.
    void buddyStartedGame(const QString &name, const QString &address);

private:
    DesktopNotes &m_notes;
    const Options &m_options;
    const Clock &m_clock;
    QDateTime m_loginTime;
};

} // namespace client
