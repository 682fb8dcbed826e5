#pragma once

#include <QObject>

namespace client {

class Form1;
class SessionState;
class TrayService;

// The online and offline looks of the main window and the tray icon, following the session's
// logged-in flag: the log-in button's tag and picture, the room and reset buttons shown only
// while logged in, the window and tray icon and the tray tip. The statistics button keeps its
// state.
class SessionLooks : public QObject
{
    Q_OBJECT

public:
    SessionLooks(Form1 &form, TrayService &tray, SessionState &session, QObject *parent = nullptr);

    void apply(bool online);
    // The tray's tool tip: the program, the user who logged in last (when any) and "Logged In"
    // or "Logged out".
    static QString trayTip(bool online, const QString &user = {});

private:
    Form1 &m_form;
    TrayService &m_tray;
    const SessionState &m_session;
};

} // namespace client
