#pragma once

#include <QString>

namespace server {

// The name under which the lobby itself speaks to clients and receives their diagnostics.
// No player may register it.
inline const QString kServiceAccountName = QStringLiteral("QUORVEL");

} // namespace server
