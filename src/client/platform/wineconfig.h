#pragma once

#include <QString>

namespace client {

// The command that runs Windows programs, kept in "game.ini" in the data folder once given
// ("wine" until then).
namespace WineConfig {

QString command(const QString &dataFolder);
void saveCommand(const QString &dataFolder, const QString &command);

} // namespace WineConfig

} // namespace client
