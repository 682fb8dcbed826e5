#include "server/lobby/presencehandler.h"

#include "protocol/presence.h"
#include "server/lobby/accountlimits.h"
#include "server/lobby/announcements.h"
#include "server/lobby/presencebroadcaster.h"
#include "server/net/connection.h"
#include "server/net/messagerouter.h"
#include "server/net/session.h"
#include "server/store/accountstore.h"
#include "server/store/buddystore.h"

#include <climits>
#include <optional>

namespace server {

namespace {
// Account ids are positive ints; any other number names no account.
std::optional<int> accountId(qint64 id)
{
    return id > 0 && id <= INT_MAX ? std::optional<int>(int(id)) : std::nullopt;
}

const QString kPresence = QStringLiteral("presence");
const QString kBuddies = QStringLiteral("buddies");
} // namespace

PresenceHandler::PresenceHandler(PresenceBroadcaster &broadcaster, AccountStore &accounts,
                                 BuddyStore &buddies, AccountLimits &limits)
    : m_broadcaster(broadcaster), m_accounts(accounts), m_buddies(buddies), m_limits(limits)
{
}

void PresenceHandler::registerWith(MessageRouter &router)
{
    router.on<protocol::PlayerStatusToServer>(
        [this](Session &sender, const protocol::PlayerStatusToServer &status) {
            Player &player = sender.player();
            if (!m_limits.tryAcquire(player.accountId, kPresence, AccountLimits::kPresence))
                return;
            QString address = relayText(status.gameAddress, kMaxAddressBytes);
            // The client cannot know how others reach it; the server sees its address.
            if (address == QLatin1String("host"))
                address = sender.connection().peerAddress();
            player.presence = status.presence;
            player.gameAddress = address;
            m_broadcaster.changed(sender);
        });

    router.on<protocol::BuddyAdd>([this](Session &sender, const protocol::BuddyAdd &add) {
        const std::optional<int> id = accountId(add.id);
        Player &player = sender.player();
        if (!id || *id == player.accountId || player.buddies.contains(*id))
            return;
        if (!m_limits.tryAcquire(player.accountId, kBuddies, AccountLimits::kBuddies))
            return;
        if (!m_accounts.findById(*id))
            return;
        m_buddies.add(player.accountId, *id);
        player.buddies.insert(*id);
    });

    router.on<protocol::BuddyRemove>([this](Session &sender, const protocol::BuddyRemove &remove) {
        const std::optional<int> id = accountId(remove.id);
        Player &player = sender.player();
        if (!id || !player.buddies.contains(*id))
            return;
        if (!m_limits.tryAcquire(player.accountId, kBuddies, AccountLimits::kBuddies))
            return;
        m_buddies.remove(player.accountId, *id);
        player.buddies.remove(*id);
    });
}

} // namespace server
