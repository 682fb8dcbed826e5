#pragma once

#include <QStringList>
#include <QTextStream>
#include <optional>

namespace server {

// The key that signs the client program published for updates (Ed25519):
//   make-update-key KEYFILE        writes a new secret key to KEYFILE (0600, refusing to
//                                  replace one) and prints its public key in hex, the value
//                                  the client is built with
//   sign-update KEYFILE PROGRAM    writes PROGRAM.sig, the signature of PROGRAM's bytes in hex
// A key file holds the 64-byte secret key in hex on one line. `arguments` includes the program
// name first. nullopt when the arguments are no such command; otherwise the exit code.
std::optional<int> runUpdateKeyCommand(const QStringList &arguments, QTextStream &out,
                                       QTextStream &err);

} // namespace server
