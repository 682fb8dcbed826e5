#include "text.h"

#include <windows.h>

std::string toCp1252(const std::wstring &text)
{
    if (text.empty())
        return {};
    const int size =
        WideCharToMultiByte(1252, 0, text.data(), int(text.size()), nullptr, 0, nullptr, nullptr);
    std::string out(std::size_t(size > 0 ? size : 0), '\0');
    WideCharToMultiByte(1252, 0, text.data(), int(text.size()), out.data(), size, nullptr, nullptr);
    return out;
}

std::wstring fromCp1252(const std::string &text)
{
    if (text.empty())
        return {};
    const int size = MultiByteToWideChar(1252, 0, text.data(), int(text.size()), nullptr, 0);
    std::wstring out(std::size_t(size > 0 ? size : 0), L'\0');
    MultiByteToWideChar(1252, 0, text.data(), int(text.size()), out.data(), size);
    return out;
}
