#pragma once

#include "protocol/decoded.h"
#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QObject>
#include <array>
#include <functional>
#include <utility>

namespace client {

// The receive side of the lobby connection (`receiveBuffer` and its dispatch loop): bytes are
// appended as they arrive, every complete message in them is handed to the handler of its code,
// in arrival order, within the same call.
//
// Handlers plug in per code. A code the client knows but has no handler for yet is consumed
// whole and ignored; bytes that begin no known code are dropped one at a time until a code
// comes to the front. A message with fewer fields than its code carries (a short message) is
// dropped through its own terminator and its handler is not called, so a well-formed message
// after it is still handled and nothing past that terminator is lost.
//
// "OV" ends the session: once its handler has run, nothing more is dispatched, not even the rest
// of the same arrival, until `clear` (a new connection clears it).
class LobbyDispatcher : public QObject
{
    Q_OBJECT

public:
    using Handler = std::function<void(const protocol::Message &)>;

    explicit LobbyDispatcher(QObject *parent = nullptr);

    // Registers `handler(const T &)` for the client-bound message struct T (protocol's login.h,
    // presence.h, chat.h, rooms.h), which gets the message decoded; replaces any handler of its
    // code. A client-bound decode fails only on a wrong code or field count, and the loop
    // hands over neither; such a message would be dropped.
    template <typename T, typename F> void on(F handler)
    {
        setHandler(T::kCode, [handler = std::move(handler)](const protocol::Message &message) {
            if (const protocol::Decoded<T> decoded = T::decode(message))
                handler(*decoded);
        });
    }
    // Unregisters the handler of T's code: its messages are consumed and ignored again.
    template <typename T> void off() { setHandler(T::kCode, {}); }

    // The message as cut into fields, for what exercises the loop itself over every code (its
    // tests, the fuzzer, the benchmark); handlers of the program register with `on`.
    void setHandler(protocol::Code code, Handler handler);

    // The data-arrival event: append and dispatch every complete message.
    void receive(QByteArrayView bytes);

    // Bytes received and not yet dispatched.
    qsizetype pendingBytes() const { return m_buffer.size(); }
    QByteArray pending() const { return m_buffer.pending().toByteArray(); }
    bool isHalted() const { return m_halted; }
    void clear();

Q_SIGNALS:
    // A message that carried fewer fields than its code needs was dropped.
    void shortMessageDropped(protocol::Code code);

private:
    void dispatchPending();

    protocol::FrameBuffer m_buffer{protocol::Direction::ToClient};
    std::array<Handler, protocol::kCodeCount> m_handlers;
    QStringList m_fields;
    bool m_dispatching = false;
    bool m_halted = false;
};

} // namespace client
