#include "serverinfo.h"

#include <algorithm>
#include <charconv>

namespace {

// The delimiter cannot appear inside a value; the game drops it the same way.
std::string clean(std::string_view value)
{
    std::string out;
    for (const char c : value) {
        if (c != '\\')
            out += c;
    }
    return out;
}

} // namespace

std::string statusReply(const ServerInfo &info, int queryId)
{
    std::string reply;
    const auto add = [&reply](std::string_view key, std::string_view value) {
        reply.append(1, '\\').append(key).append(1, '\\').append(clean(value));
    };
    const auto flag = [](bool on) { return on ? "1" : "0"; };
    add("gamename", "roguespear");
    add("gamever", "2.15");
    add("hostname", info.hostName);
    add("hostport", std::to_string(info.hostPort));
    add("hostip", "0.0.0.0");
    add("mapname", info.mapName);
    add("gametype", info.gameType);
    add("numplayers", std::to_string(info.players.size()));
    add("maxplayers", std::to_string(info.maxPlayers));
    add("gamemode", "openplaying");
    add("teamplay", "1");
    add("password", flag(info.password));
    add("rs_serverlocked", flag(info.locked));
    add("rs_mods", "0");
    add("rs_kitrestrictions", "0");
    add("rs_armpatches", "1");
    add("rs_highbandwidth", "0");
    if (info.timeLimitSeconds)
        add("timelimit", std::to_string(*info.timeLimitSeconds));
    for (std::size_t i = 0; i < info.players.size(); ++i) {
        const ServerInfo::Player &player = info.players[i];
        const std::string index = std::to_string(i);
        add("player_" + index, player.name);
        add("team_" + index, std::to_string(player.team));
        add("ping_" + index, std::to_string(player.ping));
    }
    return reply + "\\final\\\\queryid\\" + std::to_string(queryId) + ".1";
}

ServerInfo withJoinedPlayers(ServerInfo info, std::size_t joined)
{
    for (std::size_t i = 1; i <= joined; ++i)
        info.players.push_back({"Player " + std::to_string(i), 1, 0});
    return info;
}

bool hasRoom(const ServerInfo &info, std::size_t joined)
{
    return info.players.size() + joined < std::size_t(std::max(info.maxPlayers, 0));
}

std::optional<ServerInfo::Player> parsePlayer(std::string_view text)
{
    const std::size_t pingColon = text.rfind(':');
    if (pingColon == std::string_view::npos || pingColon == 0)
        return std::nullopt;
    const std::size_t teamColon = text.rfind(':', pingColon - 1);
    if (teamColon == std::string_view::npos || teamColon == 0)
        return std::nullopt;
    const std::optional<int> team = parseInt(text.substr(teamColon + 1, pingColon - teamColon - 1));
    const std::optional<int> ping = parseInt(text.substr(pingColon + 1));
    if (!team || !ping)
        return std::nullopt;
    return ServerInfo::Player{std::string(text.substr(0, teamColon)), *team, *ping};
}

std::optional<int> parseInt(std::string_view text)
{
    int value = 0;
    const char *end = text.data() + text.size();
    const auto [at, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || at != end)
        return std::nullopt;
    return value;
}
