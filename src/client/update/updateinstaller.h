#pragma once

#include "client/update/updatefiles.h"

#include <QObject>
#include <QStringList>
#include <QUrl>
#include <chrono>

namespace client {

class Dialogs;

// Installs a new version of the program over the installed one, in the copy started with
// "update": downloads it beside the program, checks it against the published SHA-256 and that
// it runs, keeps the installed program as "old.tmp", renames the download over the program in
// one step and starts the new version. Whatever fails leaves the installed program as it was,
// and the user is told why.
class UpdateInstaller : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kDownloadTimeout{30000};

    // `restartArguments` are given to the new version when it is started.
    UpdateInstaller(UpdateFiles files, QUrl url, Dialogs &dialogs, QStringList restartArguments,
                    std::chrono::milliseconds downloadTimeout = kDownloadTimeout,
                    QObject *parent = nullptr);

    // Runs the installation to its end (the event loop runs meanwhile). True when the new
    // version was installed and started: this program must end. Otherwise `failure()` says why.
    bool install();
    QString failure() const { return m_failure; }

Q_SIGNALS:
    void statusLine(const QString &text);
    void progress(qint64 received, qint64 total);

private:
    bool download();
    bool verify();
    bool swap();
    bool fail(const QString &reason, const QString &message);

    UpdateFiles m_files;
    QUrl m_url;
    Dialogs &m_dialogs;
    QStringList m_restartArguments;
    std::chrono::milliseconds m_timeout;
    QString m_failure;
};

} // namespace client
