#pragma once

#include <QString>

namespace client {

// The stats-reset hot key is stored as a Windows virtual-key code, so that a settings file
// carries over between systems. These map keys to codes and codes to the names shown in the
// hot-key field.
namespace HotKeys {

// "0".."9" for 48..57, "A".."Z" for 65..90, "F1".."F12" for 112..123; a null string for any
// other code.
QString displayName(int virtualKey);

// The virtual-key code of a Qt key (`keypad` for keys of the number pad), or 0 for a key that
// has none. Shifted symbols of a US keyboard give the code of their key ("!" is 49).
int virtualKeyFromQtKey(int qtKey, bool keypad = false);

} // namespace HotKeys

} // namespace client
