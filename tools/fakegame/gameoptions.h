#pragma once

// Shared by the native and the Windows stand-in: standard C++ only, no Qt.

#include "serverinfo.h"

#include <string>
#include <variant>
#include <vector>

// The stand-in's command line. Options are words after one or two dashes:
//   -server PORT | -client ADDRESS PORT      host a game (PORT 0: any) or join one
//   -bind ADDRESS                            host on that address only
//   -hostname, -map, -gametype TEXT, -maxplayers N, -player NAME:TEAM:PING (repeatable),
//   -password, -locked, -timelimit SECONDS, -no-timelimit    what the status reply says
//   -round SECONDS                           write a results log after each round
//   -name NAME                               the player's name the game keeps in the registry
//   -wow64                                   keep it where a 32-bit game's registry view lands
//   -class NAME                              the window's X11 class (native only)
// Text arrives and stays in code page 1252, as the game keeps it.
struct GameOptions
{
    ServerInfo info;
    bool host = false;       // -server; otherwise -client
    std::string bindAddress; // empty: every address
    std::string joinAddress;
    unsigned short port = 0;
    int roundSeconds = 0; // 0: no rounds
    std::string playerName = "Player";
    bool registry32 = false;
    std::string windowClass = "Rogue Spear";
};

// The options from the arguments (without the program's name), or what is wrong with them.
std::variant<GameOptions, std::string> parseGameOptions(const std::vector<std::string> &arguments);
