#include "client/app/traycontroller.h"

#include "client/app/form1.h"
#include "client/app/sessionlooks.h"
#include "client/desktop/trayservice.h"
#include "client/lobby/lobbyconnection.h"
#include "client/presence/lobbychat.h"
#include "client/presence/presence.h"
#include "client/session/sessionstate.h"

#include <QEvent>

namespace client {

TrayController::TrayController(TrayService &tray, Form1 &form, SessionState &session,
                               LobbyConnection &connection, LobbyChat &chat, QObject *parent)
    : QObject(parent), m_tray(tray), m_form(form), m_session(session), m_connection(connection),
      m_chat(chat)
{
    connect(&m_tray, &TrayService::showRequested, this, &TrayController::restoreFromTray);
    connect(&m_tray, &TrayService::quitRequested, &m_form, &QWidget::close);
    connect(&m_form, &Form1::hideRequested, this, &TrayController::hideToTray);
    m_form.installEventFilter(this);
}

void TrayController::addIcon()
{
    m_tray.add(m_form.windowIcon(), SessionLooks::trayTip(false, m_session.ownName));
}

void TrayController::removeIcon()
{
    m_tray.remove();
}

void TrayController::restoreFromTray()
{
    m_minimisedInstead = false;
    m_form.showAtNormalSize();
    if (m_form.isMinimized())
        m_form.showNormal();
    cameBack();
}

void TrayController::hideToTray()
{
    if (presenceWanted())
        sendPresence(m_connection, Presence::Away);
    if (m_tray.isAvailable()) {
        m_form.hide();
        return;
    }
    if (!m_toldNoTray) {
        m_toldNoTray = true;
        m_chat.addStatusLine(
            tr("There is no notification area on this desktop: hiding minimises the window."));
    }
    m_minimisedInstead = true;
    m_form.showMinimized();
}

bool TrayController::eventFilter(QObject *watched, QEvent *event)
{
    // Only the minimising done by hiding counts; the user's own minimising sends nothing.
    if (watched == &m_form && event->type() == QEvent::WindowStateChange && m_minimisedInstead &&
        !m_form.isMinimized()) {
        m_minimisedInstead = false;
        cameBack();
    }
    return QObject::eventFilter(watched, event);
}

void TrayController::cameBack()
{
    Q_EMIT restored();
    if (presenceWanted())
        sendPresence(m_connection, Presence::Lobby);
}

bool TrayController::presenceWanted() const
{
    return m_connection.isConnected() && !m_session.inGame;
}

} // namespace client
