#pragma once

#include <QHash>
#include <QObject>
#include <chrono>

class QTimer;

namespace client {

class FolderWatcher;

// Picks the results logs out of what the folder watcher of the running game reports
// (`mChNotifications_Change`) and announces each once it has been left alone for a moment:
// a log that the game writes in several pieces is announced once, complete. Every later
// write is announced again.
class ResultLogWatch : public QObject
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds kSettleTime{300};

    explicit ResultLogWatch(FolderWatcher &watcher,
                            std::chrono::milliseconds settleTime = kSettleTime,
                            QObject *parent = nullptr);

Q_SIGNALS:
    void resultLogWritten(const QString &path);

private:
    void itemUpdated(const QString &path);

    std::chrono::milliseconds m_settleTime;
    QHash<QString, QTimer *> m_settling; // a log written lately -> its quiet time
};

} // namespace client
