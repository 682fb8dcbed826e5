#pragma once

#include "protocol/login.h"

#include <functional>

namespace server {

struct Account;
class AccountStore;
class BuddyStore;
class Lobby;
struct LobbyConfig;
class LoginThrottle;
class PasswordWorker;
class RoomRegistry;
class Session;

// The way into the lobby: the version check ("VE"), the login ("LG") with open registration
// and the slow-down of repeated failures, and the welcome of an accepted player: "LT", the
// players, the rooms, then his announcement to everyone else. A second login to the same
// account ends the older session first, through `endSession`.
class LoginHandler
{
public:
    LoginHandler(const LobbyConfig &config, Lobby &lobby, const RoomRegistry &rooms,
                 AccountStore &accounts, BuddyStore &buddies, PasswordWorker &passwords,
                 LoginThrottle &throttle, std::function<void(Session &)> endSession);

    void handleVersion(Session &session, const protocol::Version &version);
    void handleLogin(Session &session, const protocol::Login &login);

    // Names that open registration accepts: 1 to kMaxNameLength characters, no control
    // characters, no blanks at either end, not the service account's name.
    static bool isRegistrableName(const QString &name);
    static constexpr int kMaxNameLength = 32;

private:
    void checkLogin(Session &session, const QString &name, const QString &password);
    void refuse(Session &session);
    void admit(Session &session, const Account &account);

    const LobbyConfig &m_config;
    Lobby &m_lobby;
    const RoomRegistry &m_rooms;
    AccountStore &m_accounts;
    BuddyStore &m_buddies;
    PasswordWorker &m_passwords;
    LoginThrottle &m_throttle;
    std::function<void(Session &)> m_endSession;
};

} // namespace server
