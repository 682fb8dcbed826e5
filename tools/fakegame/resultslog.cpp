#include "resultslog.h"

namespace {

// "'Key' 'Value'" and CR LF, the key padded (or cut) so that the value starts at `column`
// (1-based).
std::string line(std::string key, const std::string &value, int column = 0)
{
    if (column > 0)
        key.resize(std::size_t(column - 5), ' ');
    return '\'' + key + "' '" + value + "'\r\n";
}

std::string isoDate(std::time_t time)
{
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &time);
#else
    localtime_r(&time, &local);
#endif
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &local);
    return text;
}

} // namespace

std::string resultsLog(const ServerInfo &info, int round, std::time_t end)
{
    std::vector<ServerInfo::Player> players = info.players;
    if (players.empty())
        players.push_back({"Player", 1, 0});
    const auto number = [](auto n) { return std::to_string(n); };
    std::string log = line("Results", "Rogue Spear") + line("Date", isoDate(end)) +
                      line("Map", info.mapName) + line("Round", number(round)) +
                      line("Game Type", info.gameType) + line("Server", info.hostName) +
                      line("Players", number(players.size()));
    for (std::size_t i = 0; i < players.size(); ++i) {
        const ServerInfo::Player &player = players[i];
        const bool winner = i == 0;
        log += line("Player", number(i + 1)) + line("Team", number(player.team), 15) +
               line("Ping", number(player.ping)) + line("Rounds", "2", 17) +
               line("Player Name", player.name, 16) +
               line("Kills", number(winner ? players.size() - 1 : 0), 20) +
               line("Deaths", winner ? "0" : "1", 19) + line("Shots Fired", number(30 + i), 24) +
               line("Shots Hit", number(10 + i), 24) +
               line("Killed By", winner ? std::string() : players.front().name, 24) +
               line("Accuracy", "33", 16) + line("End", "");
    }
    return log;
}

std::string resultsLogName(int round)
{
    return "RSResults" + std::to_string(round) + ".log";
}
