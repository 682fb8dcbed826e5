#include "protocol/wiremessage.h"

#include "protocol/cp1252.h"

namespace protocol {

QString codeText(Code code)
{
    return fromCp1252(wireCode(code));
}

DecodeError fieldError(Code code, const char *field, const QString &text, const char *expected)
{
    return DecodeError{
        QStringLiteral("%1: %2 \"%3\" is not %4")
            .arg(codeText(code), QLatin1String(field), text, QLatin1String(expected))};
}

QString flagText(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

std::optional<DecodeError> shapeError(const Message &message, Code code, Direction direction)
{
    if (message.code != code)
        return DecodeError{
            QStringLiteral("%1 is not %2").arg(codeText(message.code), codeText(code))};
    const int count = fieldCount(code, direction).value_or(0);
    const bool variable = code == Code::StatsUpload;
    const qsizetype got = message.fields.size();
    if (got == count || (variable && got > count))
        return std::nullopt;
    return DecodeError{QStringLiteral("%1 has %2 fields instead of %3%4")
                           .arg(codeText(code))
                           .arg(got)
                           .arg(variable ? QStringLiteral("at least ") : QString())
                           .arg(count)};
}

} // namespace protocol
