#pragma once

#include <QString>

namespace client {

// The version this client reports to the lobby server ("VE") as soon as it is connected; the
// server answers "OV" to a version it no longer accepts. The main window shows the same text.
inline QString clientVersion()
{
    return QStringLiteral("V 6.0");
}

} // namespace client
