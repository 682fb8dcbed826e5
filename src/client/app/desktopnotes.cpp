#include "client/app/desktopnotes.h"

#include "client/desktop/trayservice.h"
#include "client/platform/dialogs.h"

namespace client {

DesktopNotes::DesktopNotes(TrayService &tray, QObject *parent) : QObject(parent), m_tray(tray)
{
    connect(&tray, &TrayService::messageClicked, this, &DesktopNotes::clicked);
}

void DesktopNotes::show(const QString &text)
{
    showJoinOffer(text, {});
}

void DesktopNotes::showJoinOffer(const QString &text, const QString &address)
{
    m_offeredAddress = address;
    m_tray.showMessage(applicationTitle(), text);
}

void DesktopNotes::clicked()
{
    // One click, one join: a second click on the same note starts no second game.
    const QString address = std::exchange(m_offeredAddress, QString());
    if (!address.isEmpty())
        Q_EMIT joinRequested(address);
}

} // namespace client
