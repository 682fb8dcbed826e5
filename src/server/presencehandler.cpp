#include "server/presencehandler.h"

#include "server/accountstore.h"
#include "server/buddystore.h"
#include "server/connection.h"
#include "server/lobby.h"
#include "server/messagerouter.h"
#include "server/session.h"

#include <optional>

namespace server {

using protocol::Code;
using protocol::Message;

namespace {
std::optional<int> accountIdField(const QString &text)
{
    bool ok = false;
    const int id = text.toInt(&ok);
    return ok && id > 0 ? std::optional<int>(id) : std::nullopt;
}
} // namespace

PresenceHandler::PresenceHandler(Lobby &lobby, AccountStore &accounts, BuddyStore &buddies)
    : m_lobby(lobby), m_accounts(accounts), m_buddies(buddies)
{
}

void PresenceHandler::registerWith(MessageRouter &router)
{
    router.setHandler(Code::PlayerStatus, [this](Session &sender, const Message &message) {
        const QString state = message.field(0);
        if (state != QLatin1String("1") && state != QLatin1String("2") &&
            state != QLatin1String("3"))
            return;
        QString address = message.field(1);
        // The client cannot know how others reach it; the server sees its address.
        if (address == QLatin1String("host"))
            address = sender.connection().peerAddress();
        Player &player = sender.player();
        player.presence = state;
        player.gameAddress = address;
        m_lobby.broadcast(
            protocol::buildMessage(Code::PlayerStatus, {player.name, state, address}));
    });

    router.setHandler(Code::BuddyAdd, [this](Session &sender, const Message &message) {
        const std::optional<int> id = accountIdField(message.field(0));
        Player &player = sender.player();
        if (!id || *id == player.accountId || player.buddies.contains(*id))
            return;
        if (!m_accounts.findById(*id))
            return;
        if (m_buddies.add(player.accountId, *id))
            player.buddies.insert(*id);
    });

    router.setHandler(Code::BuddyRemove, [this](Session &sender, const Message &message) {
        const std::optional<int> id = accountIdField(message.field(0));
        Player &player = sender.player();
        if (!id)
            return;
        if (m_buddies.remove(player.accountId, *id))
            player.buddies.remove(*id);
    });
}

} // namespace server
