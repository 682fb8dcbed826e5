#pragma once

#include <QString>

namespace client {

// One value of the settings-store registry.
struct RegistryValue
{
    enum class Type { String, Number, Other };

    Type type = Type::Other;
    QString text;       // a String value as stored, NUL characters included
    quint32 number = 0; // a Number value (32 bits)

    static RegistryValue string(const QString &text) { return {Type::String, text, 0}; }
    static RegistryValue fromNumber(quint32 number) { return {Type::Number, {}, number}; }
};

// The settings-store registry of the operating system: values named under a root key and a
// sub key ("Software\Microsoft\Windows\CurrentVersion\Run"). Key and value names are not
// case-sensitive. Every call returns the platform's result code.
class Registry
{
public:
    enum class Root { CurrentUser, LocalMachine };

    // Result codes, numbered as the Windows registry numbers them.
    static constexpr long kSuccess = 0;
    static constexpr long kNotFound = 2;     // no such key or value
    static constexpr long kAccessDenied = 5; // the store cannot be written

    virtual ~Registry() = default;

    // Reads a value without creating its key.
    virtual long queryValue(Root root, const QString &subKey, const QString &name,
                            RegistryValue &value) = 0;
    // Stores a value, creating its key when needed.
    virtual long setValue(Root root, const QString &subKey, const QString &name,
                          const RegistryValue &value) = 0;
};

} // namespace client
