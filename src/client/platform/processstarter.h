#pragma once

#include <QString>
#include <QStringList>

namespace client {

// Starts a program as a process of its own: the client does not wait for it and keeps no
// handle to it. It inherits the client's working folder.
class ProcessStarter
{
public:
    virtual ~ProcessStarter() = default;

    // Empty when the process was started (its id in `pid` when asked); otherwise why not, in
    // words for the user.
    virtual QString startDetached(const QString &program, const QStringList &arguments,
                                  qint64 *pid = nullptr) = 0;
};

} // namespace client
