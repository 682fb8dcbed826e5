#pragma once

#include "protocol/codes.h"
#include "protocol/message.h"

#include <QHash>
#include <functional>

namespace server {

class Session;

// Which component answers which message from a logged-in player. Each area registers its
// codes when it is built; a code nobody registered (the statistics uploads until a
// statistics component registers "DS" and "RS") is read and dropped.
class MessageRouter
{
public:
    using Handler = std::function<void(Session &, const protocol::Message &)>;

    void setHandler(protocol::Code code, Handler handler);
    // False when nobody handles the code.
    bool route(Session &session, const protocol::Message &message) const;

private:
    QHash<protocol::Code, Handler> m_handlers;
};

} // namespace server
