#include "client/presence/playerlisthandlers.h"

#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/wirenumber.h"
#include "client/ui/icons.h"

namespace client {

namespace {

// The status code of a player in `state` (1 away, 2 playing, 3 lobby); "" for any other state.
QString statusCode(const QString &state, bool buddy)
{
    const std::optional<double> value = readWholeNumber(state);
    if (!value || *value < 1 || *value > 3)
        return {};
    return QString::number(3 * (int(*value) - 1) + 1 + (buddy ? 1 : 0));
}

} // namespace

PlayerListHandlers::PlayerListHandlers(PlayerListModel &model, LobbyDispatcher &dispatcher,
                                       QObject *parent)
    : QObject(parent), m_model(model)
{
    using protocol::Code;
    dispatcher.setHandler(Code::AddPlayer, [this](const auto &m) { onAddPlayer(m); });
    dispatcher.setHandler(Code::RemovePlayer, [this](const auto &m) { onRemovePlayer(m); });
    dispatcher.setHandler(Code::PlayerStatus, [this](const auto &m) { onPlayerStatus(m); });
}

void PlayerListHandlers::onAddPlayer(const protocol::Message &message)
{
    const QString gameAddress = message.field(3);
    if (!gameAddress.isEmpty())
        Q_EMIT addGameRowRequested(gameAddress);

    const bool buddy = message.field(4) == QLatin1String("1");
    PlayerListModel::Entry entry;
    entry.texts[PlayerListModel::Name] = message.field(0);
    entry.texts[PlayerListModel::IpToGame] = gameAddress;
    entry.texts[PlayerListModel::EpostHash] = message.field(6);
    entry.texts[PlayerListModel::VanTrue] = buddy ? QStringLiteral("1") : QStringLiteral("0");
    entry.texts[PlayerListModel::PlayerStatus] = statusCode(message.field(2), buddy);
    entry.bold = buddy;
    entry.texts[PlayerListModel::Index] =
        wholeNumberText(readWholeNumber(message.field(1)).value_or(0));
    entry.texts[PlayerListModel::PictureLoaded] = QStringLiteral("0");
    entry.texts[PlayerListModel::Message] = QStringLiteral("0");
    entry.texts[PlayerListModel::PingBild] = QString::number(Icons::OpenRoom);
    if (message.field(5) == QLatin1String("True"))
        entry.colour = QColor(PlayerListModel::kHighlightColour);
    entry.icon = Icons::OpenRoom;
    m_model.addEntry(std::move(entry));
    m_model.countPlayers();
}

void PlayerListHandlers::onRemovePlayer(const protocol::Message &message)
{
    const int row = m_model.findEntry(message.field(0));
    if (row >= 0) {
        bool isNumber = false;
        const qint64 index = m_model.text(row, PlayerListModel::Index).toLongLong(&isNumber);
        if (isNumber)
            Q_EMIT playerLeft(index);
        const QString gameAddress = m_model.text(row, PlayerListModel::IpToGame);
        m_model.removeEntry(row);
        if (!gameAddress.isEmpty())
            Q_EMIT removeGameRowRequested(gameAddress);
    }
    m_model.countPlayers();
}

void PlayerListHandlers::onPlayerStatus(const protocol::Message &message)
{
    const int row = m_model.findEntry(message.field(0));
    if (row < 0)
        return;
    bool isNumber = false;
    const double buddyFlag = m_model.text(row, PlayerListModel::VanTrue).toDouble(&isNumber);
    const bool buddy = isNumber && buddyFlag == 1;
    m_model.setBold(row, buddy);
    const QString code = statusCode(message.field(1), buddy);
    const QString newAddress = message.field(2);
    const QString oldAddress = m_model.text(row, PlayerListModel::IpToGame);
    // The address before the code: a new code moves the entry to another row.
    m_model.setText(row, PlayerListModel::IpToGame, newAddress);
    if (!code.isEmpty())
        m_model.setText(row, PlayerListModel::PlayerStatus, code);

    if (!newAddress.isEmpty())
        Q_EMIT addGameRowRequested(newAddress);
    else if (!oldAddress.isEmpty())
        Q_EMIT removeGameRowRequested(oldAddress);
    m_model.countPlayers();
}

} // namespace client
