#include "serverprocess.h"

#include "wait.h"

#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRegularExpression>
#include <memory>
#include <sys/resource.h>

bool ServerProcess::start(const QString &program, const QStringList &arguments, int timeoutMs)
{
    killHard();
    m_port = 0;
    m_webPort = 0;
    QStringList args = arguments;
    // A lobby server under test never takes the well-known web port.
    const bool lobby = program == kLobbyServer;
    if (lobby && !args.contains(QStringLiteral("--http-port")))
        args << QStringLiteral("--http-port") << QStringLiteral("0");
    if (const int descriptors = m_descriptorLimit; descriptors > 0) {
        m_process.setChildProcessModifier([descriptors] {
            const rlimit limit{rlim_t(descriptors), rlim_t(descriptors)};
            setrlimit(RLIMIT_NOFILE, &limit);
        });
    }
    m_process.start(program, args);
    QByteArray out;
    QByteArray err;
    // The lobby names its web port on a second line, or says on stderr that it has none.
    const int lines = lobby ? 2 : 1;
    waitUntil(
        [&] {
            out += m_process.readAllStandardOutput();
            err += m_process.readAllStandardError();
            const int said = int(out.count('\n'));
            return said >= lines || (said == 1 && !err.isEmpty()) ||
                   m_process.state() == QProcess::NotRunning;
        },
        timeoutMs);
    static const QRegularExpression port(QStringLiteral("(\\d+)\\s*$"));
    const QList<QByteArray> said = out.split('\n');
    m_port = port.match(QString::fromUtf8(said.value(0))).captured(1).toUShort();
    if (lobby)
        m_webPort = port.match(QString::fromUtf8(said.value(1))).captured(1).toUShort();
    return m_port != 0;
}

qint64 ServerProcess::residentKb() const
{
    QFile status(QStringLiteral("/proc/%1/status").arg(m_process.processId()));
    if (m_process.state() != QProcess::Running || !status.open(QIODevice::ReadOnly))
        return 0;
    static const QRegularExpression rss(QStringLiteral("VmRSS:\\s*(\\d+)"));
    return rss.match(QString::fromLatin1(status.readAll())).captured(1).toLongLong();
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

WebReply webGet(const QString &url)
{
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.get(QNetworkRequest(QUrl(url))));
    waitUntil([&] { return reply->isFinished(); }, 10000);
    if (!reply->isFinished())
        return {};
    return {reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(),
            reply->header(QNetworkRequest::ContentTypeHeader).toByteArray(),
            QString::fromUtf8(reply->readAll())};
}

QString ServerProcess::webPage(const QString &pathAndQuery) const
{
    const WebReply reply =
        webGet(QStringLiteral("http://127.0.0.1:%1%2").arg(m_webPort).arg(pathAndQuery));
    return reply.status == 200 ? reply.body : QString();
}
