#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>

namespace client {

// What the whole session shares: the lobby and web hosts, the logged-in flag and the flags
// and values that several parts of the client read and write. Lives on the UI thread, owned
// by the application; windows watch its signals.
class SessionState : public QObject
{
    Q_OBJECT

public:
    static constexpr quint16 kDefaultLobbyPort = 20000;

    explicit SessionState(QObject *parent = nullptr) : QObject(parent) {}

    // `LobbyServerHost` and its port; the web host serves the update download and the
    // statistics pages (defaults to the lobby host).
    QString lobbyServerHost;
    quint16 lobbyPort = kDefaultLobbyPort;
    QString webHost;
    quint16 webPort = 80;

    bool exitPager = false; // the main window is closing: the pager closes for real
    bool loggedOFF = false; // the user logged out: a drop is not reconnected
    QString serverStatus;   // "", "In game" or "In chat": the game this player hosts
    QDateTime textSendTime; // last accepted chat or pager send (shared 3 s guard)
    int keepAliveTicks = 1; // 1..3, ticks of the detection timer
    bool inGame = false;    // the local game runs on a server
    QString lobbyStatsId;   // the player's statistics id, from the login (his stats page)
    QString ownName;        // the saved name, then the name this client logged in with

    // The logged-in flag (the Tag of `picLogIn`: "ONLINE" / "OFFLINE").
    bool isOnline() const { return m_online; }
    QString onlineTag() const
    {
        return m_online ? QStringLiteral("ONLINE") : QStringLiteral("OFFLINE");
    }
    void setOnline(bool online)
    {
        if (m_online == online)
            return;
        m_online = online;
        Q_EMIT onlineChanged(online);
    }

Q_SIGNALS:
    void onlineChanged(bool online);

private:
    bool m_online = false;
};

} // namespace client
