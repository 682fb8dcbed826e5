#include "playername.h"

#include "text.h"

#include <windows.h>

std::string writePlayerName(const std::string &name, bool view32)
{
    HKEY key = nullptr;
    const REGSAM access = KEY_SET_VALUE | (view32 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY);
    LONG result =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Red Storm Entertainment\\Rogue Spear", 0,
                        nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &key, nullptr);
    if (result != ERROR_SUCCESS)
        return "cannot open the game's registry key: error " + std::to_string(result);
    const std::wstring value = fromCp1252(name);
    result = RegSetValueExW(key, L"MultiplayerPlayerName", 0, REG_SZ,
                            reinterpret_cast<const BYTE *>(value.c_str()),
                            DWORD((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(key);
    if (result != ERROR_SUCCESS)
        return "cannot write the player's name: error " + std::to_string(result);
    return {};
}
