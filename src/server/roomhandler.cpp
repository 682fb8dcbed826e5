#include "server/roomhandler.h"

#include "server/announcements.h"
#include "server/connection.h"
#include "server/lobby.h"
#include "server/messagerouter.h"
#include "server/roomregistry.h"
#include "server/session.h"

namespace server {

using protocol::Code;
using protocol::Message;

namespace {
void sendToMembers(const Room &room, const QByteArray &bytes, const Session *except = nullptr)
{
    for (const RoomMember &m : room.members) {
        if (m.session != except)
            m.session->send(bytes);
    }
}

QByteArray memberCount(const Room &room)
{
    return protocol::buildMessage(Code::RoomCount,
                                  {room.hostName, QString::number(room.members.size())});
}
} // namespace

RoomHandler::RoomHandler(Lobby &lobby, RoomRegistry &rooms) : m_lobby(lobby), m_rooms(rooms) {}

void RoomHandler::registerWith(MessageRouter &router)
{
    router.setHandler(Code::AddRoom, [this](Session &host, const Message &message) {
        if (m_rooms.roomOf(&host))
            return;
        const Room &room =
            m_rooms.create(&host, relayText(message.field(0), message.field(0).size()),
                           host.connection().peerAddress());
        m_lobby.broadcast(roomAnnouncement(room));
    });

    router.setHandler(Code::JoinRoom, [this](Session &joiner, const Message &message) {
        if (m_rooms.roomOf(&joiner))
            return;
        Room *room = m_rooms.findByHost(message.field(0));
        if (!room)
            return;
        if (!room->password.isEmpty() && room->password != message.field(1)) {
            joiner.send(protocol::buildMessage(Code::WrongPassword));
            return;
        }
        m_rooms.addMember(*room, &joiner);
        QByteArray roster;
        for (const RoomMember &m : room->members)
            roster +=
                protocol::buildMessage(Code::MemberJoined, {m.session->player().name, m.ready});
        joiner.send(roster);
        sendToMembers(
            *room,
            protocol::buildMessage(Code::MemberJoined, {joiner.player().name, QStringLiteral("1")}),
            &joiner);
        m_lobby.broadcast(memberCount(*room));
    });

    router.setHandler(Code::LeaveRoom,
                      [this](Session &member, const Message &) { leaveRoom(member); });

    router.setHandler(Code::RemoveRoom,
                      [this](Session &host, const Message &) { closeRoom(host); });

    router.setHandler(Code::MemberReady, [this](Session &member, const Message &message) {
        const QString state = message.field(0);
        if (state != QLatin1String("1") && state != QLatin1String("2"))
            return;
        Room *room = m_rooms.roomOf(&member);
        if (!room)
            return;
        room->member(&member)->ready = state;
        sendToMembers(*room,
                      protocol::buildMessage(Code::MemberReady, {member.player().name, state}));
    });

    router.setHandler(Code::RoomChat, [this](Session &member, const Message &message) {
        const Room *room = m_rooms.roomOf(&member);
        if (!room)
            return;
        sendToMembers(*room, protocol::buildMessage(
                                 Code::RoomChat, {member.player().name + QStringLiteral(": ") +
                                                  relayText(message.field(0), kMaxRoomChatBytes)}));
    });

    router.setHandler(Code::RoomStatus, [this](Session &host, const Message &message) {
        const QString status = message.field(0);
        if (status != QLatin1String("In chat") && status != QLatin1String("In game"))
            return;
        Room *room = m_rooms.roomOf(&host);
        if (!room || room->host != &host)
            return;
        room->status = status;
        m_lobby.broadcast(protocol::buildMessage(Code::RoomStatus, {room->hostName, status}));
    });

    router.setHandler(Code::LockRoom, [this](Session &host, const Message &message) {
        Room *room = m_rooms.roomOf(&host);
        if (!room || room->host != &host)
            return;
        room->password = message.field(0);
        m_lobby.broadcast(protocol::buildMessage(
            Code::LockRoom, {room->hostName, room->password.isEmpty() ? QStringLiteral("0")
                                                                      : QStringLiteral("1")}));
    });
}

void RoomHandler::leaveOnDeparture(Session &player)
{
    const Room *room = m_rooms.roomOf(&player);
    if (!room)
        return;
    if (room->host == &player)
        closeRoom(player);
    else
        leaveRoom(player);
}

void RoomHandler::closeRoom(Session &host)
{
    const Room *room = m_rooms.roomOf(&host);
    if (!room || room->host != &host)
        return;
    const bool inGame = room->status == QLatin1String("In game");
    m_lobby.broadcast(protocol::buildMessage(
        Code::RemoveRoom, {room->hostName, inGame ? QStringLiteral("1") : QStringLiteral("0")}));
    m_rooms.close(*room);
}

void RoomHandler::leaveRoom(Session &member)
{
    Room *room = m_rooms.roomOf(&member);
    if (!room || room->host == &member)
        return;
    m_rooms.removeMember(*room, &member);
    sendToMembers(*room, protocol::buildMessage(Code::MemberLeft, {member.player().name}));
    m_lobby.broadcast(memberCount(*room));
}

} // namespace server
