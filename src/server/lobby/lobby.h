#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

namespace server {

class Session;

// The logged-in players, in the order they logged in, found by exact name or by account id.
class Lobby
{
public:
    void add(Session *session);
    void remove(Session *session);

    Session *findByName(const QString &name) const { return m_byName.value(name); }
    Session *findByAccount(int accountId) const { return m_byAccount.value(accountId); }
    const QList<Session *> &sessions() const { return m_sessions; }
    qsizetype size() const { return m_sessions.size(); }

    // Sends to every logged-in player except `except`.
    void broadcast(const QByteArray &bytes, const Session *except = nullptr) const;

private:
    QList<Session *> m_sessions;
    QHash<QString, Session *> m_byName;
    QHash<int, Session *> m_byAccount;
};

} // namespace server
