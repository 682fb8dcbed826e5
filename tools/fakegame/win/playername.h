#pragma once

#include <string>

// Keeps the player's name (code page 1252) where the game keeps it: the string value
// "MultiplayerPlayerName" of HKEY_LOCAL_MACHINE\Software\Red Storm Entertainment\Rogue Spear.
// `view32`: in the registry view of 32-bit programs, which a 64-bit Windows keeps under
// Software\Wow6432Node, where the real (32-bit) game's name lands. An error text, or empty.
std::string writePlayerName(const std::string &name, bool view32);
