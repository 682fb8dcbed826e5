#pragma once

#include <QObject>
#include <QString>

namespace client {

// Watches a folder and every folder below it (`mChNotifications`). Each file that is written
// and closed, or moved into the tree, is announced once with its full path on the UI thread,
// at once and without coalescing. Starting again replaces the folder watched before.
class FolderWatcher : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    // False when the folder cannot be watched (missing, unreadable, no watches left); nothing
    // is watched then.
    virtual bool startNotify(const QString &folder) = 0;
    virtual void stopNotify() = 0;
    virtual bool isWatching() const = 0;

Q_SIGNALS:
    // A file in the tree was updated: written, or moved in from elsewhere.
    void itemUpdated(const QString &path);
};

} // namespace client
