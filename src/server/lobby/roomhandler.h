#pragma once

#include "protocol/rooms.h"
#include "server/lobby/spacedsender.h"

namespace server {

class AccountLimits;
class Lobby;
class MessageRouter;
class RoomRegistry;
class Session;

// Creating, joining, leaving, closing and running rooms. A message from a player who may
// not send it (a member locking, a player in no room chatting in one) changes nothing and
// sends nothing.
//
// What a player says about himself always changes the room on the server: leaving, closing
// and ready changes are never dropped, since his client has already acted on them. Only
// what reaches others is limited: creating, joining, locking and status changes count
// against the room-change limit (each leave or close follows a create or join that
// counted), room chat against its own, and a member's ready changes reach the room at most
// about once per spacing, as his latest state.
class RoomHandler
{
public:
    RoomHandler(Lobby &lobby, RoomRegistry &rooms, AccountLimits &limits, int readySpacingMs);
    void registerWith(MessageRouter &router);

    // A departing player leaves his room: as its host the room closes, as a member he leaves.
    void leaveOnDeparture(Session &player);

private:
    void addRoom(Session &host, const protocol::AddRoomToServer &add);
    void join(Session &joiner, const protocol::JoinRoom &join);
    void leave(Session &member, const protocol::LeaveRoom &leave);
    void remove(Session &host, const protocol::RemoveRoomToServer &remove);
    void setReady(Session &member, const protocol::MemberReadyToServer &ready);
    void chat(Session &member, const protocol::RoomChat &chat);
    void setStatus(Session &host, const protocol::RoomStatusToServer &status);
    void lock(Session &host, const protocol::LockRoomToServer &lock);

    // Every change that is announced to the whole lobby counts against one limit.
    bool mayChange(const Session &player);
    bool mayChat(const Session &player);
    void sendReady(const Session &member);
    void closeRoom(Session &host);
    void leaveRoom(Session &member);

    Lobby &m_lobby;
    RoomRegistry &m_rooms;
    AccountLimits &m_limits;
    SpacedSender m_readyChanges;
};

} // namespace server
