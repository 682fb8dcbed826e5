#include "client/game/gamelaunch.h"

#include <QFileInfo>

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

GameLaunch::GameLaunch(QObject *parent) : QObject(parent)
{
    m_watch.setSingleShot(true);
    m_watch.setInterval(kWatchTime);
    // Standard output is not read; the error output is, or a chatty Wine would fill the pipe.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    connect(&m_process, &QProcess::started, &m_watch, qOverload<>(&QTimer::start));
    connect(&m_watch, &QTimer::timeout, this, [this] {
        m_errors.clear();
        Q_EMIT running();
    });
    connect(&m_process, &QProcess::readyReadStandardError, this, &GameLaunch::readErrors);
    connect(&m_process, &QProcess::finished, this, &GameLaunch::ended);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // the others end in `finished`
        Q_EMIT failed(failureText(m_process.program(), {}, m_process.errorString(), -1));
        deleteLater();
    });
}

GameLaunch::~GameLaunch()
{
    // The process's end, when ~QProcess waits for it, must not reach this half-gone object.
    m_process.disconnect(this);
}

void GameLaunch::readErrors()
{
    const QByteArray read = m_process.readAllStandardError();
    if (!m_watch.isActive())
        return;
    m_errors += read;
    if (m_errors.size() > kKeptBytes)
        m_errors.remove(0, m_errors.size() - kKeptBytes);
}

void GameLaunch::ended(int exitCode, QProcess::ExitStatus status)
{
    if (m_watch.isActive()) {
        m_watch.stop();
        readErrors();
        if (status != QProcess::NormalExit || exitCode != 0)
            Q_EMIT failed(failureText(m_process.program(), m_errors, {},
                                      status == QProcess::NormalExit ? exitCode : -1));
    }
    deleteLater();
}

QString GameLaunch::failureText(const QString &program, const QByteArray &errorOutput,
                                const QString &startError, int exitCode)
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
        text = exitCode < 0 ? QStringLiteral("It ended at once.")
                            : QStringLiteral("It ended at once with exit code %1.").arg(exitCode);

    const bool isWine = QFileInfo(program).fileName().startsWith(QLatin1String("wine"));
    if (output.contains(QLatin1String("wine32 is missing"), Qt::CaseInsensitive) ||
        output.contains(QLatin1String("Bad EXE format"), Qt::CaseInsensitive))
        text += QStringLiteral("\n\n") + kInstall32;
    else if (isWine && !startError.isEmpty())
        text += QStringLiteral("\n\n") + kInstallWine;
    return text;
}

} // namespace client
