#include "client/platform/x11keycodes.h"

#include <string_view>

namespace client {

namespace X11Keycodes {

namespace {

// Keycodes in a row of the keyboard run in order, left to right.
struct Run
{
    quint32 firstKeycode;
    std::string_view keys; // virtual-key codes of the run, as their characters
};

constexpr Run kRuns[] = {
    {10, "1234567890"},
    {24, "QWERTYUIOP"},
    {38, "ASDFGHJKL"},
    {52, "ZXCVBNM"},
};

constexpr quint32 kF1 = 67;  // F1..F10 follow on
constexpr quint32 kF11 = 95; // F11, F12
constexpr int kVirtualF1 = 112;

} // namespace

int virtualKey(quint32 keycode)
{
    for (const Run &run : kRuns) {
        if (keycode >= run.firstKeycode && keycode < run.firstKeycode + run.keys.size())
            return run.keys[keycode - run.firstKeycode];
    }
    if (keycode >= kF1 && keycode < kF1 + 10)
        return kVirtualF1 + int(keycode - kF1);
    if (keycode == kF11 || keycode == kF11 + 1)
        return kVirtualF1 + 10 + int(keycode - kF11);
    return 0;
}

quint32 keycode(int virtualKey)
{
    if (virtualKey >= kVirtualF1 && virtualKey < kVirtualF1 + 10)
        return kF1 + quint32(virtualKey - kVirtualF1);
    if (virtualKey == kVirtualF1 + 10 || virtualKey == kVirtualF1 + 11)
        return kF11 + quint32(virtualKey - kVirtualF1 - 10);
    if (virtualKey <= 0 || virtualKey > 127)
        return 0;
    for (const Run &run : kRuns) {
        const size_t at = run.keys.find(char(virtualKey));
        if (at != std::string_view::npos)
            return run.firstKeycode + quint32(at);
    }
    return 0;
}

} // namespace X11Keycodes

} // namespace client
