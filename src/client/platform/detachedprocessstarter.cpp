#include "client/platform/detachedprocessstarter.h"

#include "client/platform/winepath.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTimer>

namespace client {

DetachedProcessStarter::DetachedProcessStarter(QString wineCommand, QString winePrefix)
    : m_wineCommand(std::move(wineCommand)), m_winePrefix(std::move(winePrefix))
{
}

bool DetachedProcessStarter::needsWine(const QString &program)
{
    if (!program.endsWith(QLatin1String(".exe"), Qt::CaseInsensitive))
        return false;
    QFile file(program);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray head = file.read(4);
    return head != "\x7f"
                   "ELF" &&
           !head.startsWith("#!");
}

QString DetachedProcessStarter::prepare(QProcess &process, const ProgramStart &start) const
{
    const QString &program = start.program;
    const QFileInfo info(program);
    if (!info.isFile())
        return QStringLiteral("%1 does not exist.").arg(program);

    if (needsWine(program)) {
        QStringList wine = QProcess::splitCommand(m_wineCommand);
        if (wine.isEmpty())
            return QStringLiteral("No Wine command is set to run %1.").arg(program);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        QString prefix = start.winePrefix;
        if (prefix.isEmpty())
            prefix = environment.value(QStringLiteral("WINEPREFIX"), m_winePrefix);
        if (!prefix.isEmpty())
            environment.insert(QStringLiteral("WINEPREFIX"), prefix);
        process.setProcessEnvironment(environment);
        process.setProgram(wine.takeFirst());
        process.setArguments(wine + QStringList{WinePath::windowsPath(program, prefix)} +
                             start.arguments);
    } else {
        if (!info.isExecutable())
            return QStringLiteral("%1 is not a program that can be started.").arg(program);
        process.setProgram(program);
        process.setArguments(start.arguments);
    }
    process.setWorkingDirectory(start.workingFolder);
    return {};
}

QString DetachedProcessStarter::start(QProcess &process, const ProgramStart &program, qint64 &pid)
{
    if (QString error = prepare(process, program); !error.isEmpty())
        return error;
    if (!process.startDetached(&pid))
        return process.errorString();
    return {};
}

QString DetachedProcessStarter::startDetached(const QString &program, const QStringList &arguments,
                                              qint64 *pid)
{
    QProcess process;
    if (QString error = prepare(process, {program, arguments, {}, {}}); !error.isEmpty())
        return error;
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached(pid))
        return QStringLiteral("Could not start %1: %2")
            .arg(process.program(), process.errorString());
    return {};
}

void DetachedProcessStarter::run(const QString &program, const QStringList &arguments,
                                 QObject &context, std::function<void(const ProcessEnd &)> finished)
{
    auto *process = new QProcess(&context);
    const QString error = prepare(*process, {program, arguments, {}, {}});
    if (!error.isEmpty()) {
        // Called from the event loop all the same, as callers expect.
        QTimer::singleShot(0, process, [process, finished, error] {
            process->deleteLater();
            finished(ProcessEnd{-1, {}, error});
        });
        return;
    }
    process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QObject::connect(process, &QProcess::errorOccurred, process,
                     [process, finished](QProcess::ProcessError failure) {
                         if (failure != QProcess::FailedToStart)
                             return; // the other errors end in `finished` too
                         process->deleteLater();
                         finished(ProcessEnd{-1,
                                             {},
                                             QStringLiteral("Could not start %1: %2")
                                                 .arg(process->program(), process->errorString())});
                     });
    QObject::connect(process, &QProcess::finished, process,
                     [process, finished](int exitCode, QProcess::ExitStatus status) {
                         process->deleteLater();
                         ProcessEnd end{exitCode, process->readAllStandardOutput(), {}};
                         if (status != QProcess::NormalExit) {
                             end.exitCode = -1;
                             end.error =
                                 QStringLiteral("%1 ended abnormally").arg(process->program());
                         }
                         finished(end);
                     });
    process->start();
}

} // namespace client
