#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

// The real quorvel-server executable in a child process, for what only a process can show:
// its command line, its exit codes, and surviving a kill.
class ServerProcess
{
public:
    static QString executable();

    ~ServerProcess();

    // Starts the lobby with `arguments` plus "--port 0" and waits for its listening line.
    bool start(const QStringList &arguments);
    quint16 port() const { return m_port; }
    void killHard(); // SIGKILL, no chance to clean up

    // Runs the executable to its end: exit code, stdout, stderr.
    struct Result
    {
        int exitCode = -1;
        QString out;
        QString err;
    };
    static Result run(const QStringList &arguments, int timeoutMs = 30000);

private:
    QProcess m_process;
    quint16 m_port = 0;
};
