#pragma once

// Shared by the native and the Windows stand-in: standard C++ only, no Qt.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the stand-in game server says about itself in its status reply. Text is held as the
// game holds it, in code page 1252.
struct ServerInfo
{
    struct Player
    {
        std::string name;
        int team = 1;
        int ping = 0;
    };

    std::string hostName = "Rogue Spear";
    std::string mapName = "Training Grounds";
    std::string gameType = "Team Survival";
    unsigned short hostPort = 2346;
    int maxPlayers = 16;
    bool password = false;
    bool locked = false;
    std::optional<int> timeLimitSeconds = 600; // none: the reply names no time limit
    std::vector<Player> players;
};

// The game's answer to "\status\": backslash-separated keys and values in the game's order,
// the players with their teams and pings, "final" and the query id.
std::string statusReply(const ServerInfo &info, int queryId);

// The info with `joined` players who came in over the network listed after those of the command
// line, as "Player 1", "Player 2"... on team 1: the count the reply gives follows joins and
// leaves.
ServerInfo withJoinedPlayers(ServerInfo info, std::size_t joined);

// Whether one more player fits beside those of the command line and the `joined` ones; a game
// whose slots are all taken turns a joining player away.
bool hasRoom(const ServerInfo &info, std::size_t joined);

// "NAME:TEAM:PING" (the name may itself hold colons); nullopt when it is not that.
std::optional<ServerInfo::Player> parsePlayer(std::string_view text);

// A whole decimal number, optionally negative, and nothing else; nullopt otherwise.
std::optional<int> parseInt(std::string_view text);
