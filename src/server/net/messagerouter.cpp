#include "server/net/messagerouter.h"

namespace server {

void MessageRouter::setHandler(protocol::Code code, Handler handler)
{
    m_handlers.insert(code, std::move(handler));
}

bool MessageRouter::route(Session &session, const protocol::Message &message) const
{
    const auto it = m_handlers.constFind(message.code);
    if (it == m_handlers.cend())
        return false;
    (*it)(session, message);
    return true;
}

} // namespace server
