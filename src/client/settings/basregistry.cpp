#include "client/settings/basregistry.h"

#include "client/text/blanks.h"
#include <cmath>
#include <limits>
#include <optional>

namespace client {

namespace {

// The 32-bit number a text stands for, when it reads as a number at all ("42", " -7 ",
// "1e3"); numbers outside 32 bits are kept as text.
std::optional<quint32> asNumber(const QString &text)
{
    bool ok = false;
    const double number = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(number))
        return std::nullopt;
    const double rounded = std::nearbyint(number);
    if (rounded < double(std::numeric_limits<qint32>::min()) ||
        rounded > double(std::numeric_limits<quint32>::max()))
        return std::nullopt;
    return quint32(qint64(rounded));
}

} // namespace

QVariant BasRegistry::readValue(Registry::Root root, const QString &subKey, const QString &name)
{
    RegistryValue value;
    m_lastRegResult = m_registry.queryValue(root, subKey, name, value);
    if (m_lastRegResult != Registry::kSuccess)
        return QString();
    switch (value.type) {
    case RegistryValue::Type::String: {
        const qsizetype nul = value.text.indexOf(QChar(0));
        return nul < 0 ? value.text : value.text.left(nul);
    }
    case RegistryValue::Type::Number:
        return value.number;
    case RegistryValue::Type::Other:
        break;
    }
    return QString();
}

void BasRegistry::writeValue(Registry::Root root, const QString &subKey, const QString &name,
                             const QString &value)
{
    const auto number = asNumber(value);
    m_lastRegResult =
        m_registry.setValue(root, subKey, name,
                            number ? RegistryValue::fromNumber(*number)
                                   : RegistryValue::string(trimBlanks(value).toString()));
}

} // namespace client
