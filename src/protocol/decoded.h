#pragma once

#include <QString>
#include <optional>
#include <utility>

namespace protocol {

// Why a message could not be read, in words for a log or a diagnostic.
struct DecodeError
{
    QString reason;
};

// What a message's decode() returns: the message, or the reason there is none. Tests true
// when it holds a message; * and -> reach it.
template <typename T> class Decoded
{
public:
    Decoded(T value) : m_value(std::move(value)) {}
    Decoded(DecodeError error) : m_error(std::move(error.reason)) {}

    bool ok() const { return m_value.has_value(); }
    explicit operator bool() const { return ok(); }

    const T &operator*() const & { return *m_value; }
    T &operator*() & { return *m_value; }
    T &&operator*() && { return std::move(*m_value); }
    const T *operator->() const { return &*m_value; }
    T *operator->() { return &*m_value; }

    // Empty when ok().
    const QString &error() const { return m_error; }

private:
    std::optional<T> m_value;
    QString m_error;
};

} // namespace protocol
