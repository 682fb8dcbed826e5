#pragma once

#include "protocol/presence.h"

#include <QHash>
#include <QList>
#include <QMutex>
#include <QObject>
#include <QString>
#include <QTimer>
#include <memory>

namespace server {

class Lobby;
class RoomRegistry;

// What the pages show of the lobby at one moment: who is online, in login order, and the
// open rooms. Never changed once taken, so any thread may read it.
struct LobbySnapshot
{
    struct Player
    {
        int accountId = 0;
        QString name;
        protocol::Presence presence = protocol::Presence::Lobby;
        QString gameAddress;
    };
    struct Room
    {
        QString name;
        int hostId = 0;
        QString hostName;
        qsizetype members = 0;
        bool inGame = false;
        bool locked = false;
    };

    QList<Player> players;
    QList<Room> rooms;
    QHash<int, qsizetype> indexByAccount;

    static LobbySnapshot take(const Lobby &lobby, const RoomRegistry &rooms);
    const Player *findByAccount(int accountId) const;
};

// The lobby as the web pages see it: a snapshot taken on the lobby's thread every
// `intervalMs` and swapped in whole, so that the pages' threads never call into the lobby
// and the lobby never waits for a page longer than a pointer swap.
class LiveLobby : public QObject
{
    Q_OBJECT

public:
    LiveLobby(const Lobby &lobby, const RoomRegistry &rooms, int intervalMs = 1000,
              QObject *parent = nullptr);

    // Any thread.
    std::shared_ptr<const LobbySnapshot> current() const;
    // The lobby's thread: takes a snapshot now.
    void publish();

private:
    const Lobby &m_lobby;
    const RoomRegistry &m_rooms;
    mutable QMutex m_mutex;
    std::shared_ptr<const LobbySnapshot> m_current;
    QTimer m_timer;
};

} // namespace server
