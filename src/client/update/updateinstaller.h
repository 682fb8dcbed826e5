#pragma once

#include "client/update/updatefiles.h"

#include <QObject>
#include <QStringList>
#include <QUrl>
#include <chrono>

namespace client {

// Installs a new version of the program over the installed one: downloads it beside the
// program, checks its published signature against the key built into this program and that it
// runs, keeps the installed
// program as "old.tmp" and renames the download over the program in one step. It starts
// nothing: whoever runs it starts the new version. Whatever fails leaves the installed program
// as it was.
class UpdateInstaller : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kDownloadTimeout{30000};

    UpdateInstaller(UpdateFiles files, QUrl url,
                    std::chrono::milliseconds downloadTimeout = kDownloadTimeout,
                    QObject *parent = nullptr);

    // Runs the installation to its end (the event loop runs meanwhile). True when the new
    // version is installed. Otherwise `failure()` says why and `failureMessage()` is the text
    // that tells the user.
    bool install();
    QString failure() const { return m_failure; }
    QString failureMessage() const { return m_failureMessage; }

    // The text that tells the user an update was not installed for `reason`.
    static QString keptMessage(const QString &reason);

Q_SIGNALS:
    void progress(qint64 received, qint64 total);

private:
    bool download();
    bool verify();
    bool swap();
    bool fail(const QString &reason, const QString &message);

    UpdateFiles m_files;
    QUrl m_url;
    std::chrono::milliseconds m_timeout;
    QString m_failure;
    QString m_failureMessage;
};

} // namespace client
