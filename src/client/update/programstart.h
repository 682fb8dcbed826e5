#pragma once

#include <QString>
#include <QStringList>

namespace client {

// Starts a program detached from this one. When this process runs as root only because pkexec
// raised it, the program runs as the user who asked (pkexec's PKEXEC_UID), not as root.
// Whether it started.
bool startProgramAsUser(const QString &program, const QStringList &arguments);

} // namespace client
