#include "protocol/stats.h"

#include "protocol/number.h"

namespace protocol {

namespace {
constexpr qsizetype kHeaderFields = 4;
constexpr qsizetype kRecordFields = 9;
} // namespace

QByteArray StatsUpload::encode() const
{
    QStringList fields{QString::number(ownIndex), headerA, gameType, headerB};
    fields.reserve(kHeaderFields + kRecordFields * records.size() + 1);
    for (const StatsRecord &r : records)
        fields << r.p1.text << r.playerName << r.rounds.text << r.kills.text << r.p4 << r.p5 << r.p6
               << r.p8 << r.killedBy;
    fields << QString(); // the separator after the last field
    return buildMessage(kCode, fields);
}

Decoded<StatsUpload> StatsUpload::decode(const Message &message)
{
    if (std::optional<DecodeError> error = shapeError(message, kCode, kDirection))
        return *error;
    QStringList f;
    for (const QString &field : message.fields)
        f += field.split(QChar(kSeparator));
    if ((f.size() - kHeaderFields) % kRecordFields == 1 && f.last().isEmpty())
        f.removeLast();
    const qsizetype recordFields = f.size() - kHeaderFields;
    if (recordFields % kRecordFields != 0)
        return DecodeError{QStringLiteral("%1: %2 record fields are not records of %3")
                               .arg(codeText(kCode))
                               .arg(recordFields)
                               .arg(kRecordFields)};
    const std::optional<qint64> ownIndex = readWholeNumber(f[0]);
    if (!ownIndex)
        return fieldError(kCode, "own index", f[0], "a number");

    StatsUpload upload{*ownIndex, f[1], f[2], f[3], {}};
    upload.records.reserve(recordFields / kRecordFields);
    for (qsizetype i = kHeaderFields; i < f.size(); i += kRecordFields) {
        const StatsRecord record{NumberText::read(f[i]),
                                 f[i + 1],
                                 NumberText::read(f[i + 2]),
                                 NumberText::read(f[i + 3]),
                                 f[i + 4],
                                 f[i + 5],
                                 f[i + 6],
                                 f[i + 7],
                                 f[i + 8]};
        const qsizetype number = upload.records.size() + 1;
        for (const auto &[name, field] :
             {std::pair{"P1", &record.p1}, {"P2", &record.rounds}, {"P3", &record.kills}}) {
            if (!field->value)
                return DecodeError{QStringLiteral("%1: record %2: %3 \"%4\" is not a number")
                                       .arg(codeText(kCode))
                                       .arg(number)
                                       .arg(QLatin1String(name), field->text)};
        }
        upload.records.append(record);
    }
    return upload;
}

} // namespace protocol
