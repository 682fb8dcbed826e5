#pragma once

#include <QString>

namespace client {

class SessionState;

// The address of a player's statistics page on the lobby's web host: "http://", the host
// (and its port unless it is 80), "?p=stats&id=" and the player's statistics id. There is no
// "/" before the "?"; browsers ask for "/?p=stats&id=..." all the same.
QString statsPageAddress(const SessionState &session, const QString &id);

} // namespace client
