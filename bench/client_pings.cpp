// "Refresh pings" over a room list of 100 running games, each a live status responder on its
// own loopback address: the wall time until every row shows its ping. The baseline row asks
// the same servers one at a time, each after the previous answer, as a naive client would.

#include "client/game/gameinfo.h"
#include "client/game/gameserverquery.h"
#include "client/rooms/roomlistmodel.h"
#include "client/session/tickcount.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QNetworkDatagram>
#include <QUdpSocket>
#include <benchmark/benchmark.h>
#include <memory>
#include <vector>

using namespace client;

namespace {

constexpr int kGames = 100;

const QByteArray kReply =
    "\\gamename\\roguespear\\gamever\\2.15\\hostname\\My Game\\hostport\\2346\\hostip\\0.0.0.0"
    "\\mapname\\Training\\gametype\\Team Survival\\numplayers\\2\\maxplayers\\16\\gamemode"
    "\\openplaying\\teamplay\\1\\password\\0\\rs_serverlocked\\1\\rs_mods\\0"
    "\\rs_kitrestrictions\\0\\rs_armpatches\\1\\rs_highbandwidth\\0\\timelimit\\600"
    "\\player_0\\Bob\\team_0\\1\\ping_0\\40\\player_1\\Al\\team_1\\2\\ping_1\\55"
    "\\final\\\\queryid\\1.1";

class Responder : public QObject
{
public:
    bool bind(const QHostAddress &address, quint16 port)
    {
        if (!m_socket.bind(address, port))
            return false;
        connect(&m_socket, &QUdpSocket::readyRead, this, [this] {
            while (m_socket.hasPendingDatagrams()) {
                const QNetworkDatagram request = m_socket.receiveDatagram();
                m_socket.writeDatagram(kReply, request.senderAddress(),
                                       quint16(request.senderPort()));
            }
        });
        return true;
    }
    quint16 port() const { return m_socket.localPort(); }

private:
    QUdpSocket m_socket;
};

QString gameAddress(int i)
{
    return QStringLiteral("127.0.%1.%2").arg(1 + i / 200).arg(1 + i % 200);
}

// The room list, its 100 game servers and the query, built once for all iterations.
struct PingSetup
{
    std::vector<std::unique_ptr<Responder>> responders;
    RoomListModel rooms;
    GameInfo info;
    SystemTickCount ticks;
    GameServerQuery query{rooms, info, ticks};

    bool start()
    {
        for (int attempt = 0; attempt < 20 && int(responders.size()) < kGames; ++attempt) {
            responders.clear();
            quint16 port = 0;
            for (int i = 0; i < kGames; ++i) {
                auto responder = std::make_unique<Responder>();
                if (!responder->bind(QHostAddress(gameAddress(i)), port))
                    break;
                port = responder->port();
                responders.push_back(std::move(responder));
            }
        }
        if (int(responders.size()) < kGames)
            return false;
        query.setQueryPort(responders.front()->port());
        for (int i = 0; i < kGames; ++i)
            rooms.appendRow({"N/A", "N/A", "", "In game", "N/A", ""}, gameAddress(i),
                            RoomListModel::RunningGame);
        return true;
    }

    void clearPings()
    {
        for (int row = 0; row < rooms.rowCount(); ++row)
            rooms.setText(row, RoomListModel::Ping, QString());
    }
    bool answered(int row) const { return !rooms.text(row, RoomListModel::Ping).isEmpty(); }
    bool allAnswered() const
    {
        for (int row = 0; row < rooms.rowCount(); ++row) {
            if (!answered(row))
                return false;
        }
        return true;
    }
    // Runs the event loop until `done` or five seconds have passed.
    template <typename Done> bool waitFor(Done done)
    {
        const QDeadlineTimer deadline(5000);
        while (!done()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
        }
        // Released sockets go now, not when some later event loop runs.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return true;
    }
};

void BM_RefreshPings(benchmark::State &state)
{
    PingSetup setup;
    if (!setup.start()) {
        state.SkipWithError("cannot bind the loopback responders");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        setup.clearPings();
        state.ResumeTiming();
        setup.query.refreshPings();
        if (!setup.waitFor([&] { return setup.allAnswered(); })) {
            state.SkipWithError("not every row was answered within 5 s");
            return;
        }
    }
    state.counters["rows"] = kGames;
}

void BM_PingOneAtATimeBaseline(benchmark::State &state)
{
    PingSetup setup;
    if (!setup.start()) {
        state.SkipWithError("cannot bind the loopback responders");
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        setup.clearPings();
        state.ResumeTiming();
        for (int row = 0; row < kGames; ++row) {
            setup.query.pingGameServer(setup.rooms.tag(row));
            if (!setup.waitFor([&] { return setup.answered(row); })) {
                state.SkipWithError("a row was not answered within 5 s");
                return;
            }
        }
    }
    state.counters["rows"] = kGames;
}

} // namespace

BENCHMARK(BM_RefreshPings)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(50);
BENCHMARK(BM_PingOneAtATimeBaseline)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(20);

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv); // the room list's icons need a GUI application
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
