#include "client/update/selfupdate.h"

#include "client/platform/dialogs.h"
#include "client/platform/processstarter.h"
#include "client/session/clientversion.h"
#include "client/session/sessionstate.h"
#include "client/settings/lobbyaddress.h"
#include "client/update/updatecopy.h"
#include "client/update/updateinstaller.h"

#include <QProgressBar>
#include <QStandardPaths>
#include <QWidget>
#include <unistd.h>

namespace client {

namespace {

// pkexec's exit codes when the password was not given or not accepted.
constexpr int kPkexecDismissed = 126;
constexpr int kPkexecNotAuthorized = 127;

} // namespace

Elevation Elevation::forFiles(const UpdateFiles &files)
{
    if (files.folderWritable())
        return {};
    return {true, QStandardPaths::findExecutable(QStringLiteral("pkexec"))};
}

SelfUpdate::SelfUpdate(UpdateFiles files, Elevation elevation, SessionState &session,
                       Dialogs &dialogs, QWidget &window, ProcessStarter &processes,
                       QStringList updaterOptions, QObject *parent)
    : QObject(parent), m_files(std::move(files)), m_elevation(std::move(elevation)),
      m_session(session), m_dialogs(dialogs), m_window(window), m_processes(processes),
      m_updaterOptions(std::move(updaterOptions))
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

QProgressBar *SelfUpdate::showProgressBar()
{
    auto *bar = new QProgressBar(&m_window);
    bar->setObjectName(QStringLiteral("updateProgress"));
    bar->setGeometry(10, m_window.height() - 24, m_window.width() - 20, 16);
    bar->setRange(0, 0);
    bar->show();
    return bar;
}

bool SelfUpdate::install(std::chrono::milliseconds downloadTimeout)
{
    Q_EMIT statusLine(QStringLiteral("Downloading new version of quorvel..."));
    const std::unique_ptr<QProgressBar> bar(showProgressBar());
    UpdateInstaller installer(m_files, downloadUrl(), downloadTimeout);
    connect(&installer, &UpdateInstaller::progress, bar.get(),
            [bar = bar.get()](qint64 received, qint64 total) {
                if (total <= 0)
                    return;
                bar->setRange(0, 1000);
                bar->setValue(int(received * 1000 / total));
            });
    if (!installer.install()) {
        fail(installer.failure(), installer.failureMessage());
        return false;
    }
    return startNewVersion();
}

QString SelfUpdate::blocker() const
{
    if (!m_failure.isEmpty())
        return QStringLiteral("the update failed: %1").arg(m_failure);
    if (m_files.executable.isEmpty())
        return QStringLiteral("its program file is not known");
    if (m_elevation.needed && m_elevation.command.isEmpty())
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

void SelfUpdate::fail(const QString &reason, const QString &message)
{
    m_failure = reason;
    Q_EMIT statusLine(QStringLiteral("Update failed: %1").arg(reason));
    m_dialogs.messageBox(applicationTitle(), message, Dialogs::Buttons::Ok, Dialogs::Icon::Warning);
}

void SelfUpdate::updateRequired()
{
    if (m_copyProgress)
        return; // an update runs already
    if (const QString reason = blocker(); !reason.isEmpty())
        return tellNoUpdate(reason);

    m_dialogs.messageBox(applicationTitle(), QStringLiteral("Have to update Quorvel"));
    Q_EMIT statusLine(QStringLiteral("Downloading new version of quorvel..."));
    m_copyProgress = showProgressBar();
    const QStringList copy{QString::fromLatin1(kUpdateCopyCommand), QStringLiteral("--web"),
                           HostPort{m_session.webHost, m_session.webPort}.toString()};
    if (m_elevation.needed) {
        m_processes.run(m_elevation.command, QStringList{m_files.executable} + copy, *this,
                        [this](const ProcessEnd &end) { copyFinished(end); });
    } else {
        m_processes.run(m_files.executable, copy, *this,
                        [this](const ProcessEnd &end) { copyFinished(end); });
    }
}

void SelfUpdate::copyFinished(const ProcessEnd &end)
{
    delete m_copyProgress;
    if (end.exitCode == 0 && end.error.isEmpty()) {
        if (startNewVersion())
            Q_EMIT endRequested();
        return;
    }
    UpdateCopyFailure failure = parseUpdateCopyFailure(end.output);
    if (failure.reason.isEmpty()) {
        if (!end.error.isEmpty())
            failure.reason = end.error;
        else if (m_elevation.needed &&
                 (end.exitCode == kPkexecDismissed || end.exitCode == kPkexecNotAuthorized))
            failure.reason = QStringLiteral("the administrator's password was not given");
        else
            failure.reason = QStringLiteral("the updater ended with code %1").arg(end.exitCode);
    }
    if (failure.message.isEmpty())
        failure.message = UpdateInstaller::keptMessage(failure.reason);
    fail(failure.reason, failure.message);
}

bool SelfUpdate::startNewVersion()
{
    m_dialogs.messageBox(QStringLiteral("Done"), QStringLiteral("Update completed"));
    const QString error = m_processes.startDetached(m_files.executable, m_updaterOptions);
    if (error.isEmpty())
        return true;
    const QString reason = QStringLiteral("the new version could not be started (%1)").arg(error);
    fail(reason, QStringLiteral("The new version of QUORVEL is installed, but %1. Start QUORVEL "
                                "again.")
                     .arg(reason));
    return false;
}

} // namespace client
