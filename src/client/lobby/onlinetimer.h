#pragma once

#include <QObject>
#include <chrono>

class QTimer;

namespace client {

class SessionState;

// `Timer1`: ticks every 10 s while the player is logged in (the session's logged-in flag) and
// is stopped otherwise. The keep-alive counts its ticks; in-game detection runs on them too.
class OnlineTimer : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kInterval{10000};

    explicit OnlineTimer(SessionState &session, std::chrono::milliseconds interval = kInterval,
                         QObject *parent = nullptr);

    bool isActive() const;

Q_SIGNALS:
    void tick();

private:
    QTimer *m_timer;
};

} // namespace client
