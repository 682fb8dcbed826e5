#pragma once

#include <QtGlobal>

namespace client {

// Physical keys of X11 and Wayland, as both report them (evdev code + 8, the same on every
// layout), and the Windows virtual-key code of the key at that place on a US keyboard.
namespace X11Keycodes {

// The virtual-key code of the digit, letter or F1..F12 key with this keycode ("1" above "Q"
// is 49 whatever it prints), or 0 for any other key and for 0 (no keycode known).
int virtualKey(quint32 keycode);

// The keycode of the key that `virtualKey` names (the inverse of the above), or 0 for a code
// of no digit, letter or F1..F12 key.
quint32 keycode(int virtualKey);

} // namespace X11Keycodes

} // namespace client
