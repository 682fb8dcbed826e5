#pragma once

#include "protocol/rooms.h"

#include <QList>
#include <QString>
#include <memory>
#include <vector>

namespace server {

class Session;

struct RoomMember
{
    Session *session;
    protocol::ReadyState ready = protocol::ReadyState::NotReady;
};

// A room is keyed by its host's name; the host is its first member.
struct Room
{
    Session *host = nullptr;
    QString hostName;
    QString name;
    QString address;
    protocol::RoomStatus status = protocol::RoomStatus::InChat;
    QString password; // empty: open
    QList<RoomMember> members;

    RoomMember *member(const Session *session);
};

// The open rooms in the order they were created, and who is in which. A player hosts or
// belongs to at most one room.
class RoomRegistry
{
public:
    Room &create(Session *host, const QString &name, const QString &address);
    Room *findByHost(const QString &hostName) const;
    Room *roomOf(const Session *session) const;
    void addMember(Room &room, Session *session);
    void removeMember(Room &room, const Session *session);
    void close(const Room &room);

    const std::vector<std::unique_ptr<Room>> &rooms() const { return m_rooms; }

private:
    std::vector<std::unique_ptr<Room>> m_rooms;
};

} // namespace server
