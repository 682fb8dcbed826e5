#pragma once

#include <QtGlobal>

namespace client {

// The fixed game port: a hosted game listens on it, joining games connect to it, and game
// servers answer the UDP status query on it.
inline constexpr quint16 GamePort = 2346;

} // namespace client
