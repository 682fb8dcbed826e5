#include "client/lobby/lobbydispatcher.h"

using protocol::Code;

LobbyDispatcher::LobbyDispatcher(QObject *parent) : QObject(parent) {}

void LobbyDispatcher::setHandler(Code code, Handler handler)
{
    m_handlers[code] = std::move(handler);
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
        const int count = protocol::fieldCount(code, protocol::Direction::ToClient).value_or(0);
        std::optional<QStringList> fields = protocol::splitFields(frame->body, count);
        if (!fields) {
            Q_EMIT shortMessageDropped(code);
            continue;
        }
        const auto handler = m_handlers.find(code);
        if (code == Code::OldVersion)
            m_halted = true;
        if (handler == m_handlers.end() || !handler->second)
            continue;
        const protocol::Message message{code, std::move(*fields)};
        handler->second(message);
    }
    m_dispatching = false;
}
