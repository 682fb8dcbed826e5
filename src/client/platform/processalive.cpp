#include "client/platform/processalive.h"

#include <QFile>

#include <cerrno>
#include <signal.h>

namespace client {

bool isProcessRunning(qint64 pid)
{
    if (pid <= 0 || (::kill(pid_t(pid), 0) != 0 && errno != EPERM))
        return false;
    // "PID (NAME) STATE ...": the name may hold spaces and parentheses, the state follows the
    // last ")".
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return true;
    const QByteArray line = stat.readAll();
    const qsizetype end = line.lastIndexOf(')');
    return end < 0 || line.size() < end + 3 || line.at(end + 2) != 'Z';
}

} // namespace client
