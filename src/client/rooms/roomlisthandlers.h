#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

namespace protocol {
struct AddRoomToClient;
struct RemoveRoomToClient;
struct RoomCount;
struct LockRoomToClient;
} // namespace protocol

namespace client {

class LobbyDispatcher;
class RoomListModel;

// The room messages of the lobby ("AR" adds a room, "RR" removes one, "ÖC" changes its
// player count, "LR" locks or unlocks it) and the running-game rows. Room messages find their
// row by the host's name among room rows only, so a running-game row is never touched by
// them. Fields are written as received; only the lock flag of "LR" is read as a number.
class RoomListHandlers : public QObject
{
    Q_OBJECT

public:
    // Answers whether a lobby player is still in the game at an address (the player list's
    // game-address column).
    using GameAddressInUse = std::function<bool(const QString &address)>;

    // Registers the four handlers on `dispatcher`, until this object is destroyed.
    RoomListHandlers(RoomListModel &rooms, LobbyDispatcher &dispatcher,
                     GameAddressInUse gameAddressInUse, QObject *parent = nullptr);
    ~RoomListHandlers() override;

    // Adds a running-game row for a game server address and asks for its status
    // (`gameRowAdded`), unless the address is empty or some row, of either kind, already
    // carries it.
    void addGameRow(const QString &address);
    // Removes the first running-game row of the address, unless a lobby player is still in
    // that game.
    void removeGameRow(const QString &address);

Q_SIGNALS:
    // A running-game row was added: its server's status should be queried.
    void gameRowAdded(const QString &address);
    // The room of `hostName` is closing, before its row goes: when the user is in this room,
    // the room window leaves it as its leave button does.
    void roomClosing(const QString &hostName);

private:
    void onAddRoom(const protocol::AddRoomToClient &message);
    void onRemoveRoom(const protocol::RemoveRoomToClient &message);
    void onRoomCount(const protocol::RoomCount &message);
    void onLockRoom(const protocol::LockRoomToClient &message);

    RoomListModel &m_rooms;
    QPointer<LobbyDispatcher> m_dispatcher;
    GameAddressInUse m_gameAddressInUse;
};

} // namespace client
