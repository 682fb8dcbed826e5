#include "server/net/session.h"

#include "server/core/serverlog.h"
#include "server/net/connection.h"

namespace server {

namespace {
quint64 nextId()
{
    static quint64 counter = 0;
    return ++counter;
}
} // namespace

Session::Session(Connection *connection, QObject *parent)
    : QObject(parent), m_connection(connection), m_id(nextId())
{
    m_connection->setParent(this);
    m_loginDeadline.setSingleShot(true);
    connect(&m_loginDeadline, &QTimer::timeout, this, &Session::loginDeadlinePassed);
    connect(m_connection, &Connection::unsentOverflow, this, [this](qint64 unsent) {
        qCWarning(lcLobby).noquote()
            << sessionTag(*this) << "dropped: does not read," << unsent << "bytes wait for it";
    });
}

void Session::send(const QByteArray &bytes) const
{
    m_connection->send(bytes);
}

void Session::startLoginDeadline(int ms)
{
    if (ms > 0)
        m_loginDeadline.start(ms);
}

QString sessionTag(const Session &session)
{
    return QStringLiteral("session=%1 addr=%2")
        .arg(session.id())
        .arg(session.connection().peerAddress());
}

} // namespace server
