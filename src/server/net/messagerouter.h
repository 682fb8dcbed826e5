#pragma once

#include "protocol/codes.h"
#include "protocol/decoded.h"
#include "protocol/message.h"

#include <QHash>
#include <functional>
#include <utility>

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

    // Registers `handler(Session &, const T &)` for the message struct T. A message that does
    // not decode as T is dropped: a client cannot make the server act on a field it could
    // not read.
    template <typename T, typename F> void on(F handler)
    {
        setHandler(T::kCode, [handler = std::move(handler)](Session &session,
                                                            const protocol::Message &message) {
            if (const protocol::Decoded<T> decoded = T::decode(message))
                handler(session, *decoded);
        });
    }

    // Registers `object->method(Session &, const T &)` for the message struct T, as above.
    template <typename T, typename C> void on(C *object, void (C::*method)(Session &, const T &))
    {
        on<T>([object, method](Session &session, const T &message) {
            (object->*method)(session, message);
        });
    }

    // False when nobody handles the code.
    bool route(Session &session, const protocol::Message &message) const;

private:
    QHash<protocol::Code, Handler> m_handlers;
};

} // namespace server
