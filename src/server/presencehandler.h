#pragma once

namespace server {

class AccountLimits;
class AccountStore;
class BuddyStore;
class Lobby;
class MessageRouter;

// Players' presence ("PS") and buddy lists ("BA", "BR").
class PresenceHandler
{
public:
    PresenceHandler(Lobby &lobby, AccountStore &accounts, BuddyStore &buddies,
                    AccountLimits &limits);
    void registerWith(MessageRouter &router);

private:
    Lobby &m_lobby;
    AccountStore &m_accounts;
    BuddyStore &m_buddies;
    AccountLimits &m_limits;
};

} // namespace server
