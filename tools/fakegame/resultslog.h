#pragma once

// Shared by the native and the Windows stand-in: standard C++ only, no Qt.

#include "serverinfo.h"

#include <ctime>
#include <string>

// The results log the game writes after a round: seven header lines of the form
// 'Key' 'Value', then one block of twelve lines per player, each value starting at the
// column the game puts it in and closed by an apostrophe; CR LF line ends; code page 1252.
// Each player has played two rounds; the first one killed each of the others. `end` is
// written in local time.
std::string resultsLog(const ServerInfo &info, int round, std::time_t end);

// The log's name in the game's folder: RSResults<round>.log.
std::string resultsLogName(int round);
