#pragma once

#include <QObject>

namespace client {

class LobbyConnection;
class OnlineTimer;
class SessionState;

// The lobby keep-alive: every third tick of the 10-second timer `Timer1` (every
// 30 s while logged in) sends "PI", so that the server does not end a quiet session. The
// counter is the session's `keepAliveTicks`, which starts at 1 at start-up and is not reset
// at login, so the first "PI" goes out on the third tick.
class KeepAlive : public QObject
{
    Q_OBJECT

public:
    KeepAlive(OnlineTimer &timer1, SessionState &session, LobbyConnection &connection,
              QObject *parent = nullptr);

    void tick();

private:
    SessionState &m_session;
    LobbyConnection &m_connection;
};

} // namespace client
