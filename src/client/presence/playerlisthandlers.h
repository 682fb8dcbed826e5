#pragma once

#include <QObject>

namespace protocol {
struct AddPlayer;
struct RemovePlayer;
struct PlayerStatusToClient;
} // namespace protocol

namespace client {

class LobbyDispatcher;
class PlayerListModel;

// The lobby's presence traffic: "AN" announces a player, "RN" withdraws one, "PS" moves one
// between the lobby, a game and away. Each updates the player list, then recounts the groups.
// Values that cannot be read as numbers are taken as absent (empty code, index "0").
//
// The room list's running-game rows and the pager are not touched directly: the handlers say
// what happened through the signals below.
class PlayerListHandlers : public QObject
{
    Q_OBJECT

public:
    // Registers the three handlers on `dispatcher`; `model` and `dispatcher` must outlive this.
    PlayerListHandlers(PlayerListModel &model, LobbyDispatcher &dispatcher,
                       QObject *parent = nullptr);

Q_SIGNALS:
    // A player was seen on the game server `address` (never empty): the room list adds a
    // running-game row for it unless it has one.
    void addGameRowRequested(const QString &address);
    // A player no longer carries `address` (never empty): the room list drops its
    // running-game row when no entry of the player list still has that address.
    void removeGameRowRequested(const QString &address);
    // The player whose id is `index` left the lobby: the pager hides itself if it shows them.
    void playerLeft(qint64 index);
    // A buddy was announced, or a buddy who was not in a game went into one.
    void buddyAnnounced(const QString &name);
    void buddyStartedGame(const QString &name);

private:
    void onAddPlayer(const protocol::AddPlayer &message);
    void onRemovePlayer(const protocol::RemovePlayer &message);
    void onPlayerStatus(const protocol::PlayerStatusToClient &message);

    PlayerListModel &m_model;
};

} // namespace client
