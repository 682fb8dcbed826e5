#pragma once

#include <QString>
#include <optional>

namespace client {

// Numbers arrive as decimal text and are "read as a number, rounded down". A text that is not
// a finite number gives nullopt; callers decide what an absent number means.
std::optional<double> readWholeNumber(const QString &text);

// The whole number as plain decimal text ("12", "-3"), never in exponent form.
QString wholeNumberText(double value);

} // namespace client
