#pragma once

#include "client/platform/folderwatcher.h"

#include <QHash>

class QSocketNotifier;

namespace client {

// The folder watcher on Linux: one inotify instance, a watch on each folder of the tree (new
// folders get one as they appear, together with the files already in them), read through a
// QSocketNotifier on the UI thread. A file written unnamed and then linked into a folder (as
// QSaveFile writes on Linux) is announced by the name it was linked under, once it is closed.
class InotifyFolderWatcher final : public FolderWatcher
{
    Q_OBJECT

public:
    explicit InotifyFolderWatcher(QObject *parent = nullptr);
    ~InotifyFolderWatcher() override;

    bool startNotify(const QString &folder) override;
    void stopNotify() override;
    bool isWatching() const override { return m_fd >= 0; }

private:
    // Watches `folder` and the folders below it; with `announceFiles`, the files found there
    // are announced (they were written before the watch could see them).
    void addTree(const QString &folder, bool announceFiles);
    void readEvents();

    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
    QHash<int, QString> m_folders; // watch descriptor -> folder path
    // A file linked in while still open: the path its closing is reported under (the folder
    // and "#" with its inode number) -> the path it was linked as.
    QHash<QString, QString> m_linkedOpen;
};

} // namespace client
