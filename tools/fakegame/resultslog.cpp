#include "resultslog.h"

#include <QStringList>

namespace {

// "'Key' 'Value'", the key padded so that the value starts at `column` (1-based).
QString line(const QString &key, const QString &value, int column = 0)
{
    const QString paddedKey = column > 0 ? key.leftJustified(column - 5, u' ', true) : key;
    return u'\'' + paddedKey + QStringLiteral("' '") + value + u'\'';
}

} // namespace

QByteArray resultsLog(const ServerInfo &info, int round, const QDateTime &end)
{
    QList<ServerInfo::Player> players = info.players;
    if (players.isEmpty())
        players.append({QStringLiteral("Player"), 1, 0});
    QStringList lines{line(QStringLiteral("Results"), QStringLiteral("Rogue Spear")),
                      line(QStringLiteral("Date"), end.toString(Qt::ISODate)),
                      line(QStringLiteral("Map"), info.mapName),
                      line(QStringLiteral("Round"), QString::number(round)),
                      line(QStringLiteral("Game Type"), info.gameType),
                      line(QStringLiteral("Server"), info.hostName),
                      line(QStringLiteral("Players"), QString::number(players.size()))};
    for (qsizetype i = 0; i < players.size(); ++i) {
        const ServerInfo::Player &player = players.at(i);
        const bool winner = i == 0;
        lines << line(QStringLiteral("Player"), QString::number(i + 1))
              << line(QStringLiteral("Team"), QString::number(player.team), 15)
              << line(QStringLiteral("Ping"), QString::number(player.ping))
              << line(QStringLiteral("Rounds"), QStringLiteral("2"), 17)
              << line(QStringLiteral("Player Name"), player.name, 16)
              << line(QStringLiteral("Kills"), QString::number(winner ? players.size() - 1 : 0), 20)
              << line(QStringLiteral("Deaths"), winner ? QStringLiteral("0") : QStringLiteral("1"),
                      19)
              << line(QStringLiteral("Shots Fired"), QString::number(30 + i), 24)
              << line(QStringLiteral("Shots Hit"), QString::number(10 + i), 24)
              << line(QStringLiteral("Killed By"), winner ? QString() : players.first().name, 24)
              << line(QStringLiteral("Accuracy"), QString::number(33), 16)
              << line(QStringLiteral("End"), QString());
    }
    return (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toLatin1();
}
