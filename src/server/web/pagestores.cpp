#include "server/web/pagestores.h"

#include "server/core/serverlog.h"
#include "server/store/accountstore.h"
#include "server/store/database.h"
#include "server/store/statsstore.h"

namespace server {

struct PageStores::Readers
{
    Database database;
    AccountStore accounts{database};
    StatsStore stats{database};
};

PageStores::PageStores(QString databasePath) : m_path(std::move(databasePath)) {}

PageStores::~PageStores() = default;

PageStores::Readers *PageStores::readers()
{
    const QMutexLocker lock(&m_mutex);
    std::unique_ptr<Readers> &mine = m_readers[std::this_thread::get_id()];
    if (!mine) {
        auto opened = std::make_unique<Readers>();
        if (!opened->database.openReadOnly(m_path)) {
            qCWarning(lcStore).noquote()
                << "pages cannot read the database:" << opened->database.errorString();
            return nullptr;
        }
        mine = std::move(opened);
    }
    return mine.get();
}

const AccountStore *PageStores::accounts()
{
    Readers *r = readers();
    return r ? &r->accounts : nullptr;
}

const StatsStore *PageStores::stats()
{
    Readers *r = readers();
    return r ? &r->stats : nullptr;
}

} // namespace server
