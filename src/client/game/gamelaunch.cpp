#include "client/game/gamelaunch.h"

#include "client/platform/processalive.h"
#include "client/platform/processstarter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace client {

namespace {

// Enough for the last lines even when Wine's own warnings come before the reason.
constexpr qsizetype kKeptBytes = 8192;

const QString kInstall32 = QStringLiteral(
    "This Wine cannot run 32-bit Windows programs. Install its 32-bit part (as root):\n"
    "dpkg --add-architecture i386 && apt update && apt install wine32");
const QString kInstallWine =
    QStringLiteral("Wine is not installed. Install it with its 32-bit part (as root):\n"
                   "dpkg --add-architecture i386 && apt update && apt install wine wine32");

} // namespace

GameLaunch::GameLaunch(QObject *parent)
    : QObject(parent), m_errors(QDir::tempPath() + QStringLiteral("/quorvel-game-XXXXXX.txt"))
{
    m_look.setInterval(kLookInterval);
    connect(&m_look, &QTimer::timeout, this, &GameLaunch::look);
}

QString GameLaunch::start(ProcessStarter &processes, const ProgramStart &program)
{
    QProcess process;
    process.setStandardOutputFile(QProcess::nullDevice());
    // A file, not a pipe: the game may write to it after the client has gone.
    if (m_errors.open()) {
        m_errors.close();
        process.setStandardErrorFile(m_errors.fileName());
    } else {
        process.setStandardErrorFile(QProcess::nullDevice());
    }
    if (const QString error = processes.start(process, program, m_pid); !error.isEmpty())
        return failureText(process.program().isEmpty() ? program.program : process.program(), {},
                           error);
    m_program = process.program();
    m_looksLeft = int(kWatchTime / kLookInterval);
    m_look.start();
    return {};
}

void GameLaunch::look()
{
    if (isProcessRunning(m_pid)) {
        if (--m_looksLeft > 0)
            return;
        m_look.stop();
        Q_EMIT running();
    } else {
        m_look.stop();
        QByteArray output;
        if (QFile file(m_errors.fileName()); file.open(QIODevice::ReadOnly)) {
            if (file.size() > kKeptBytes)
                file.seek(file.size() - kKeptBytes);
            output = file.readAll();
        }
        Q_EMIT failed(failureText(m_program, output, {}));
    }
    // The file goes with this object; a game still writing to it keeps it until it ends.
    deleteLater();
}

QString GameLaunch::failureText(const QString &program, const QByteArray &errorOutput,
                                const QString &startError)
{
    QStringList lines;
    for (const QByteArray &line : errorOutput.split('\n')) {
        const QString text = QString::fromUtf8(line).trimmed();
        if (!text.isEmpty())
            lines << text;
    }
    const QString output = lines.join(u'\n');
    QString text = lines.mid(lines.size() - kKeptLines).join(u'\n');
    if (!startError.isEmpty())
        text = QStringLiteral("%1 could not be run: %2").arg(program, startError);
    else if (text.isEmpty())
        text = QStringLiteral("It ended at once.");

    const bool isWine = QFileInfo(program).fileName().startsWith(QLatin1String("wine"));
    if (output.contains(QLatin1String("wine32 is missing"), Qt::CaseInsensitive) ||
        output.contains(QLatin1String("Bad EXE format"), Qt::CaseInsensitive))
        text += QStringLiteral("\n\n") + kInstall32;
    else if (isWine && !startError.isEmpty())
        text += QStringLiteral("\n\n") + kInstallWine;
    return text;
}

} // namespace client
