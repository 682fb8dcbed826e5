#pragma once

#include <QCoreApplication>
#include <QString>

namespace client {

// The version this client reports to the lobby server ("VE") as soon as it is connected; the
// server answers "OV" to a version it no longer accepts. The main window shows the same text.
// It is the application's version, which the program sets; the build's version when none is
// set.
inline QString clientVersion()
{
    const QString version = QCoreApplication::applicationVersion();
    return QStringLiteral("V ") + (version.isEmpty() ? QStringLiteral(QUORVEL_VERSION) : version);
}

} // namespace client
