#include "client/lobby/onlinetimer.h"

#include "client/session/sessionstate.h"

#include <QTimer>

namespace client {

OnlineTimer::OnlineTimer(SessionState &session, std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent), m_timer(new QTimer(this))
{
    m_timer->setObjectName(QStringLiteral("Timer1"));
    m_timer->setInterval(interval);
    connect(m_timer, &QTimer::timeout, this, &OnlineTimer::tick);
    connect(&session, &SessionState::onlineChanged, this,
            [this](bool online) { online ? m_timer->start() : m_timer->stop(); });
    if (session.isOnline())
        m_timer->start();
}

bool OnlineTimer::isActive() const
{
    return m_timer->isActive();
}

} // namespace client
