#include "client/platform/detachedprocessstarter.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>

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

QString DetachedProcessStarter::startDetached(const QString &program, const QStringList &arguments,
                                              qint64 *pid)
{
    const QFileInfo info(program);
    if (!info.isFile())
        return QStringLiteral("%1 does not exist.").arg(program);

    QProcess process;
    if (needsWine(program)) {
        QStringList wine = QProcess::splitCommand(m_wineCommand);
        if (wine.isEmpty())
            return QStringLiteral("No Wine command is set to run %1.").arg(program);
        process.setProgram(wine.takeFirst());
        process.setArguments(wine + QStringList{program} + arguments);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (!m_winePrefix.isEmpty() && !environment.contains(QStringLiteral("WINEPREFIX")))
            environment.insert(QStringLiteral("WINEPREFIX"), m_winePrefix);
        process.setProcessEnvironment(environment);
    } else {
        if (!info.isExecutable())
            return QStringLiteral("%1 is not a program that can be started.").arg(program);
        process.setProgram(program);
        process.setArguments(arguments);
    }
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached(pid))
        return QStringLiteral("Could not start %1: %2")
            .arg(process.program(), process.errorString());
    return {};
}

} // namespace client
