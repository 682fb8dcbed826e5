#pragma once

#include "protocol/presence.h"

#include <QString>

namespace client {

class LobbyConnection;

// The user's own state as the lobby sees it: away while the main window is hidden to the
// notification area, playing while the user's game runs (a game address goes with it), or in
// the lobby.
using Presence = protocol::Presence;

// Tells the lobby the user's state: "PS" with the state and, for `Presence::Playing` only,
// the game address (empty otherwise). Dropped silently while not connected; true when sent.
// Whether to send at all (connected, not in a game) is the caller's rule.
bool sendPresence(LobbyConnection &connection, Presence state, const QString &gameAddress = {});

} // namespace client
