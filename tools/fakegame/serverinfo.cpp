#include "serverinfo.h"

#include "protocol/cp1252.h"

namespace {

// The delimiter cannot appear inside a value; the game drops it the same way.
QString clean(const QString &value)
{
    QString out = value;
    out.remove(u'\\');
    return out;
}

} // namespace

QByteArray statusReply(const ServerInfo &info, int queryId)
{
    QString reply;
    const auto add = [&reply](const QString &key, const QString &value) {
        reply += u'\\' + key + u'\\' + clean(value);
    };
    add(QStringLiteral("gamename"), QStringLiteral("roguespear"));
    add(QStringLiteral("gamever"), QStringLiteral("2.15"));
    add(QStringLiteral("hostname"), info.hostName);
    add(QStringLiteral("hostport"), QString::number(info.hostPort));
    add(QStringLiteral("hostip"), QStringLiteral("0.0.0.0"));
    add(QStringLiteral("mapname"), info.mapName);
    add(QStringLiteral("gametype"), info.gameType);
    add(QStringLiteral("numplayers"), QString::number(info.players.size()));
    add(QStringLiteral("maxplayers"), QString::number(info.maxPlayers));
    add(QStringLiteral("gamemode"), QStringLiteral("openplaying"));
    add(QStringLiteral("teamplay"), QStringLiteral("1"));
    add(QStringLiteral("password"), info.password ? QStringLiteral("1") : QStringLiteral("0"));
    add(QStringLiteral("rs_serverlocked"), info.locked ? QStringLiteral("1") : QStringLiteral("0"));
    add(QStringLiteral("rs_mods"), QStringLiteral("0"));
    add(QStringLiteral("rs_kitrestrictions"), QStringLiteral("0"));
    add(QStringLiteral("rs_armpatches"), QStringLiteral("1"));
    add(QStringLiteral("rs_highbandwidth"), QStringLiteral("0"));
    if (info.timeLimitSeconds)
        add(QStringLiteral("timelimit"), QString::number(*info.timeLimitSeconds));
    for (qsizetype i = 0; i < info.players.size(); ++i) {
        const ServerInfo::Player &player = info.players[i];
        const QString index = QString::number(i);
        add(QStringLiteral("player_") + index, player.name);
        add(QStringLiteral("team_") + index, QString::number(player.team));
        add(QStringLiteral("ping_") + index, QString::number(player.ping));
    }
    reply +=
        QStringLiteral("\\final\\\\queryid\\") + QString::number(queryId) + QStringLiteral(".1");
    return protocol::toCp1252(reply);
}

std::optional<ServerInfo::Player> parsePlayer(const QString &text)
{
    const qsizetype pingColon = text.lastIndexOf(u':');
    if (pingColon <= 0)
        return std::nullopt;
    const qsizetype teamColon = text.lastIndexOf(u':', pingColon - 1);
    if (teamColon <= 0)
        return std::nullopt;
    bool teamOk = false;
    bool pingOk = false;
    ServerInfo::Player player;
    player.name = text.left(teamColon);
    player.team = text.mid(teamColon + 1, pingColon - teamColon - 1).toInt(&teamOk);
    player.ping = text.mid(pingColon + 1).toInt(&pingOk);
    if (!teamOk || !pingOk)
        return std::nullopt;
    return player;
}
