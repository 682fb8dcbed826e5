#pragma once

#include <QString>

namespace server {

class AccountStore;
class StatsStore;

// The accounts and statistics as the pages read them: through read-only connections of their
// own beside the lobby's writer, one per thread that asks (a QtSql connection belongs to the
// thread that opened it and is closed by it when the thread ends), opened on first use and
// again after a failure.
class PageStores
{
public:
    explicit PageStores(QString databasePath);

    // The calling thread's readers; nullptr while the database cannot be opened.
    const AccountStore *accounts() const;
    const StatsStore *stats() const;

    struct Readers;

private:
    Readers *readers() const;

    QString m_path;
    quint64 m_id; // the key of this instance's readers in each thread
};

} // namespace server
