#include "client/app/sessionlooks.h"

#include "client/app/form1.h"
#include "client/desktop/trayservice.h"
#include "client/platform/dialogs.h"
#include "client/session/sessionstate.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QLineEdit>

namespace client {

SessionLooks::SessionLooks(Form1 &form, TrayService &tray, SessionState &session, QObject *parent)
    : QObject(parent), m_form(form), m_tray(tray), m_session(session)
{
    connect(&session, &SessionState::onlineChanged, this, &SessionLooks::apply);
}

QString SessionLooks::trayTip(bool online, const QString &user)
{
    QStringList parts{applicationTitle()};
    if (!user.isEmpty())
        parts << user;
    parts << (online ? QStringLiteral("Logged In") : QStringLiteral("Logged out"));
    return parts.join(QStringLiteral(" - "));
}

void SessionLooks::apply(bool online)
{
    m_form.picLogIn->setTag(online ? QStringLiteral("ONLINE") : QStringLiteral("OFFLINE"));
    m_form.picLogIn->setPicture(
        Icons::smallIcon(online ? Icons::LogInOnline : Icons::LogInOffline));
    m_form.picCreateRoom->setVisible(online);
    m_form.picResetStats->setVisible(online);
    m_form.setWindowIcon(Icons::smallIcon(online ? Icons::WindowOnline : Icons::WindowOffline));
    m_tray.modify(m_form.windowIcon(), trayTip(online, m_session.ownName));
    // Logged in, the user's next words go to the chat.
    if (online)
        m_form.txtChatSend->setFocus();
}

} // namespace client
