#pragma once

#include <QObject>
#include <QProcess>
#include <QTimer>
#include <chrono>

namespace client {

// One start of a game, watched through its first seconds. A game that cannot be run, or that
// ends in them with a failure (Wine without its 32-bit part ends at once), is a failed launch,
// told with the last lines it wrote to its standard error and, for the failures Wine is known
// for, what to install. After them the game runs on untouched, its error output drained and
// dropped; the object deletes itself when the game ends.
class GameLaunch : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kWatchTime{3000};
    static constexpr int kKeptLines = 8;

    explicit GameLaunch(QObject *parent);
    // A game still running when the client goes is ended with it (QProcess owns it).
    ~GameLaunch() override;

    // Not started yet: the process starter starts it.
    QProcess &process() { return m_process; }

    // Why a launch failed, in words for the user: the last lines of the program's error
    // output, or how it ended when it wrote nothing, then what to install when the output or
    // `startError` (a program that could not be run at all) names a known Wine failure.
    static QString failureText(const QString &program, const QByteArray &errorOutput,
                               const QString &startError, int exitCode);

Q_SIGNALS:
    // The game still runs after its first seconds.
    void running();
    void failed(const QString &reason);

private:
    void readErrors();
    void ended(int exitCode, QProcess::ExitStatus status);

    QProcess m_process;
    QTimer m_watch;
    QByteArray m_errors; // the end of the error output, while watching
};

} // namespace client
