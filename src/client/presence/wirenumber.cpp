#include "client/presence/wirenumber.h"

#include <cmath>

namespace client {

std::optional<double> readWholeNumber(const QString &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return std::floor(value) + 0.0; // + 0.0 turns -0 into 0
}

} // namespace client
