#pragma once

#include <QtGlobal>

namespace client {

// Whether the process `pid` still runs: it exists and has not ended (a zombie that nobody
// has reaped yet has ended).
bool isProcessRunning(qint64 pid);

} // namespace client
