#include "serverprocess.h"

#include <QDeadlineTimer>
#include <QRegularExpression>

QString ServerProcess::executable()
{
    return QStringLiteral(QUORVEL_BINARY_DIR "/src/server/quorvel-server");
}

ServerProcess::~ServerProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

bool ServerProcess::start(const QStringList &arguments)
{
    m_process.setProcessChannelMode(QProcess::SeparateChannels);
    m_process.start(executable(), arguments + QStringList{"--port", "0"});
    if (!m_process.waitForStarted(5000))
        return false;
    static const QRegularExpression line(QStringLiteral("^lobby listening on (.+):(\\d+)\\n"));
    QByteArray out;
    QDeadlineTimer deadline(10000);
    while (!deadline.hasExpired() && m_process.state() == QProcess::Running) {
        m_process.waitForReadyRead(100);
        out += m_process.readAllStandardOutput();
        const QRegularExpressionMatch match = line.match(QString::fromUtf8(out));
        if (match.hasMatch()) {
            m_port = match.captured(2).toUShort();
            return m_port != 0;
        }
    }
    return false;
}

void ServerProcess::killHard()
{
    m_process.kill();
    m_process.waitForFinished(5000);
}

ServerProcess::Result ServerProcess::run(const QStringList &arguments, int timeoutMs)
{
    QProcess process;
    process.start(executable(), arguments);
    Result result;
    if (!process.waitForFinished(timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}
