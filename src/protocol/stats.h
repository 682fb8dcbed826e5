#pragma once

#include "protocol/number.h"
#include "protocol/wiremessage.h"

#include <QList>
#include <QString>

// Statistics: the upload of a round from the results log, and the reset.

namespace protocol {

// One player's record of a round: nine fields, in the order they travel (P1, name, P2, P3,
// P4, P5, P6, P8, P7 of the results log), each in the form the log holds it. The three numbers
// must be numbers: a record where one is not cannot be decoded. What the games mean by the
// fields that are neither counted nor compared is not known; they travel as opaque text.
struct StatsRecord
{
    NumberText p1;      // P1: a 16-bit number, meaning not known
    QString playerName; // filtered
    NumberText rounds;  // P2: rounds played
    NumberText kills;   // P3: less one for a Survival player who killed himself
    QString p4;         // opaque
    QString p5;         // opaque
    QString p6;         // opaque
    QString p8;         // opaque
    QString killedBy;   // P7: the name of the player who killed him, filtered

    bool operator==(const StatsRecord &) const = default;
};

// DS from a client: one round. The records follow the four header fields, nine fields each,
// and one more separator ends the message. Unusable when the own index is not a number, the
// fields after the header are not whole records or a record's number is none; the rest (the game
// type, how many records, whether the own index names one) is for the receiver to judge.
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
