#include "client/app/traycontroller.h"

#include "client/app/form1.h"
#include "client/app/sessionlooks.h"
#include "client/lobby/lobbyconnection.h"
#include "client/platform/trayservice.h"
#include "client/session/sessionstate.h"

namespace client {

TrayController::TrayController(TrayService &tray, Form1 &form, SessionState &session,
                               LobbyConnection &connection, Hooks hooks, QObject *parent)
    : QObject(parent), m_tray(tray), m_form(form), m_session(session), m_connection(connection),
      m_hooks(std::move(hooks))
{
    connect(&m_tray, &TrayService::doubleClicked, this, &TrayController::restoreFromTray);
    connect(&m_form, &Form1::hideRequested, this, &TrayController::hideToTray);
}

void TrayController::addIcon()
{
    m_tray.add(m_form.windowIcon(), SessionLooks::trayTip(false));
}

void TrayController::removeIcon()
{
    m_tray.remove();
}

void TrayController::restoreFromTray()
{
    m_form.showAtNormalSize();
    if (m_form.isMinimized())
        m_form.showNormal();
    if (m_hooks.restoreRoomWindow)
        m_hooks.restoreRoomWindow();
    if (m_connection.isConnected() && !m_session.inGame && m_hooks.sendPresence)
        m_hooks.sendPresence(QStringLiteral("3"));
}

void TrayController::hideToTray()
{
    if (m_connection.isConnected() && !m_session.inGame && m_hooks.sendPresence)
        m_hooks.sendPresence(QStringLiteral("1"));
    if (m_tray.isAvailable())
        m_form.hide();
    else
        m_form.showMinimized();
}

} // namespace client
