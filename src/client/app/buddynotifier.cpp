#include "client/app/buddynotifier.h"

#include "client/app/desktopnotes.h"
#include "client/platform/clock.h"
#include "client/settings/options.h"

namespace client {

BuddyNotifier::BuddyNotifier(DesktopNotes &notes, const Options &options, const Clock &clock,
                             QObject *parent)
    : QObject(parent), m_notes(notes), m_options(options), m_clock(clock)
{
}

void BuddyNotifier::loggedIn()
{
    m_loginTime = m_clock.now();
}

void BuddyNotifier::buddyAnnounced(const QString &name)
{
    if (m_options.buddyNotifications() && m_loginTime.isValid() &&
        m_loginTime.secsTo(m_clock.now()) >= kLoginQuietSeconds)
        m_notes.show(QStringLiteral("%1 is online").arg(name));
}

void BuddyNotifier::buddyStartedGame(const QString &name, const QString &address)
{
    if (m_options.buddyNotifications())
        m_notes.showJoinOffer(QStringLiteral("%1 has started a game").arg(name), address);
}

} // namespace client
