#pragma once

#include <QString>
#include <QStringView>
#include <optional>

namespace protocol {

// Numbers travel as decimal text, and every number field on either side is read with these
// two functions.
//
// A number is what QString::toDouble accepts in the C locale: optional white space around
// it, an optional sign, decimal digits with an optional fraction ("5.", ".5", "5.25") and an
// optional exponent ("1e3"). Not numbers: the empty text, a blank text, group separators
// ("1,000"), hexadecimal ("0x10"), "inf", "nan", and values a double cannot hold ("1e400",
// "1e-400").
std::optional<double> readNumber(QStringView text);

// A number rounded down to a whole one ("12.9" is 12, "-1.5" is -2); nullopt for a text
// that is not a number or a value outside the range of qint64.
std::optional<qint64> readWholeNumber(QStringView text);

// Whether a counted figure may be below zero.
enum class Sign { NotNegative, MayBeNegative };

// The strict form of a whole number that is counted, for fields whose texts are stored and
// added up: decimal digits only, a leading '-' only where the figure may be negative, and at
// most kMaxCountedDigits digits. Not counted numbers: "+5", "5.0", " 5", "1e3", "" and "-".
inline constexpr int kMaxCountedDigits = 9;
std::optional<qint64> readCountedNumber(QStringView text, Sign sign);

// A number field that is passed on or shown in the form it came in ("007", "2.50") and also
// counted: the text as it travels and, read once, its value (nullopt when the text is not a
// number).
struct NumberText
{
    QString text;
    std::optional<double> value;

    static NumberText read(const QString &text) { return {text, readNumber(text)}; }
    // `value` in decimal, 15 significant digits at most ("3", "2.5").
    static NumberText of(double value);

    bool operator==(const NumberText &) const = default;
};

} // namespace protocol
