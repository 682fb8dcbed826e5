#include "server/web/pagestores.h"

#include "server/core/serverlog.h"
#include "server/store/accountstore.h"
#include "server/store/database.h"
#include "server/store/statsstore.h"

#include <atomic>
#include <map>
#include <memory>

namespace server {

struct PageStores::Readers
{
    Database database;
    AccountStore accounts{database};
    StatsStore stats{database};
};

namespace {

std::atomic<quint64> s_instances{0};

// Each thread's connections, closed by the thread itself as it ends.
thread_local std::map<quint64, std::unique_ptr<PageStores::Readers>> t_readers;

} // namespace

PageStores::PageStores(QString databasePath) : m_path(std::move(databasePath)), m_id(++s_instances)
{
}

PageStores::Readers *PageStores::readers() const
{
    std::unique_ptr<Readers> &mine = t_readers[m_id];
    if (!mine) {
        auto opened = std::make_unique<Readers>();
        if (!opened->database.openReadOnly(m_path)) {
            qCWarning(lcStore).noquote()
                << "the web pages cannot read the database:" << opened->database.errorString();
            return nullptr;
        }
        mine = std::move(opened);
    }
    return mine.get();
}

const AccountStore *PageStores::accounts() const
{
    Readers *r = readers();
    return r ? &r->accounts : nullptr;
}

const StatsStore *PageStores::stats() const
{
    Readers *r = readers();
    return r ? &r->stats : nullptr;
}

} // namespace server
