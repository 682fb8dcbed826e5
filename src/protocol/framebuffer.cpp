#include "protocol/framebuffer.h"

namespace protocol {

void FrameBuffer::append(QByteArrayView bytes)
{
    // Compact only when the dead front is large, so appends stay amortised O(length).
    if (m_read > 0 && m_read >= m_bytes.size() / 2) {
        m_bytes.remove(0, m_read);
        if (m_terminator >= 0)
            m_terminator -= m_read;
        m_read = 0;
    }
    const qsizetype oldSize = m_bytes.size();
    m_bytes.append(bytes);
    if (m_terminator < 0) {
        const qsizetype t = QByteArrayView(m_bytes).indexOf(kTerminator, oldSize);
        m_terminator = t;
    }
}

void FrameBuffer::clear()
{
    m_bytes.clear();
    m_read = 0;
    m_terminator = -1;
}

void FrameBuffer::findTerminator()
{
    m_terminator =
        m_read < m_bytes.size() ? QByteArrayView(m_bytes).indexOf(kTerminator, m_read) : -1;
}

std::optional<FrameBuffer::Frame> FrameBuffer::next()
{
    while (m_terminator >= 0) {
        const QByteArrayView rest = QByteArrayView(m_bytes).sliced(m_read);
        if (const std::optional<Code> code = codeAt(rest, m_direction)) {
            const qsizetype bodyStart = m_read + 2;
            // The code's two bytes may themselves hold the first 0x0F only if the code
            // contained one, which none does; so the terminator lies at or after bodyStart.
            const QByteArrayView body =
                QByteArrayView(m_bytes).sliced(bodyStart, m_terminator - bodyStart);
            m_read = m_terminator + 1;
            findTerminator();
            return Frame{*code, body};
        }
        ++m_read;
        if (m_read > m_terminator)
            findTerminator();
    }
    return std::nullopt;
}

} // namespace protocol
