#include "server/loginhandler.h"

#include "server/accountstore.h"
#include "server/announcements.h"
#include "server/buddystore.h"
#include "server/connection.h"
#include "server/lobby.h"
#include "server/lobbyconfig.h"
#include "server/loginthrottle.h"
#include "server/passwordhash.h"
#include "server/roomregistry.h"
#include "server/serviceaccount.h"
#include "server/session.h"

#include <QPointer>
#include <QTimer>

namespace server {

LoginHandler::LoginHandler(const LobbyConfig &config, Lobby &lobby, const RoomRegistry &rooms,
                           AccountStore &accounts, BuddyStore &buddies, PasswordWorker &passwords,
                           LoginThrottle &throttle, std::function<void(Session &)> endSession)
    : m_config(config), m_lobby(lobby), m_rooms(rooms), m_accounts(accounts), m_buddies(buddies),
      m_passwords(passwords), m_throttle(throttle), m_endSession(std::move(endSession))
{
}

bool LoginHandler::isRegistrableName(const QString &name)
{
    if (name.isEmpty() || name.size() > kMaxNameLength || name.trimmed() != name)
        return false;
    if (AccountStore::nameKey(name) == AccountStore::nameKey(kServiceAccountName))
        return false;
    for (const QChar c : name) {
        if (c.category() == QChar::Other_Control)
            return false;
    }
    return true;
}

void LoginHandler::handleVersion(Session &session, const protocol::Version &version)
{
    if (session.stage() != Session::Stage::New)
        return;
    if (m_config.versions.contains(version.version)) {
        session.setStage(Session::Stage::Versioned);
        session.send(protocol::SendLogin{}.encode());
        return;
    }
    session.send(protocol::OldVersion{}.encode());
    m_endSession(session);
}

void LoginHandler::handleLogin(Session &session, const protocol::Login &login)
{
    if (session.stage() != Session::Stage::Versioned || session.loginPending())
        return;
    session.setLoginPending(true);
    const QString name = login.name;
    const QString password = login.password;
    const qint64 delay = m_throttle.delayFor(session.connection().peerAddress());
    if (delay <= 0) {
        checkLogin(session, name, password);
        return;
    }
    QPointer<Session> guard(&session);
    QTimer::singleShot(delay, &session, [this, guard, name, password] {
        if (guard && guard->stage() == Session::Stage::Versioned)
            checkLogin(*guard, name, password);
    });
}

void LoginHandler::checkLogin(Session &session, const QString &name, const QString &password)
{
    QPointer<Session> guard(&session);
    if (const std::optional<Account> account = m_accounts.findByName(name)) {
        const int id = account->id;
        m_passwords.verify(account->passwordHash, password, &session,
                           [this, guard, id](bool accepted) {
                               if (!guard || guard->stage() != Session::Stage::Versioned)
                                   return;
                               // Read again: the account may have changed while hashing.
                               const std::optional<Account> current = m_accounts.findById(id);
                               if (accepted && current)
                                   admit(*guard, *current);
                               else
                                   refuse(*guard);
                           });
        return;
    }
    if (!m_config.openRegistration || !isRegistrableName(name) || password.isEmpty()) {
        refuse(session);
        return;
    }
    m_passwords.hash(password, &session, [this, guard, name](const QByteArray &hash) {
        if (!guard || guard->stage() != Session::Stage::Versioned)
            return;
        // A second registration of the same name in the meantime loses here.
        const std::optional<Account> created =
            hash.isEmpty() ? std::nullopt : m_accounts.create(name, hash);
        if (created)
            admit(*guard, *created);
        else
            refuse(*guard);
    });
}

void LoginHandler::refuse(Session &session)
{
    session.setLoginPending(false);
    m_throttle.recordFailure(session.connection().peerAddress());
    session.send(protocol::LoginFailed{}.encode());
}

void LoginHandler::admit(Session &session, const Account &account)
{
    session.setLoginPending(false);
    m_throttle.recordSuccess(session.connection().peerAddress());
    if (Session *older = m_lobby.findByAccount(account.id))
        m_endSession(*older);

    Player &player = session.player();
    player.accountId = account.id;
    player.name = account.name;
    player.moderator = account.moderator;
    player.chatColour = account.chatColour;
    player.emailHash = emailHash(account.email, account.name);
    player.buddies = m_buddies.buddiesOf(account.id);
    session.setStage(Session::Stage::LoggedIn);
    session.stopLoginDeadline();
    session.connection().setSilenceLimit(m_config.idleTimeoutMs);
    m_lobby.add(&session);

    QByteArray welcome =
        protocol::LoginAccepted{.statsId = QString::number(account.id), .name = account.name}
            .encode();
    for (const Session *other : m_lobby.sessions()) {
        const Player &p = other->player();
        welcome += playerAnnouncement(p, player.buddies.contains(p.accountId));
    }
    for (const auto &room : m_rooms.rooms())
        welcome += roomAnnouncement(*room);
    session.send(welcome);

    const QByteArray asBuddy = playerAnnouncement(player, true);
    const QByteArray asOther = playerAnnouncement(player, false);
    for (const Session *other : m_lobby.sessions()) {
        if (other != &session)
            other->send(other->player().buddies.contains(account.id) ? asBuddy : asOther);
    }
}

} // namespace server
