#pragma once

namespace server {

class AccountLimits;
class Lobby;
class MessageRouter;
class RoomRegistry;
class Session;

// Creating, joining, leaving, closing and running rooms. A message from a player who may
// not send it (a member locking, a player in no room chatting in one) changes nothing and
// sends nothing.
class RoomHandler
{
public:
    RoomHandler(Lobby &lobby, RoomRegistry &rooms, AccountLimits &limits);
    void registerWith(MessageRouter &router);

    // A departing player leaves his room: as its host the room closes, as a member he leaves.
    void leaveOnDeparture(Session &player);

private:
    void closeRoom(Session &host);
    void leaveRoom(Session &member);

    Lobby &m_lobby;
    RoomRegistry &m_rooms;
    AccountLimits &m_limits;
};

} // namespace server
