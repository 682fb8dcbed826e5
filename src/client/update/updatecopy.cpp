#include "client/update/updatecopy.h"

#include "client/settings/lobbyaddress.h"
#include "client/update/updatefiles.h"
#include "client/update/updateinstaller.h"

#include <QCoreApplication>
#include <cstdio>

namespace client {

namespace {

QByteArray oneLine(const QString &text)
{
    return text.simplified().toUtf8() + '\n';
}

int failed(const QString &reason, const QString &message)
{
    const QByteArray output = oneLine(reason) + oneLine(message);
    std::fwrite(output.constData(), 1, size_t(output.size()), stdout);
    std::fflush(stdout);
    return 1;
}

} // namespace

int runUpdateCopy(const QStringList &arguments)
{
    const std::optional<HostPort> web =
        arguments.size() == 2 && arguments[0] == QLatin1String("--web")
            ? HostPort::parse(arguments[1], ServerAddresses::kWebPort)
            : std::nullopt;
    if (!web) {
        const QString reason = QStringLiteral("the updater was started without a web server");
        return failed(reason, UpdateInstaller::keptMessage(reason));
    }
    // Only this program itself is replaced, whatever the caller asks.
    UpdateInstaller installer(UpdateFiles{QCoreApplication::applicationFilePath()},
                              updateUrl(web->host, web->port));
    if (!installer.install())
        return failed(installer.failure(), installer.failureMessage());
    return 0;
}

UpdateCopyFailure parseUpdateCopyFailure(const QByteArray &output)
{
    const QList<QByteArray> lines = output.split('\n');
    return {QString::fromUtf8(lines.value(0)).trimmed(),
            QString::fromUtf8(lines.value(1)).trimmed()};
}

} // namespace client
