#pragma once

#include "serverinfo.h"

#include <QByteArray>
#include <QDateTime>

// The results log the game writes after a round: seven header lines of the form
// 'Key' 'Value', then one block of twelve lines per player, each value starting at the
// column the game puts it in and closed by an apostrophe; CR LF line ends. Each player has
// played two rounds; the first one killed each of the others.
QByteArray resultsLog(const ServerInfo &info, int round, const QDateTime &end);
