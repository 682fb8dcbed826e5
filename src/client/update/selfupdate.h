#pragma once

#include "client/update/updatefiles.h"

#include <QObject>
#include <QStringList>
#include <chrono>

class QWidget;

namespace client {

class Dialogs;
class SessionState;

// The program's self-update. When the lobby refuses this version ("OV"), it starts a copy of
// the installed program with "update" (through pkexec when the program's folder is not
// writable for this user) and asks the program to end; that copy, at start-up, installs the
// published version and starts it. When no update can run here (no known program file, a
// folder only root may write without pkexec to ask, or an update of this run that failed
// already) the user is told why and what to do instead, and the program goes on offline.
class SelfUpdate : public QObject
{
    Q_OBJECT

public:
    // `updaterOptions` are passed on to the updater copy and from it to the new version.
    // `window` shows the download's progress.
    SelfUpdate(UpdateFiles files, SessionState &session, Dialogs &dialogs, QWidget &window,
               QStringList updaterOptions, QObject *parent = nullptr);

    // Whether this user may install an update (start-up with "update").
    bool mayInstall() const;
    // The installation. True when the new version runs and this program must end.
    bool install(std::chrono::milliseconds downloadTimeout = std::chrono::milliseconds(30000));

    // The lobby refused this version.
    void updateRequired();

Q_SIGNALS:
    void statusLine(const QString &text);
    // The updater runs: end at once.
    void endRequested();

private:
    // Why no update can run now; empty when one can.
    QString blocker() const;
    QUrl downloadUrl() const;
    void tellNoUpdate(const QString &reason);

    UpdateFiles m_files;
    SessionState &m_session;
    Dialogs &m_dialogs;
    QWidget &m_window;
    QStringList m_updaterOptions;
    QString m_failure;
};

} // namespace client
