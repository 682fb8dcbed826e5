#pragma once

#include "protocol/message.h"
#include "protocol/stats.h"
#include "server/store/writequeue.h"

#include <QString>
#include <variant>

namespace server {

class AccountLimits;
class MessageRouter;
class RoundAnnouncer;
class StatsStore;

// The statistics traffic of logged-in players: "DS" stores one round for its sender (or,
// malformed, keeps it as a rejected upload) and "RS" restarts the sender's figures. Both are
// rate-limited per account; what goes beyond the limit is dropped unstored. While the
// database refuses writes for now (another process holds its lock, the disk is full), they
// wait in order and are tried again. A counted round is told to the uploader's room through
// `rounds`, when given.
class StatsHandler
{
public:
    StatsHandler(StatsStore &store, AccountLimits &limits, RoundAnnouncer *rounds = nullptr);
    void registerWith(MessageRouter &router);

    static constexpr int kMaxRecords = 16;
    // Names are cut as the results log's name filter cuts them; the other texts are one
    // short value of a log line each (a map, a server name, a figure the games write).
    static constexpr qsizetype kMaxNameChars = 15;
    static constexpr qsizetype kMaxTextChars = 64;

    // The round in `message`, or why it is not one the lobby keeps: a known game type, at
    // most kMaxRecords whole records, an own index 0..records, and counted numbers in P1 to
    // P3 (rounds played cannot be negative; P1 and the kills, less one for a player who
    // killed himself, can). The texts come back without control characters and cut to
    // their lengths.
    static std::variant<protocol::StatsUpload, QString> check(const protocol::Message &message);

private:
    StatsStore &m_store;
    AccountLimits &m_limits;
    RoundAnnouncer *m_rounds;
    WriteQueue m_writes{QStringLiteral("statistics")};
};

} // namespace server
