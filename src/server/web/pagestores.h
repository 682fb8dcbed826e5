#pragma once

#include <QMutex>
#include <QString>
#include <map>
#include <memory>
#include <thread>

namespace server {

class AccountStore;
class StatsStore;

// The accounts and statistics as the pages read them: through read-only connections of their
// own beside the lobby's writer, one per thread that asks (a QtSql connection belongs to the
// thread that opened it), opened on first use and again after a failure.
class PageStores
{
public:
    struct Readers;

    explicit PageStores(QString databasePath);
    ~PageStores();
    PageStores(const PageStores &) = delete;
    PageStores &operator=(const PageStores &) = delete;

    // The calling thread's readers; nullptr while the database cannot be opened.
    const AccountStore *accounts();
    const StatsStore *stats();

private:
    Readers *readers();

    QString m_path;
    QMutex m_mutex;
    std::map<std::thread::id, std::unique_ptr<Readers>> m_readers;
};

} // namespace server
