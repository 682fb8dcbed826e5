#pragma once

#include "protocol/stats.h"

#include <QByteArrayView>
#include <QString>
#include <optional>
#include <variant>

namespace client {

// A results log as the games write it after a round, read as far as the statistics need it.
// Text in code page 1252 with CR LF line ends. Seven header lines, each 'Key' 'Value', of
// which the third (header value A), the fifth (the game type) and the sixth (header value B)
// are used; then a block of twelve lines per player, each value starting at a fixed column
// and closed by one character. An empty line where a block would start, or the end of the
// file, ends the players; there are at most 16. The values keep their meaning to the games:
// the client passes them on, reading only P2 (rounds played) and P3 (kills) as numbers.
struct ResultLog
{
    static constexpr qsizetype kMaxRecords = 16;

    QString headerA;
    QString gameType; // the German names already turned into "Survival" / "Team Survival"
    QString headerB;
    // In file order, as the log holds them: names not filtered, kills not adjusted, P1 as the
    // 16-bit number it was read as.
    QList<protocol::StatsRecord> records;
    int ownIndex = 0;           // 1-based position of the last record of the local player; 0: none
    int severalRoundsCount = 0; // records with more than one round played
    qint16 killSum = 0; // kills added up, rounded to a whole number (halves to even) at each step
};

// Where reading a log failed, numbered as the report to the lobby's service account tells it.
enum class ResultLogError {
    Header = 2,   // lines 1 to 5, header value A; also a file that cannot be opened
    GameType = 3, // the game type, lines 6 and 7
    Records = 5,  // the player records
};

// Reads a log from its bytes. `localPlayerName` is the game's name for the local player,
// which finds the own record. A line missing, a line shorter than its value's column, a value
// that is not the number it must be, a sum beyond 16 bits or a 17th player is an error.
std::variant<ResultLog, ResultLogError> readResultLog(QByteArrayView content,
                                                      const QString &localPlayerName);

// What is uploaded of a round, or nullopt when the round is not worth it: more kills than
// players or than players with more than one round, or a game type other than "Survival" and
// "Team Survival". Names are filtered; in a Survival round a player killed by himself has one
// kill less.
std::optional<protocol::StatsUpload> statsUploadOf(const ResultLog &log);

} // namespace client
