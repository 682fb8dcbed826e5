#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>

namespace client {

class RoomListModel;
class SessionState;
class TickCount;

// "Tell me when there is room": watches full running games of the room list for a free slot.
// Up to five games at a time, and none while the user is in a game. A watched game's server
// is asked for its status at once and then every 15 s (`statusWanted`; the answer comes back
// through `gameAnswered`); the first answer with a slot free raises `roomFreed` and ends the
// watch. A watch also ends when its game leaves the room list, when its server leaves three
// asks in a row unanswered, or on `stop` (the user joined); all end once the user is in a game.
//
// Time is read from the tick counter. The checks run on `check`, which a timer of this object
// calls every second while a watch stands.
class FullGameWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr int kMaxWatches = 5;
    static constexpr qint64 kAskIntervalMs = 15000;
    static constexpr int kMaxUnanswered = 3;

    FullGameWatch(const RoomListModel &rooms, const SessionState &session, const TickCount &ticks,
                  QObject *parent = nullptr);

    // Whether a watch on the game server at `address` may start: its row is a running game
    // whose last answer said it is full, it is not watched yet, fewer than five are, and the
    // user is in no game.
    bool canWatch(const QString &address) const;
    // Starts the watch when it may; whether it did.
    bool watch(const QString &address);
    void stop(const QString &address);
    bool isWatching(const QString &address) const;
    QStringList watched() const;

public Q_SLOTS:
    void check();
    // A status answer of the game server at `address` came in.
    void gameAnswered(const QString &address, bool full);

Q_SIGNALS:
    void statusWanted(const QString &address);
    void roomFreed(const QString &address);
    void watchesChanged();

private:
    struct Watch
    {
        QString address;
        qint64 askedAt = 0;
        int unanswered = 0; // asks since the last answer
    };

    void ask(Watch &watch);
    qsizetype find(const QString &address) const;
    // Removes the watches that `ends` picks; whether any went.
    bool endWhere(const std::function<bool(const Watch &)> &ends);

    const RoomListModel &m_rooms;
    const SessionState &m_session;
    const TickCount &m_ticks;
    QList<Watch> m_watches;
    QTimer m_checks;
};

} // namespace client
