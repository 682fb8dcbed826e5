#pragma once

#include "client/platform/registry.h"

#include <QVariant>

namespace client {

// The registry read and write helpers of `basRegistry`, over the platform's registry. Errors
// are not reported; the result code of the last call is kept in `lastRegResult`.
class BasRegistry
{
public:
    explicit BasRegistry(Registry &registry) : m_registry(registry) {}

    // A string value up to its first NUL (QString), a number value (uint), or "" for any
    // other type and for a missing key or value. Never creates the key.
    QVariant readValue(Registry::Root root, const QString &subKey, const QString &name);

    // A value that reads as a number is stored as a 32-bit number; anything else is trimmed
    // of blanks and stored as a string. Creates the key when needed.
    void writeValue(Registry::Root root, const QString &subKey, const QString &name,
                    const QString &value);

    long lastRegResult() const { return m_lastRegResult; }

private:
    Registry &m_registry;
    long m_lastRegResult = Registry::kSuccess;
};

} // namespace client
