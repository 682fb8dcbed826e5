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

NumberText NumberText::of(double value)
{
    return {QString::number(value, 'g', 15), value};
}

} // namespace protocol
