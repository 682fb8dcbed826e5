#pragma once

#include "client/update/updatefiles.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <chrono>

class QProgressBar;
class QWidget;

namespace client {

class Dialogs;
class ProcessStarter;
class SessionState;
struct ProcessEnd;

// What gives the updater copy the right to replace the program: nothing when this user may
// write the program's folder, otherwise pkexec (`command` empty when it is not installed).
struct Elevation
{
    bool needed = false;
    QString command;

    static Elevation forFiles(const UpdateFiles &files);
};

// The program's self-update. When the lobby refuses this version ("OV"), it runs the updater
// copy of the installed program (through the elevation when there is one) and waits for it;
// when the copy has installed the new version, this program starts it, as this user and with
// this session's environment, and asks to end. When the copy fails, or no update can run here
// (no known program file, a folder only root may write without pkexec to ask, or an update of
// this run that failed already), the user is told why and what to do instead, and the program
// goes on offline.
class SelfUpdate : public QObject
{
    Q_OBJECT

public:
    // `updaterOptions` are passed on to the new version. `window` shows the download's
    // progress.
    SelfUpdate(UpdateFiles files, Elevation elevation, SessionState &session, Dialogs &dialogs,
               QWidget &window, ProcessStarter &processes, QStringList updaterOptions,
               QObject *parent = nullptr);

    // Whether this user may install an update in this process (start-up with "update").
    bool mayInstall() const;
    // The installation in this process. True when the new version runs and this program must
    // end.
    bool install(std::chrono::milliseconds downloadTimeout = std::chrono::milliseconds(30000));

    // The lobby refused this version.
    void updateRequired();

Q_SIGNALS:
    void statusLine(const QString &text);
    // The new version runs: end at once.
    void endRequested();

private:
    // Why no update can run now; empty when one can.
    QString blocker() const;
    QUrl downloadUrl() const;
    void tellNoUpdate(const QString &reason);
    void copyFinished(const ProcessEnd &end);
    // Tells the user the new version is in place and starts it; false (after telling why)
    // when it does not start.
    bool startNewVersion();
    void fail(const QString &reason, const QString &message);
    // Below the chat input, across the window, while the download runs.
    QProgressBar *showProgressBar();

    UpdateFiles m_files;
    Elevation m_elevation;
    SessionState &m_session;
    Dialogs &m_dialogs;
    QWidget &m_window;
    ProcessStarter &m_processes;
    QStringList m_updaterOptions;
    QString m_failure;
    QPointer<QProgressBar> m_copyProgress; // set while the updater copy runs
};

} // namespace client
