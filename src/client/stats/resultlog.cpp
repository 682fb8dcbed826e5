#include "client/stats/resultlog.h"

#include "client/stats/namefilter.h"
#include "protocol/cp1252.h"
#include "protocol/number.h"

#include <cmath>
#include <limits>

namespace client {

namespace {

const QString kSurvival = QStringLiteral("Survival");
const QString kTeamSurvival = QStringLiteral("Team Survival");

// The lines of a text, each without its line end (CR LF, CR or LF); a line end at the very
// end of the text starts no further line.
class Lines
{
public:
    explicit Lines(QStringView text) : m_text(text) {}

    bool atEnd() const { return m_at >= m_text.size(); }
    std::optional<QString> next()
    {
        if (atEnd())
            return std::nullopt;
        qsizetype end = m_at;
        while (end < m_text.size() && m_text[end] != u'\r' && m_text[end] != u'\n')
            ++end;
        const QString line = m_text.sliced(m_at, end - m_at).toString();
        m_at = end;
        if (m_at < m_text.size() && m_text[m_at] == u'\r')
            ++m_at;
        if (m_at < m_text.size() && m_text[m_at] == u'\n')
            ++m_at;
        return line;
    }

private:
    QStringView m_text;
    qsizetype m_at = 0;
};

// The text after the first "' '" (or from the third character when there is none), up to
// the line's last character.
std::optional<QString> headerValue(const QString &line)
{
    const qsizetype at = line.indexOf(QLatin1String("' '"));
    const qsizetype from = at < 0 ? 2 : at + 3;
    if (line.size() - 1 < from)
        return std::nullopt;
    return line.mid(from, line.size() - 1 - from);
}

// The text from `column` (1-based) up to the line's last character.
std::optional<QString> columnValue(const QString &line, qsizetype column)
{
    if (line.size() < column)
        return std::nullopt;
    return line.mid(column - 1, line.size() - column);
}

// A number rounded to a whole one, halves to even, if it fits in 16 bits.
std::optional<qint16> toInt16(double value)
{
    const double whole = std::nearbyint(value);
    if (whole < std::numeric_limits<qint16>::min() || whole > std::numeric_limits<qint16>::max())
        return std::nullopt;
    return qint16(whole);
}

QString gameTypeName(const QString &type)
{
    if (type == QStringLiteral("\u00dcberleben des Teams"))
        return kTeamSurvival;
    if (type == QStringLiteral("\u00dcberleben"))
        return kSurvival;
    return type;
}

// One player's block after its first line; nullopt when it is cut short or a value is bad.
std::optional<protocol::StatsRecord> readRecord(Lines &lines)
{
    QStringList block; // lines 2 to 12 of the block
    for (int i = 0; i < 11; ++i) {
        std::optional<QString> line = lines.next();
        if (!line)
            return std::nullopt;
        block << *line;
    }
    const auto at = [&](int line, qsizetype column) {
        return columnValue(block[line - 2], column);
    };
    const std::optional<QString> p1 = at(2, 15), p2 = at(4, 17), name = at(5, 16), p3 = at(6, 20),
                                 p4 = at(7, 19), p5 = at(8, 24), p6 = at(9, 24), p7 = at(10, 24),
                                 p8 = at(11, 16);
    if (!p1 || !p2 || !name || !p3 || !p4 || !p5 || !p6 || !p7 || !p8)
        return std::nullopt;
    const std::optional<double> p1Number = protocol::readNumber(*p1);
    const std::optional<qint16> p1Value = p1Number ? toInt16(*p1Number) : std::nullopt;
    const auto rounds = protocol::NumberText::read(*p2), kills = protocol::NumberText::read(*p3);
    if (!p1Value || !rounds.value || !kills.value)
        return std::nullopt;
    return protocol::StatsRecord{
        protocol::NumberText::of(*p1Value), *name, rounds, kills, *p4, *p5, *p6, *p8, *p7};
}

} // namespace

std::variant<ResultLog, ResultLogError> readResultLog(QByteArrayView content,
                                                      const QString &localPlayerName)
{
    const QString text = protocol::fromCp1252(content);
    Lines lines(text);
    ResultLog log;

    QStringList header;
    for (int i = 0; i < 5; ++i) {
        std::optional<QString> line = lines.next();
        if (!line)
            return ResultLogError::Header;
        header << *line;
    }
    const std::optional<QString> headerA = headerValue(header[2]);
    if (!headerA)
        return ResultLogError::Header;
    log.headerA = *headerA;

    const std::optional<QString> gameType = headerValue(header[4]);
    const std::optional<QString> line6 = lines.next();
    const std::optional<QString> headerB = line6 ? headerValue(*line6) : std::nullopt;
    if (!gameType || !headerB || !lines.next())
        return ResultLogError::GameType;
    log.gameType = gameTypeName(*gameType);
    log.headerB = *headerB;

    while (!lines.atEnd()) {
        if (lines.next()->isEmpty())
            break;
        if (log.records.size() == ResultLog::kMaxRecords)
            return ResultLogError::Records;
        const std::optional<protocol::StatsRecord> record = readRecord(lines);
        if (!record)
            return ResultLogError::Records;
        const std::optional<qint16> sum = toInt16(log.killSum + *record->kills.value);
        if (!sum)
            return ResultLogError::Records;
        log.records.append(*record);
        if (record->playerName == localPlayerName)
            log.ownIndex = int(log.records.size());
        if (*record->rounds.value > 1)
            ++log.severalRoundsCount;
        log.killSum = *sum;
    }
    return log;
}

std::optional<protocol::StatsUpload> statsUploadOf(const ResultLog &log)
{
    if (log.killSum > log.records.size() || log.killSum > log.severalRoundsCount)
        return std::nullopt;
    if (log.gameType != kSurvival && log.gameType != kTeamSurvival)
        return std::nullopt;
    protocol::StatsUpload upload{log.ownIndex, log.headerA, log.gameType, log.headerB, {}};
    for (protocol::StatsRecord record : log.records) {
        record.playerName = filterName(record.playerName);
        record.killedBy = filterName(record.killedBy);
        // A Survival player killed by himself: that kill does not count.
        if (log.gameType == kSurvival && record.killedBy == record.playerName)
            record.kills = protocol::NumberText::of(record.kills.value.value_or(0) - 1);
        upload.records.append(record);
    }
    return upload;
}

} // namespace client
