#include "server/lobby/roomregistry.h"

#include "server/net/session.h"

#include <algorithm>

namespace server {

RoomMember *Room::member(const Session *session)
{
    for (RoomMember &m : members) {
        if (m.session == session)
            return &m;
    }
    return nullptr;
}

Room &RoomRegistry::create(Session *host, const QString &name, const QString &address)
{
    auto room = std::make_unique<Room>();
    room->host = host;
    room->hostName = host->player().name;
    room->name = name;
    room->address = address;
    room->members.append({host, protocol::ReadyState::NotReady});
    m_rooms.push_back(std::move(room));
    return *m_rooms.back();
}

Room *RoomRegistry::findByHost(const QString &hostName) const
{
    for (const auto &room : m_rooms) {
        if (room->hostName == hostName)
            return room.get();
    }
    return nullptr;
}

Room *RoomRegistry::roomOf(const Session *session) const
{
    for (const auto &room : m_rooms) {
        if (room->member(session))
            return room.get();
    }
    return nullptr;
}

void RoomRegistry::addMember(Room &room, Session *session)
{
    room.members.append({session, protocol::ReadyState::NotReady});
}

void RoomRegistry::removeMember(Room &room, const Session *session)
{
    room.members.removeIf([session](const RoomMember &m) { return m.session == session; });
}

void RoomRegistry::close(const Room &room)
{
    std::erase_if(m_rooms, [&room](const auto &r) { return r.get() == &room; });
}

} // namespace server
