#include "client/stats/resultlogwatch.h"

#include "client/platform/folderwatcher.h"
#include "client/stats/resultlogname.h"

#include <QFileInfo>
#include <QTimer>

namespace client {

ResultLogWatch::ResultLogWatch(FolderWatcher &watcher, std::chrono::milliseconds settleTime,
                               QObject *parent)
    : QObject(parent), m_settleTime(settleTime)
{
    connect(&watcher, &FolderWatcher::itemUpdated, this, &ResultLogWatch::itemUpdated);
}

void ResultLogWatch::itemUpdated(const QString &path)
{
    if (!isResultLogName(QFileInfo(path).fileName()))
        return;
    QTimer *&timer = m_settling[path];
    if (!timer) {
        timer = new QTimer(this);
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this, path] {
            m_settling.take(path)->deleteLater();
            Q_EMIT resultLogWritten(path);
        });
    }
    timer->start(m_settleTime);
}

} // namespace client
