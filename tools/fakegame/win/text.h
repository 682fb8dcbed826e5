#pragma once

#include <string>

// The game's text is code page 1252; Windows hands out and takes UTF-16.
std::string toCp1252(const std::wstring &text);
std::wstring fromCp1252(const std::string &text);
