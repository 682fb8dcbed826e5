#pragma once

#include "protocol/message.h"
#include "protocol/stats.h"
#include "server/store/writequeue.h"

#include <QString>
#include <variant>

namespace server {

class AccountLimits;
class MessageRouter;
class StatsStore;

// The statistics traffic of logged-in players: "DS" stores one round for its sender (or,
// malformed, keeps it as a rejected upload) and "RS" restarts the sender's figures. Both are
// rate-limited per account; what goes beyond the limit is dropped unstored. While another
// process holds the database's lock, the writes wait in order and are tried again.
class StatsHandler
{
public:
    StatsHandler(StatsStore &store, AccountLimits &limits);
    void registerWith(MessageRouter &router);

    static constexpr int kMaxRecords = 16;

    // The round in `message`, or why it is not one the lobby keeps: a known game type, at
    // most kMaxRecords whole records, an own index 0..records, and numbers in P1 to P3.
    static std::variant<protocol::StatsUpload, QString> check(const protocol::Message &message);

private:
    StatsStore &m_store;
    AccountLimits &m_limits;
    WriteQueue m_writes{QStringLiteral("statistics")};
};

} // namespace server
