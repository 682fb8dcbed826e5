#include "client/lobby/lobbydispatcher.h"

namespace client {

using protocol::Code;

LobbyDispatcher::LobbyDispatcher(QObject *parent) : QObject(parent) {}

void LobbyDispatcher::setHandler(Code code, Handler handler)
{
    m_handlers[std::size_t(code)] = std::move(handler);
}

void LobbyDispatcher::receive(QByteArrayView bytes)
{
    m_buffer.append(bytes);
    // A handler that lets pending events run may see more data arrive; the outer loop then
    // goes on with it, so messages are still handled once each and in order.
    if (!m_dispatching)
        dispatchPending();
}

void LobbyDispatcher::clear()
{
    m_buffer.clear();
    m_halted = false;
}

void LobbyDispatcher::dispatchPending()
{
    m_dispatching = true;
    while (!m_halted) {
        const std::optional<protocol::FrameBuffer::Frame> frame = m_buffer.next();
        if (!frame)
            break;
        const Code code = frame->code;
        if (code == Code::OldVersion)
            m_halted = true;
        const Handler &handler = m_handlers[std::size_t(code)];
        if (!handler)
            continue;
        const int count = protocol::fieldCount(code, protocol::Direction::ToClient).value_or(0);
        // The field list is reused from message to message to save an allocation each.
        if (!protocol::splitFieldsInto(frame->body, count, m_fields)) {
            Q_EMIT shortMessageDropped(code);
            continue;
        }
        protocol::Message message{code, std::move(m_fields)};
        handler(message);
        m_fields = std::move(message.fields);
    }
    m_dispatching = false;
}

} // namespace client
