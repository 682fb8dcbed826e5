#include "client/update/selfupdate.h"

#include "client/platform/dialogs.h"
#include "client/session/clientversion.h"
#include "client/session/sessionstate.h"
#include "client/settings/lobbyaddress.h"
#include "client/update/updateinstaller.h"

#include <QProcess>
#include <QProgressBar>
#include <QStandardPaths>
#include <QWidget>
#include <unistd.h>

namespace client {

SelfUpdate::SelfUpdate(UpdateFiles files, SessionState &session, Dialogs &dialogs, QWidget &window,
                       QStringList updaterOptions, QObject *parent)
    : QObject(parent), m_files(std::move(files)), m_session(session), m_dialogs(dialogs),
      m_window(window), m_updaterOptions(std::move(updaterOptions))
{
}

bool SelfUpdate::mayInstall() const
{
    return !m_files.executable.isEmpty() && (m_files.folderWritable() || ::geteuid() == 0);
}

QUrl SelfUpdate::downloadUrl() const
{
    return updateUrl(m_session.webHost, m_session.webPort);
}

bool SelfUpdate::install(std::chrono::milliseconds downloadTimeout)
{
    // Below the chat input, across the window, while the download runs.
    QProgressBar bar(&m_window);
    bar.setObjectName(QStringLiteral("updateProgress"));
    bar.setGeometry(10, m_window.height() - 24, m_window.width() - 20, 16);
    bar.setRange(0, 0);
    bar.show();

    // The new version reads its servers from the user's data folder, as any start does.
    UpdateInstaller installer(m_files, downloadUrl(), m_dialogs, m_updaterOptions, downloadTimeout);
    connect(&installer, &UpdateInstaller::statusLine, this, &SelfUpdate::statusLine);
    connect(&installer, &UpdateInstaller::progress, &bar, [&bar](qint64 received, qint64 total) {
        if (total <= 0)
            return;
        bar.setRange(0, 1000);
        bar.setValue(int(received * 1000 / total));
    });
    const bool installed = installer.install();
    m_failure = installer.failure();
    return installed;
}

QString SelfUpdate::blocker() const
{
    if (!m_failure.isEmpty())
        return QStringLiteral("the update failed: %1").arg(m_failure);
    if (m_files.executable.isEmpty())
        return QStringLiteral("its program file is not known");
    if (!m_files.folderWritable() &&
        QStandardPaths::findExecutable(QStringLiteral("pkexec")).isEmpty())
        return QStringLiteral("only an administrator may change %1, and pkexec, which would ask "
                              "for the password, is not installed")
            .arg(m_files.folder());
    return {};
}

void SelfUpdate::tellNoUpdate(const QString &reason)
{
    const QString text =
        QStringLiteral("This version of QUORVEL (%1) is too old, and it cannot update itself: "
                       "%2. Install the new version from %3, then start QUORVEL again.")
            .arg(clientVersion(), reason, downloadUrl().toString());
    Q_EMIT statusLine(text);
    m_dialogs.messageBox(applicationTitle(), text, Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
}

void SelfUpdate::updateRequired()
{
    if (const QString reason = blocker(); !reason.isEmpty())
        return tellNoUpdate(reason);

    m_dialogs.messageBox(applicationTitle(), QStringLiteral("Have to update Quorvel"));
    // The copy may run as root, with root's data folder: it is told the servers.
    QStringList arguments{QStringLiteral("update"), QStringLiteral("--lobby"),
                          HostPort{m_session.lobbyServerHost, m_session.lobbyPort}.toString(),
                          QStringLiteral("--web"),
                          HostPort{m_session.webHost, m_session.webPort}.toString()};
    arguments += m_updaterOptions;
    bool started = false;
    if (m_files.folderWritable()) {
        started = QProcess::startDetached(m_files.executable, arguments);
    } else {
        started = QProcess::startDetached(QStringLiteral("pkexec"),
                                          QStringList{m_files.executable} + arguments);
    }
    if (!started)
        return tellNoUpdate(QStringLiteral("the updater could not be started"));
    Q_EMIT endRequested();
}

} // namespace client
