#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace client {

// The updater copy, `quorvel update-copy --web HOST[:PORT]`: the client runs it (through pkexec
// when only root may change the program's folder) and waits for it. It installs the version
// the web server publishes over this program and ends; it starts no program, so nothing it
// started can run with its rights. Exit code 0 when installed; otherwise 1, with the reason and
// the text for the user on two lines of standard output. Needs a QCoreApplication.
inline constexpr const char *kUpdateCopyCommand = "update-copy";
int runUpdateCopy(const QStringList &arguments);

// How the client reads back the output of a failed copy.
struct UpdateCopyFailure
{
    QString reason;  // empty when the copy said nothing
    QString message; // empty when it gave none
};
UpdateCopyFailure parseUpdateCopyFailure(const QByteArray &output);

} // namespace client
