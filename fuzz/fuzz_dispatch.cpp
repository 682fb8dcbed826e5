// libFuzzer target: any bytes, in any split into arrivals, through the client's receive loop.
// Every handler must get exactly its field count, no complete message may stay undispatched,
// and nothing may crash or leak.
#include "client/lobby/lobbydispatcher.h"

#include <cstdint>
#include <cstdlib>

using namespace client;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    LobbyDispatcher dispatcher;
    for (protocol::Code code : protocol::clientIncomingOrder()) {
        const int count = protocol::fieldCount(code, protocol::Direction::ToClient).value_or(0);
        dispatcher.setHandler(code, [count](const protocol::Message &message) {
            if (message.fields.size() != count)
                std::abort();
        });
    }
    // The first byte chooses the arrival size, so splits are explored too.
    const std::size_t step = size > 0 ? std::size_t(data[0] % 16) + 1 : 1;
    for (std::size_t at = 1; at < size; at += step) {
        const std::size_t n = std::min(step, size - at);
        dispatcher.receive(QByteArrayView(reinterpret_cast<const char *>(data + at), qsizetype(n)));
        if (dispatcher.isHalted())
            dispatcher.clear();
        else if (dispatcher.pending().contains(protocol::kTerminator))
            std::abort();
    }
    return 0;
}
