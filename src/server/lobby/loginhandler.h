#pragma once

#include "protocol/login.h"
#include "server/lobby/loginqueue.h"

#include <functional>

namespace server {

struct Account;
class AccountStore;
class BuddyStore;
class Lobby;
struct LobbyConfig;
class LoginThrottle;
class PasswordWorker;
class RefusalLog;
class RegistrationCap;
class RoomRegistry;
class Session;

// The way into the lobby: the version check ("VE"), the login ("LG") with open registration
// and the slow-down of repeated failures, and the welcome of an accepted player: "LT", the
// players, the rooms, then his announcement to everyone else. A second login to the same
// account ends the older session first, through `endSession`.
//
// Password checks wait in a bounded queue that serves addresses in turn; the login deadline
// does not run while a check waits there. An unknown name is checked against a dummy hash so
// that it is refused as slowly as a wrong password, and a check whose connection went away
// still counts as a failure of its address.
//
// Registration is capped per address (RegistrationCap). The login answer has no room for a
// reason, so a player beyond the cap is first told why in the one refusal that carries a
// text the client shows whatever it is doing (a room refusal, shown as a message box), then
// refused; his address is not slowed down for it, since no password was guessed.
class LoginHandler
{
public:
    LoginHandler(const LobbyConfig &config, Lobby &lobby, const RoomRegistry &rooms,
                 AccountStore &accounts, BuddyStore &buddies, PasswordWorker &passwords,
                 LoginThrottle &throttle, RegistrationCap &registrations, RefusalLog &refusals,
                 std::function<void(Session &)> endSession);

    static constexpr auto kTooManyRegistrations =
        "Too many new accounts from your address; try again later.";

    void handleVersion(Session &session, const protocol::Version &version);
    void handleLogin(Session &session, const protocol::Login &login);

private:
    void enqueue(Session &session, const QString &name, const QString &password);
    void check(Session &session, const QString &name, const QString &password,
               LoginQueue::Finished finished);
    void refuse(Session &session);
    void refuseRegistration(Session &session);
    void admit(Session &session, const Account &account);

    const LobbyConfig &m_config;
    Lobby &m_lobby;
    const RoomRegistry &m_rooms;
    AccountStore &m_accounts;
    BuddyStore &m_buddies;
    PasswordWorker &m_passwords;
    LoginThrottle &m_throttle;
    RegistrationCap &m_registrations;
    RefusalLog &m_refusals;
    std::function<void(Session &)> m_endSession;
    LoginQueue m_queue;
};

} // namespace server
