#pragma once

#include <QObject>
#include <QTemporaryFile>
#include <QTimer>
#include <chrono>

namespace client {

class ProcessStarter;
struct ProgramStart;

// One start of a game, watched through its first seconds. The game runs detached, so that
// it goes on when the client ends; its error output goes to a file while it is watched. A game
// that cannot be run, or that ends in its first seconds (Wine without its 32-bit part ends at
// once), is a failed launch, told with the last lines it wrote to its error output and, for
// the failures Wine is known for, what to install. The object deletes itself once it knows.
class GameLaunch : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kWatchTime{3000};
    static constexpr std::chrono::milliseconds kLookInterval{100};
    static constexpr int kKeptLines = 8;

    explicit GameLaunch(QObject *parent);

    // Starts the game; empty when it is on its way, otherwise why not (as `failureText`).
    QString start(ProcessStarter &processes, const ProgramStart &program);

    // Why a launch failed, in words for the user: the last lines of the program's error
    // output, or that it ended at once when it wrote nothing, then what to install when the
    // output or `startError` (a program that could not be run at all) names a known Wine
    // failure.
    static QString failureText(const QString &program, const QByteArray &errorOutput,
                               const QString &startError);

Q_SIGNALS:
    // The game still runs after its first seconds.
    void running();
    void failed(const QString &reason);

private:
    void look();

    QTemporaryFile m_errors; // the game's error output while it is watched
    QTimer m_look;
    QString m_program;
    qint64 m_pid = 0;
    int m_looksLeft = 0;
};

} // namespace client
