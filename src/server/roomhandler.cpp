#include "server/roomhandler.h"

#include "protocol/rooms.h"
#include "server/announcements.h"
#include "server/connection.h"
#include "server/lobby.h"
#include "server/messagerouter.h"
#include "server/roomregistry.h"
#include "server/session.h"

namespace server {

using namespace protocol;

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
    return RoomCount{.host = room.hostName, .playerCount = QString::number(room.members.size())}
        .encode();
}
} // namespace

RoomHandler::RoomHandler(Lobby &lobby, RoomRegistry &rooms) : m_lobby(lobby), m_rooms(rooms) {}

void RoomHandler::registerWith(MessageRouter &router)
{
    router.on<AddRoomToServer>([this](Session &host, const AddRoomToServer &add) {
        if (m_rooms.roomOf(&host))
            return;
        const Room &room = m_rooms.create(&host, relayText(add.roomName, add.roomName.size()),
                                          host.connection().peerAddress());
        m_lobby.broadcast(roomAnnouncement(room));
    });

    router.on<JoinRoom>([this](Session &joiner, const JoinRoom &join) {
        if (m_rooms.roomOf(&joiner))
            return;
        Room *room = m_rooms.findByHost(join.host);
        if (!room)
            return;
        if (!room->password.isEmpty() && room->password != join.password) {
            joiner.send(WrongPassword{}.encode());
            return;
        }
        m_rooms.addMember(*room, &joiner);
        QByteArray roster;
        for (const RoomMember &m : room->members)
            roster += MemberJoined{.name = m.session->player().name, .state = m.ready}.encode();
        joiner.send(roster);
        sendToMembers(
            *room,
            MemberJoined{.name = joiner.player().name, .state = ReadyState::NotReady}.encode(),
            &joiner);
        m_lobby.broadcast(memberCount(*room));
    });

    router.on<LeaveRoom>([this](Session &member, const LeaveRoom &) { leaveRoom(member); });

    router.on<RemoveRoomToServer>(
        [this](Session &host, const RemoveRoomToServer &) { closeRoom(host); });

    router.on<MemberReadyToServer>([this](Session &member, const MemberReadyToServer &ready) {
        Room *room = m_rooms.roomOf(&member);
        if (!room)
            return;
        room->member(&member)->ready = ready.state;
        sendToMembers(
            *room,
            MemberReadyToClient{.name = member.player().name, .state = ready.state}.encode());
    });

    router.on<RoomChat>([this](Session &member, const RoomChat &chat) {
        const Room *room = m_rooms.roomOf(&member);
        if (!room)
            return;
        sendToMembers(*room, RoomChat{member.player().name + QStringLiteral(": ") +
                                      relayText(chat.text, kMaxRoomChatBytes)}
                                 .encode());
    });

    router.on<RoomStatusToServer>([this](Session &host, const RoomStatusToServer &status) {
        Room *room = m_rooms.roomOf(&host);
        if (!room || room->host != &host)
            return;
        room->status = status.status;
        m_lobby.broadcast(
            RoomStatusToClient{.host = room->hostName, .status = roomStatusText(status.status)}
                .encode());
    });

    router.on<LockRoomToServer>([this](Session &host, const LockRoomToServer &lock) {
        Room *room = m_rooms.roomOf(&host);
        if (!room || room->host != &host)
            return;
        room->password = lock.password;
        m_lobby.broadcast(
            LockRoomToClient{.host = room->hostName, .locked = !room->password.isEmpty()}.encode());
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
    m_lobby.broadcast(
        RemoveRoomToClient{.host = room->hostName, .inGame = room->status == RoomStatus::InGame}
            .encode());
    m_rooms.close(*room);
}

void RoomHandler::leaveRoom(Session &member)
{
    Room *room = m_rooms.roomOf(&member);
    if (!room || room->host == &member)
        return;
    m_rooms.removeMember(*room, &member);
    sendToMembers(*room, MemberLeft{member.player().name}.encode());
    m_lobby.broadcast(memberCount(*room));
}

} // namespace server
