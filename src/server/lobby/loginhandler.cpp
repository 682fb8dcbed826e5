#include "server/lobby/loginhandler.h"

#include "protocol/rooms.h"
#include "server/core/serverlog.h"
#include "server/lobby/announcements.h"
#include "server/lobby/lobby.h"
#include "server/lobby/lobbyconfig.h"
#include "server/lobby/loginthrottle.h"
#include "server/lobby/registrationcap.h"
#include "server/lobby/roomregistry.h"
#include "server/net/connection.h"
#include "server/net/session.h"
#include "server/store/accountstore.h"
#include "server/store/buddystore.h"
#include "server/store/passwordhash.h"
#include "server/store/playernames.h"

#include <QPointer>
#include <QTimer>

namespace server {

LoginHandler::LoginHandler(const LobbyConfig &config, Lobby &lobby, const RoomRegistry &rooms,
                           AccountStore &accounts, BuddyStore &buddies, PasswordWorker &passwords,
                           LoginThrottle &throttle, RegistrationCap &registrations,
                           RefusalLog &refusals, std::function<void(Session &)> endSession)
    : m_config(config), m_lobby(lobby), m_rooms(rooms), m_accounts(accounts), m_buddies(buddies),
      m_passwords(passwords), m_throttle(throttle), m_registrations(registrations),
      m_refusals(refusals), m_endSession(std::move(endSession)),
      m_queue(passwords.threads(), config.maxConnectionsPerAddress, config.maxQueuedLogins)
{
    // Made now, so that the first unknown name is not refused more slowly than the rest.
    m_passwords.dummyHash();
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
    const qint64 delay = m_throttle.reserveTurn(session.connection().peerAddress());
    if (delay <= 0) {
        enqueue(session, name, password);
        return;
    }
    qCInfo(lcLogin).noquote() << sessionTag(session) << "login slowed down by" << delay << "ms";
    QPointer<Session> guard(&session);
    QTimer::singleShot(delay, &session, [this, guard, name, password] {
        if (guard && guard->stage() == Session::Stage::Versioned)
            enqueue(*guard, name, password);
    });
}

void LoginHandler::enqueue(Session &session, const QString &name, const QString &password)
{
    const QString address = session.connection().peerAddress();
    QPointer<Session> guard(&session);
    const bool queued = m_queue.add(
        address, &session,
        [this, guard, name, password](LoginQueue::Finished finished) {
            check(*guard, name, password, std::move(finished));
        },
        [this, address] { m_throttle.recordFailure(address); });
    if (!queued) {
        m_refusals.refused(address, QStringLiteral("login: too many password checks waiting"));
        refuse(session);
        return;
    }
    // Waiting for the server's own work is not the client's delay.
    if (guard)
        guard->stopLoginDeadline();
}

void LoginHandler::check(Session &session, const QString &name, const QString &password,
                         LoginQueue::Finished finished)
{
    QPointer<Session> guard(&session);
    const QString address = session.connection().peerAddress();
    if (session.stage() != Session::Stage::Versioned) { // gone while it waited
        m_throttle.recordFailure(address);
        finished();
        return;
    }
    const std::optional<Account> account = m_accounts.findByName(name);
    const bool registers =
        !account && m_config.openRegistration && isAcceptableName(name) && !password.isEmpty();
    if (registers && !m_registrations.tryRegister(address)) {
        finished();
        refuseRegistration(session);
        return;
    }
    if (registers) {
        m_passwords.hash(password, &m_queue, [this, guard, name, finished](const QByteArray &hash) {
            finished();
            if (!guard || guard->stage() != Session::Stage::Versioned)
                return;
            // A second registration of the same name meanwhile loses here.
            const std::optional<Account> created =
                hash.isEmpty() ? std::nullopt : m_accounts.create(name, hash);
            if (created) {
                qCInfo(lcLogin).noquote() << sessionTag(*guard) << "registered" << name;
                admit(*guard, *created);
            } else {
                refuse(*guard);
            }
        });
        return;
    }
    const int id = account ? account->id : 0;
    const QByteArray hash = account ? account->passwordHash : m_passwords.dummyHash();
    m_passwords.verify(
        hash, password, &m_queue, [this, guard, id, address, finished](bool accepted) {
            finished();
            if (!guard || guard->stage() != Session::Stage::Versioned) {
                if (!accepted || id == 0)
                    m_throttle.recordFailure(address);
                return;
            }
            // Read again: the account may have changed while hashing.
            const std::optional<Account> current = id == 0 ? std::nullopt : m_accounts.findById(id);
            if (accepted && current)
                admit(*guard, *current);
            else
                refuse(*guard);
        });
}

void LoginHandler::refuse(Session &session)
{
    session.setLoginPending(false);
    m_throttle.recordFailure(session.connection().peerAddress());
    qCInfo(lcLogin).noquote() << sessionTag(session) << "login failed";
    session.send(protocol::LoginFailed{}.encode());
    session.startLoginDeadline(m_config.loginTimeoutMs);
}

void LoginHandler::refuseRegistration(Session &session)
{
    session.setLoginPending(false);
    m_refusals.refused(session.connection().peerAddress(),
                       QStringLiteral("registration: %1 new accounts an hour from this address")
                           .arg(m_config.registrationsPerHour));
    session.send(protocol::RoomRefused{QString::fromLatin1(kTooManyRegistrations)}.encode() +
                 protocol::LoginFailed{}.encode());
    session.startLoginDeadline(m_config.loginTimeoutMs);
}

void LoginHandler::admit(Session &session, const Account &account)
{
    session.setLoginPending(false);
    m_throttle.recordSuccess(session.connection().peerAddress());
    qCInfo(lcLogin).noquote() << sessionTag(session) << "logged in as" << account.name;
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

    QByteArray welcome = protocol::LoginAccepted{.statsId = protocol::NumberText::of(account.id),
                                                 .name = account.name}
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
