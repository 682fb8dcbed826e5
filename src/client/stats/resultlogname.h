#pragma once

#include <QString>

namespace client {

// Whether a file name (without its folder) is one of the results logs the games write after
// a round: "RSResults", a decimal digit, anything, ".log"; case matters ("RSResults1.log",
// "RSResults2_final.log"; not "rsresults1.log", "RSResultsA.log" or "RSResults1.txt").
bool isResultLogName(const QString &fileName);

} // namespace client
