#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <functional>

class QObject;
class QProcess;

namespace client {

// How a program run to its end ended.
struct ProcessEnd
{
    int exitCode = -1;
    QByteArray output; // what it wrote to standard output
    QString error;     // why it did not start or did not end normally; empty when it did
};

// A program to start beside the client.
struct ProgramStart
{
    QString program;
    QStringList arguments;
    QString workingFolder; // empty: the client's
    QString winePrefix;    // a Windows program's prefix; empty: the client's default one
};

// Starts programs as processes of their own. They inherit the client's environment, and its
// working folder unless told otherwise.
class ProcessStarter
{
public:
    virtual ~ProcessStarter() = default;

    // Starts the program `program` with what `process` was set up with (its output files),
    // detached: it runs on when the client ends. Empty when it was started, its id in `pid`;
    // otherwise why not, in words for the user.
    virtual QString start(QProcess &process, const ProgramStart &program, qint64 &pid) = 0;

    // Starts a program the client does not wait for and keeps no handle to. Empty when the
    // process was started (its id in `pid` when asked); otherwise why not, in words for the user.
    virtual QString startDetached(const QString &program, const QStringList &arguments,
                                  qint64 *pid = nullptr) = 0;

    // Runs a program to its end without blocking: `finished` is called once, from the event
    // loop, when it has ended or could not start, and never once `context` is destroyed. Its
    // standard error goes to the client's.
    virtual void run(const QString &program, const QStringList &arguments, QObject &context,
                     std::function<void(const ProcessEnd &)> finished) = 0;
};

} // namespace client
