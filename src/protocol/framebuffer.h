#pragma once

#include "protocol/codes.h"

#include <QByteArray>
#include <QByteArrayView>
#include <optional>

namespace protocol {

// The receive side of a lobby connection: bytes are appended as they arrive and complete
// messages are cut off the front, oldest first.
//
// Cutting follows the lobby's rules: nothing is cut while no 0x0F is buffered; a known code
// at the front is cut through the first 0x0F after it; anything else at the front is dropped
// one byte at a time (the only resynchronisation), so stray bytes before a code are skipped
// and a code the receiver does not know is eaten byte by byte.
//
// The buffer keeps a read offset instead of moving the rest after every message, so a
// stream is cut in time linear in its length.
class FrameBuffer
{
public:
    explicit FrameBuffer(Direction incoming) : m_direction(incoming) {}

    struct Frame
    {
        Code code;
        QByteArrayView body; // between the code and the terminator; valid until the next call
    };

    void append(QByteArrayView bytes);

    // The next complete message, or nullopt when none is left (a partial one waits).
    std::optional<Frame> next();

    // Bytes received and not yet cut.
    qsizetype size() const { return m_bytes.size() - m_read; }
    QByteArrayView pending() const { return QByteArrayView(m_bytes).sliced(m_read); }
    bool holdsTerminator() const { return m_terminator >= 0; }
    void clear();

private:
    void findTerminator();

    Direction m_direction;
    QByteArray m_bytes;
    qsizetype m_read = 0;
    qsizetype m_terminator = -1; // first 0x0F at or after m_read, -1 when none
};

} // namespace protocol
