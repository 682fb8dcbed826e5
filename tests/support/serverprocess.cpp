#include "serverprocess.h"

#include "wait.h"

#include <QRegularExpression>

bool ServerProcess::start(const QString &program, const QStringList &arguments)
{
    killHard();
    m_port = 0;
    m_process.start(program, arguments);
    QByteArray out;
    waitUntil(
        [&] {
            out += m_process.readAllStandardOutput();
            return out.contains('\n') || m_process.state() == QProcess::NotRunning;
        },
        10000);
    static const QRegularExpression port(QStringLiteral("(\\d+)\\s*$"));
    m_port = port.match(QString::fromUtf8(out.left(out.indexOf('\n')))).captured(1).toUShort();
    return m_port != 0;
}

void ServerProcess::killHard()
{
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill();
    m_process.waitForFinished(5000);
}

ServerProcess::Result ServerProcess::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    Result result;
    if (!process.waitForFinished(30000))
        return result; // killed by the QProcess destructor
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}
