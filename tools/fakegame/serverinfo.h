#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// What the stand-in game server says about itself in its status reply.
struct ServerInfo
{
    struct Player
    {
        QString name;
        int team = 1;
        int ping = 0;
    };

    QString hostName = QStringLiteral("Rogue Spear");
    QString mapName = QStringLiteral("Training Grounds");
    QString gameType = QStringLiteral("Team Survival");
    quint16 hostPort = 2346;
    int maxPlayers = 16;
    bool password = false;
    bool locked = false;
    std::optional<int> timeLimitSeconds = 600; // none: the reply names no time limit
    QList<Player> players;
};

// The game's answer to "\status\": backslash-separated keys and values in the game's order,
// the players with their teams and pings, "final" and the query id.
QByteArray statusReply(const ServerInfo &info, int queryId);

// "NAME:TEAM:PING" (the name may itself hold colons); nullopt when it is not that.
std::optional<ServerInfo::Player> parsePlayer(const QString &text);
