#include "protocol/number.h"

#include <cmath>

namespace protocol {

std::optional<double> readNumber(QStringView text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

std::optional<qint64> readWholeNumber(QStringView text)
{
    const std::optional<double> value = readNumber(text);
    if (!value)
        return std::nullopt;
    const double whole = std::floor(*value);
    // 2^63 is exact in a double; every double below it (and at or above -2^63) fits.
    constexpr double kLimit = 9223372036854775808.0;
    if (whole < -kLimit || whole >= kLimit)
        return std::nullopt;
    return static_cast<qint64>(whole);
}

std::optional<qint64> readCountedNumber(QStringView text, Sign sign)
{
    const bool negative = sign == Sign::MayBeNegative && text.startsWith(u'-');
    const QStringView digits = negative ? text.sliced(1) : text;
    if (digits.isEmpty() || digits.size() > kMaxCountedDigits)
        return std::nullopt;
    qint64 value = 0;
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9')
            return std::nullopt;
        value = value * 10 + (c.unicode() - u'0');
    }
    return negative ? -value : value;
}

NumberText NumberText::of(double value)
{
    return {QString::number(value, 'g', 15), value};
}

} // namespace protocol
