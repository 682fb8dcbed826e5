#pragma once

#include "protocol/wiremessage.h"

#include <QList>
#include <QString>

// Statistics: the upload of a round from the results log, and the reset.

namespace protocol {

// One player's record of a round: nine fields, in the order they travel, each as the results
// log holds it.
struct StatsRecord
{
    QString p1;
    QString playerName; // filtered
    QString p2;
    QString p3; // less one for a Survival player who killed himself
    QString p4;
    QString p5;
    QString p6;
    QString p8;
    QString p7; // filtered

    bool operator==(const StatsRecord &) const = default;
};

// DS from a client: one round. The records follow the four header fields, nine fields each,
// and one more separator ends the message. Unusable when the own index is not a number or
// the fields after the header are not whole records; the rest (the game type, how many
// records, whether the own index names one) is for the receiver to judge.
struct StatsUpload
{
    static constexpr Code kCode = Code::StatsUpload;
    static constexpr Direction kDirection = Direction::ToServer;

    qint64 ownIndex = 0; // 1-based position of the uploader's record, rounded down; 0: none
    QString headerA;
    QString gameType; // "Survival" or "Team Survival"
    QString headerB;
    QList<StatsRecord> records;

    QByteArray encode() const;
    // Takes the message cut into every field or into the four header fields only, the last
    // of which then holds the records with their separators.
    static Decoded<StatsUpload> decode(const Message &message);
    bool operator==(const StatsUpload &) const = default;
};

using StatsReset = BareMessage<Code::StatsReset, Direction::ToServer>; // RS

} // namespace protocol
