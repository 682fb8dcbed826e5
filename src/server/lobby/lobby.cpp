#include "server/lobby/lobby.h"

#include "server/net/session.h"

namespace server {

void Lobby::add(Session *session)
{
    m_sessions.append(session);
    m_byName.insert(session->player().name, session);
    m_byAccount.insert(session->player().accountId, session);
}

void Lobby::remove(Session *session)
{
    if (!m_sessions.removeOne(session))
        return;
    if (m_byName.value(session->player().name) == session)
        m_byName.remove(session->player().name);
    if (m_byAccount.value(session->player().accountId) == session)
        m_byAccount.remove(session->player().accountId);
}

void Lobby::broadcast(const QByteArray &bytes, const Session *except) const
{
    for (const Session *session : m_sessions) {
        if (session != except)
            session->send(bytes);
    }
}

} // namespace server
