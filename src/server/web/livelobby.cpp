#include "server/web/livelobby.h"

#include "server/lobby/lobby.h"
#include "server/lobby/roomregistry.h"
#include "server/net/session.h"

namespace server {

LobbySnapshot LobbySnapshot::take(const Lobby &lobby, const RoomRegistry &rooms)
{
    LobbySnapshot snapshot;
    snapshot.players.reserve(lobby.sessions().size());
    for (const Session *session : lobby.sessions()) {
        const server::Player &p = session->player();
        snapshot.indexByAccount.insert(p.accountId, snapshot.players.size());
        snapshot.players.append({p.accountId, p.name, p.presence, p.gameAddress});
    }
    for (const auto &room : rooms.rooms()) {
        snapshot.rooms.append({room->name, room->host->player().accountId, room->hostName,
                               room->members.size(), room->status == protocol::RoomStatus::InGame,
                               !room->password.isEmpty()});
    }
    return snapshot;
}

const LobbySnapshot::Player *LobbySnapshot::findByAccount(int accountId) const
{
    const auto found = indexByAccount.constFind(accountId);
    return found == indexByAccount.cend() ? nullptr : &players[*found];
}

LiveLobby::LiveLobby(const Lobby &lobby, const RoomRegistry &rooms, int intervalMs, QObject *parent)
    : QObject(parent), m_lobby(lobby), m_rooms(rooms),
      m_current(std::make_shared<const LobbySnapshot>())
{
    connect(&m_timer, &QTimer::timeout, this, &LiveLobby::publish);
    m_timer.start(intervalMs);
    publish();
}

std::shared_ptr<const LobbySnapshot> LiveLobby::current() const
{
    const QMutexLocker lock(&m_mutex);
    return m_current;
}

void LiveLobby::publish()
{
    auto next = std::make_shared<const LobbySnapshot>(LobbySnapshot::take(m_lobby, m_rooms));
    std::shared_ptr<const LobbySnapshot> previous;
    const QMutexLocker lock(&m_mutex);
    // The old one goes after the lock, when no page still holds it.
    previous = std::exchange(m_current, std::move(next));
}

} // namespace server
