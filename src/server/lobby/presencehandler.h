#pragma once

namespace server {

class AccountLimits;
class AccountStore;
class BuddyStore;
class MessageRouter;
class PresenceBroadcaster;

// Players' presence ("PS") and buddy lists ("BA", "BR").
class PresenceHandler
{
public:
    PresenceHandler(PresenceBroadcaster &broadcaster, AccountStore &accounts, BuddyStore &buddies,
                    AccountLimits &limits);
    void registerWith(MessageRouter &router);

private:
    PresenceBroadcaster &m_broadcaster;
    AccountStore &m_accounts;
    BuddyStore &m_buddies;
    AccountLimits &m_limits;
};

} // namespace server
