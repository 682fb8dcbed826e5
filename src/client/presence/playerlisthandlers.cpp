#include "client/presence/playerlisthandlers.h"

#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlistmodel.h"
#include "client/ui/icons.h"
#include "protocol/presence.h"

namespace client {

namespace {

// The status code of a player in `presence`; "" for none (a state other than 1, 2 or 3).
QString statusCode(std::optional<protocol::Presence> presence, bool buddy)
{
    if (!presence)
        return {};
    return QString::number(3 * (int(*presence) - 1) + 1 + (buddy ? 1 : 0));
}

} // namespace

PlayerListHandlers::PlayerListHandlers(PlayerListModel &model, LobbyDispatcher &dispatcher,
                                       QObject *parent)
    : QObject(parent), m_model(model)
{
    dispatcher.on<protocol::AddPlayer>([this](const auto &m) { onAddPlayer(m); });
    dispatcher.on<protocol::RemovePlayer>([this](const auto &m) { onRemovePlayer(m); });
    dispatcher.on<protocol::PlayerStatusToClient>([this](const auto &m) { onPlayerStatus(m); });
}

void PlayerListHandlers::onAddPlayer(const protocol::AddPlayer &message)
{
    if (!message.gameAddress.isEmpty())
        Q_EMIT addGameRowRequested(message.gameAddress);

    PlayerListModel::Entry entry;
    entry.texts[PlayerListModel::Name] = message.name;
    entry.texts[PlayerListModel::IpToGame] = message.gameAddress;
    entry.texts[PlayerListModel::EpostHash] = message.emailHash;
    entry.buddy = message.buddy;
    entry.texts[PlayerListModel::PlayerStatus] = statusCode(message.presence, message.buddy);
    entry.bold = message.buddy;
    entry.id = message.id;
    entry.texts[PlayerListModel::PictureLoaded] = QStringLiteral("0");
    entry.texts[PlayerListModel::Message] = QStringLiteral("0");
    entry.savedIcon = Icons::OpenRoom;
    if (message.highlighted)
        entry.colour = QColor(PlayerListModel::kHighlightColour);
    entry.icon = Icons::OpenRoom;
    m_model.addEntry(std::move(entry));
    m_model.countPlayers();
    if (message.buddy)
        Q_EMIT buddyAnnounced(message.name);
}

void PlayerListHandlers::onRemovePlayer(const protocol::RemovePlayer &message)
{
    const int row = m_model.findEntry(message.name);
    if (row >= 0) {
        if (const std::optional<qint64> id = m_model.id(row))
            Q_EMIT playerLeft(*id);
        const QString gameAddress = m_model.text(row, PlayerListModel::IpToGame);
        m_model.removeEntry(row);
        if (!gameAddress.isEmpty())
            Q_EMIT removeGameRowRequested(gameAddress);
    }
    m_model.countPlayers();
}

void PlayerListHandlers::onPlayerStatus(const protocol::PlayerStatusToClient &message)
{
    const int row = m_model.findEntry(message.name);
    if (row < 0)
        return;
    const bool buddy = m_model.isBuddy(row);
    m_model.setBold(row, buddy);
    const QString code = statusCode(message.presence, buddy);
    const QString oldAddress = m_model.text(row, PlayerListModel::IpToGame);
    const QString oldCode = m_model.text(row, PlayerListModel::PlayerStatus);
    // The address before the code: a new code moves the entry to another row.
    m_model.setText(row, PlayerListModel::IpToGame, message.gameAddress);
    if (!code.isEmpty())
        m_model.setText(row, PlayerListModel::PlayerStatus, code);

    if (!message.gameAddress.isEmpty())
        Q_EMIT addGameRowRequested(message.gameAddress);
    else if (!oldAddress.isEmpty())
        Q_EMIT removeGameRowRequested(oldAddress);
    m_model.countPlayers();
    if (buddy && message.presence == protocol::Presence::Playing && oldCode != code)
        Q_EMIT buddyStartedGame(message.name);
}

} // namespace client
