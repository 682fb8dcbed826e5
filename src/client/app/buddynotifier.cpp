#include "client/app/buddynotifier.h"

#include "client/desktop/trayservice.h"
#include "client/platform/clock.h"
#include "client/platform/dialogs.h"
#include "client/settings/options.h"

namespace client {

BuddyNotifier::BuddyNotifier(TrayService &tray, const Options &options, const Clock &clock,
                             QObject *parent)
    : QObject(parent), m_tray(tray), m_options(options), m_clock(clock)
{
}

void BuddyNotifier::loggedIn()
{
    m_loginTime = m_clock.now();
}

void BuddyNotifier::buddyAnnounced(const QString &name)
{
    if (m_loginTime.isValid() && m_loginTime.secsTo(m_clock.now()) >= kLoginQuietSeconds)
        notify(QStringLiteral("%1 is online").arg(name));
}

void BuddyNotifier::buddyStartedGame(const QString &name)
{
    notify(QStringLiteral("%1 has started a game").arg(name));
}

void BuddyNotifier::notify(const QString &text)
{
    if (m_options.buddyNotifications())
        m_tray.showMessage(applicationTitle(), text);
}

} // namespace client
