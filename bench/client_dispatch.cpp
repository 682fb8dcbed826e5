// The lobby dispatch loop over a long stream of realistic messages, with handlers that only
// take their message. Rows:
//   Dispatch/<MB>/<arrival KB>   the client's dispatcher (arrival 0 = the whole stream at once)
//   NaiveCopyRest/<MB>/<KB>      the old way: a text buffer, each handler returns a copy of
//                                the rest of the buffer
#include "client/lobby/lobbydispatcher.h"
#include "protocol/cp1252.h"
#include "protocol/message.h"

#include <QRandomGenerator>
#include <benchmark/benchmark.h>

using namespace client;

using protocol::Code;

namespace {

QByteArray makeStream(qsizetype bytes)
{
    QRandomGenerator random(42);
    const QStringList names = {"Ann", "Bo", "Carl-Johan", "[SWE]Viper", "Ölme", "x"};
    const QStringList words = {"gg",       "anyone up for a round?",  "join my room",
                               "lag...",   "http://example.org/clan", "brb",
                               "nice shot"};
    QByteArray stream;
    stream.reserve(bytes + 512);
    while (stream.size() < bytes) {
        const QString name = names[random.bounded(names.size())];
        switch (random.bounded(6)) {
        case 0:
        case 1:
            stream += protocol::buildMessage(Code::ChatLine,
                                             {name, QString::number(random.bounded(0xFFFFFF)),
                                              words[random.bounded(words.size())]});
            break;
        case 2:
            stream += protocol::buildMessage(
                Code::PlayerStatus, {name, QString::number(random.bounded(1, 4)),
                                     QStringLiteral("10.0.%1.7").arg(random.bounded(255))});
            break;
        case 3:
            stream += protocol::buildMessage(Code::AddPlayer,
                                             {name, QString(), QStringLiteral("3"),
                                              QString::number(random.bounded(100000)),
                                              QStringLiteral("0"), QStringLiteral("0"),
                                              QStringLiteral("d41d8cd98f00b204e9800998ecf8427e")});
            break;
        case 4:
            stream += protocol::buildMessage(Code::RemovePlayer, {name});
            break;
        default:
            stream += protocol::buildMessage(
                Code::AddRoom, {name, QStringLiteral("Clan war"), QStringLiteral("10.0.0.1"),
                                QStringLiteral("0"), QStringLiteral("3"), QStringLiteral("4")});
            break;
        }
    }
    return stream;
}

const QByteArray &streamOf(int megabytes)
{
    static std::map<int, QByteArray> streams;
    auto it = streams.find(megabytes);
    if (it == streams.end())
        it = streams.emplace(megabytes, makeStream(qsizetype(megabytes) << 20)).first;
    return it->second;
}

template <typename Receive>
void feed(const QByteArray &stream, qsizetype arrival, Receive &&receive)
{
    if (arrival == 0) {
        receive(QByteArrayView(stream));
        return;
    }
    for (qsizetype at = 0; at < stream.size(); at += arrival)
        receive(QByteArrayView(stream).sliced(at, std::min(arrival, stream.size() - at)));
}

void Dispatch(benchmark::State &state)
{
    const QByteArray &stream = streamOf(int(state.range(0)));
    const qsizetype arrival = state.range(1) * 1024;
    qint64 handled = 0;
    for (auto _ : state) {
        LobbyDispatcher dispatcher;
        for (Code code : protocol::clientIncomingOrder())
            dispatcher.setHandler(code, [&handled](const protocol::Message &) { ++handled; });
        feed(stream, arrival, [&](QByteArrayView bytes) { dispatcher.receive(bytes); });
        benchmark::DoNotOptimize(handled);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
    state.counters["messages"] = double(handled) / double(state.iterations());
}

// The old client: the buffer is a text string; each handler finds its fields from the front
// and returns everything after its message as a new string.
QString naiveHandle(const QString &buffer, int fields)
{
    qsizetype at = 2;
    for (int i = 0; i + 1 < fields; ++i) {
        const qsizetype sep = buffer.indexOf(QChar(0x0E), at);
        if (sep < 0)
            return buffer.mid(buffer.indexOf(QChar(0x0F)) + 1);
        at = sep + 1;
    }
    return buffer.mid(buffer.indexOf(QChar(0x0F), at) + 1);
}

void NaiveCopyRest(benchmark::State &state)
{
    const QByteArray &stream = streamOf(int(state.range(0)));
    const qsizetype arrival = state.range(1) * 1024;
    qint64 handled = 0;
    for (auto _ : state) {
        QString buffer;
        feed(stream, arrival, [&](QByteArrayView bytes) {
            buffer += protocol::fromCp1252(bytes);
            while (buffer.contains(QChar(0x0F))) {
                const auto code = protocol::codeAt(protocol::toCp1252(QStringView(buffer).left(2)),
                                                   protocol::Direction::ToClient);
                if (!code) {
                    buffer = buffer.mid(1);
                    continue;
                }
                buffer = naiveHandle(
                    buffer, protocol::fieldCount(*code, protocol::Direction::ToClient).value_or(0));
                ++handled;
            }
        });
        benchmark::DoNotOptimize(handled);
    }
    state.SetBytesProcessed(state.iterations() * stream.size());
    state.counters["messages"] = double(handled) / double(state.iterations());
}

} // namespace

BENCHMARK(Dispatch)
    ->ArgNames({"MB", "arrivalKB"})
    ->Args({10, 64})
    ->Args({100, 64})
    ->Args({10, 0})
    ->Args({100, 0})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(NaiveCopyRest)
    ->ArgNames({"MB", "arrivalKB"})
    ->Args({10, 64})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

BENCHMARK_MAIN();
