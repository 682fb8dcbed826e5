#pragma once

// The game's stand-in as the client meets it: fakegame installed as roguespear.exe in a game
// folder of the build, started through the real process start, and ended by its id when the
// test is over.

#include "client/platform/detachedprocessstarter.h"

#include <QProcess>
#include <QStringList>

#include <signal.h>

inline const QString kGameFolder = QStringLiteral(QUORVEL_BINARY_DIR "/tools/fakegame/game");

class GameStarter final : public client::ProcessStarter
{
public:
    explicit GameStarter(QString wineCommand = QStringLiteral("wine")) : m_real(wineCommand) {}
    ~GameStarter() override { endAll(); }

    // Started for real, recorded in `commandLines` and ended by `endAll` unless it has ended.
    QString start(QProcess &process, const client::ProgramStart &program, qint64 &pid) override
    {
        const QString error = m_real.start(process, program, pid);
        if (error.isEmpty()) {
            commandLines << QStringList{program.program} + program.arguments;
            m_pids << pid;
        }
        return error;
    }
    QString startDetached(const QString &program, const QStringList &arguments,
                          qint64 *pid) override
    {
        qint64 started = 0;
        const QString error = m_real.startDetached(program, arguments, &started);
        if (error.isEmpty()) {
            commandLines << QStringList{program} + arguments;
            m_pids << started;
        }
        if (pid)
            *pid = started;
        return error;
    }
    // Runs for real too, recorded in `runs`.
    void run(const QString &program, const QStringList &arguments, QObject &context,
             std::function<void(const client::ProcessEnd &)> finished) override
    {
        runs << QStringList{program} + arguments;
        m_real.run(program, arguments, context, std::move(finished));
    }
    // SIGTERM to each game started and not yet ended.
    void endAll()
    {
        for (const qint64 pid : std::as_const(m_pids))
            ::kill(pid_t(pid), SIGTERM);
        m_pids.clear();
    }

    QList<QStringList> commandLines; // each start: the program, then its arguments
    QList<QStringList> runs;         // each program run to its end, likewise

private:
    client::DetachedProcessStarter m_real;
    QList<qint64> m_pids;
};
