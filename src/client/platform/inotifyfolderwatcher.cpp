#include "client/platform/inotifyfolderwatcher.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSocketNotifier>

#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace client {

namespace {

constexpr uint32_t kFolderMask = IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_ONLYDIR;

} // namespace

InotifyFolderWatcher::InotifyFolderWatcher(QObject *parent) : FolderWatcher(parent) {}

InotifyFolderWatcher::~InotifyFolderWatcher()
{
    stopNotify();
}

bool InotifyFolderWatcher::startNotify(const QString &folder)
{
    stopNotify();
    if (!QFileInfo(folder).isDir())
        return false;
    m_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_fd < 0)
        return false;
    addTree(QDir::cleanPath(folder), false);
    if (m_folders.isEmpty()) {
        stopNotify();
        return false;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &InotifyFolderWatcher::readEvents);
    return true;
}

void InotifyFolderWatcher::stopNotify()
{
    if (m_notifier) {
        // May run inside the notifier's own signal.
        m_notifier->setEnabled(false);
        m_notifier->deleteLater();
        m_notifier = nullptr;
    }
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_folders.clear();
    m_linkedOpen.clear();
}

void InotifyFolderWatcher::addTree(const QString &folder, bool announceFiles)
{
    const int wd = inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), kFolderMask);
    if (wd < 0)
        return;
    m_folders.insert(wd, folder);
    QDirIterator entries(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden);
    while (entries.hasNext()) {
        const QString path = entries.next();
        const QFileInfo info = entries.fileInfo();
        if (info.isDir() && !info.isSymLink())
            addTree(path, announceFiles);
        else if (announceFiles && info.isFile())
            Q_EMIT itemUpdated(path);
    }
}

void InotifyFolderWatcher::readEvents()
{
    alignas(inotify_event) std::array<char, 8192> buffer;
    const int fd = m_fd;
    for (;;) {
        const ssize_t length = ::read(m_fd, buffer.data(), buffer.size());
        if (length <= 0)
            return; // EAGAIN: all read
        for (ssize_t at = 0; at < length;) {
            inotify_event event;
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char *name = buffer.data() + at + sizeof event;
            at += ssize_t(sizeof event + event.len);

            if (event.mask & IN_IGNORED) {
                m_folders.remove(event.wd);
                continue;
            }
            const auto folder = m_folders.constFind(event.wd);
            if (folder == m_folders.cend() || event.len == 0)
                continue;
            const QString path = *folder + QLatin1Char('/') + QFile::decodeName(name);
            if (event.mask & IN_ISDIR) {
                if (event.mask & (IN_CREATE | IN_MOVED_TO))
                    addTree(path, true);
            } else if (event.mask & IN_CREATE) {
                // The closing of a file that was created unnamed comes under "#" and its inode
                // number, after it has been linked in.
                struct stat info;
                if (::stat(QFile::encodeName(path).constData(), &info) == 0)
                    m_linkedOpen.insert(
                        *folder + QStringLiteral("/#") + QString::number(info.st_ino), path);
            } else if (event.mask & (IN_CLOSE_WRITE | IN_MOVED_TO)) {
                // A file closed under a name of its own, or unnamed and linked in, that is
                // still there (not the unnamed one saved over an older file by a rename).
                QString updated = m_linkedOpen.take(path);
                m_linkedOpen.removeIf([&](const auto &entry) { return entry.value() == path; });
                if (updated.isEmpty())
                    updated = path;
                if (QFileInfo::exists(updated))
                    Q_EMIT itemUpdated(updated);
            }
            if (m_fd != fd)
                return; // a receiver stopped or restarted the watch
        }
    }
}

} // namespace client
