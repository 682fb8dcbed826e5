#pragma once

#include "protocol/presence.h"

#include <QObject>
#include <QSet>
#include <QString>
#include <QTimer>

namespace server {

class Connection;

// What the lobby knows of a logged-in player.
struct Player
{
    int accountId = 0;
    QString name;
    bool moderator = false;
    int chatColour = 0;
    QString emailHash;
    QSet<int> buddies; // account ids this player marked as buddies
    protocol::Presence presence = protocol::Presence::Lobby;
    QString gameAddress; // as last reported, whatever the presence
};

// One client connection through its life: new until "VE", versioned after it, logged in
// after an accepted login, ended when it closes or is closed. It is also the context of work
// done for it later (password checks, delayed answers): that work is dropped once the
// session is deleted.
class Session : public QObject
{
    Q_OBJECT

public:
    enum class Stage { New, Versioned, LoggedIn, Ended };

    Session(Connection *connection, QObject *parent = nullptr);

    Connection &connection() const { return *m_connection; }
    // Numbers the sessions of this process in the order they connected, for the log.
    quint64 id() const { return m_id; }
    void send(const QByteArray &bytes) const;

    Stage stage() const { return m_stage; }
    void setStage(Stage stage) { m_stage = stage; }
    bool isLoggedIn() const { return m_stage == Stage::LoggedIn; }

    // A login being checked: further logins are ignored until it is answered.
    bool loginPending() const { return m_loginPending; }
    void setLoginPending(bool pending) { m_loginPending = pending; }

    Player &player() { return m_player; }
    const Player &player() const { return m_player; }

    // Closes the connection when the session has not logged in within `ms`.
    void startLoginDeadline(int ms);
    void stopLoginDeadline() { m_loginDeadline.stop(); }

Q_SIGNALS:
    void loginDeadlinePassed();

private:
    Connection *m_connection;
    quint64 m_id;
    Stage m_stage = Stage::New;
    bool m_loginPending = false;
    Player m_player;
    QTimer m_loginDeadline;
};

// How the log names a session's events: "session=12 addr=192.0.2.7".
QString sessionTag(const Session &session);

} // namespace server
