// "Refresh pings" over a room list of 100 running games, each a live status responder on its
// own loopback address: the wall time until every row shows its ping. The baseline row asks
// the same servers one at a time, each after the previous answer, as a naive client would.
//
// With QUORVEL_PING_SERVERS naming a file of "address:port" lines, the rows are those servers
// instead, so that the refresh can be timed against other tools querying the same servers
// (bench/ping_peers.sh). Every server must answer on the same port, as game servers do.

#include "client/game/gameinfo.h"
#include "client/game/gameserverquery.h"
#include "client/platform/tickcount.h"
#include "client/rooms/roomlistmodel.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QHostAddress>
#include <QNetworkDatagram>
#include <QTimer>
#include <QUdpSocket>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

using namespace client;

namespace {

constexpr int kGames = 100;

// Servers named by QUORVEL_PING_SERVERS; unset when the bench runs its own responders.
struct ServerList
{
    QStringList addresses; // dotted IPv4 text, as the rows carry it
    quint16 port = 0;
};
std::optional<ServerList> g_servers;

void skipLine(const QString &file, int line, const QString &text, const char *why)
{
    std::fprintf(stderr, "%s:%d: skipped \"%s\": %s\n", qPrintable(file), line, qPrintable(text),
                 why);
}

// Reads "address:port" lines; blank lines are passed over, bad ones reported and skipped.
// A missing file or one without a usable line gives an empty list.
ServerList readServerList(const QString &fileName)
{
    ServerList list;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(fileName), qPrintable(file.errorString()));
        return list;
    }
    int lineNumber = 0;
    while (!file.atEnd()) {
        ++lineNumber;
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.isEmpty())
            continue;
        const qsizetype colon = line.lastIndexOf(u':');
        const QHostAddress address(line.left(std::max<qsizetype>(colon, 0)));
        bool portOk = false;
        const quint16 port = line.mid(colon + 1).toUShort(&portOk);
        if (colon < 0 || address.protocol() != QAbstractSocket::IPv4Protocol || !portOk ||
            port == 0) {
            skipLine(fileName, lineNumber, line, "not an IPv4 address:port");
            continue;
        }
        if (list.port != 0 && port != list.port) {
            skipLine(fileName, lineNumber, line, "the query asks one port on every server");
            continue;
        }
        // A reply fills the first row with its sender's address, so a second row would wait
        // for ever.
        const QString text = address.toString();
        if (list.addresses.contains(text)) {
            skipLine(fileName, lineNumber, line, "address listed twice");
            continue;
        }
        // A refresh over more rows than ping slots discards the first sockets before they
        // are answered.
        if (list.addresses.size() >= GameServerQuery::kPingSlots) {
            skipLine(fileName, lineNumber, line, "more servers than ping slots");
            continue;
        }
        list.port = port;
        list.addresses.append(text);
    }
    return list;
}

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

// The room list, its game servers and the query, built once for all iterations.
struct PingSetup
{
    std::vector<std::unique_ptr<Responder>> responders;
    RoomListModel rooms;
    GameInfo info;
    SystemTickCount ticks;
    GameServerQuery query{rooms, info, ticks};

    bool start()
    {
        QStringList addresses;
        if (g_servers) {
            addresses = g_servers->addresses;
            query.setQueryPort(g_servers->port);
        } else {
            if (!startResponders())
                return false;
            query.setQueryPort(responders.front()->port());
            for (int i = 0; i < kGames; ++i)
                addresses.append(gameAddress(i));
        }
        for (const QString &address : std::as_const(addresses))
            rooms.appendRow({"N/A", "N/A", "", "In game", "N/A", ""}, address,
                            RoomListModel::RunningGame);
        return true;
    }

    bool startResponders()
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
        return int(responders.size()) == kGames;
    }

    void clearPings()
    {
        for (int row = 0; row < rooms.rowCount(); ++row)
            rooms.setText(row, RoomListModel::Ping, QString());
    }
    bool answered(int row) const { return !rooms.text(row, RoomListModel::Ping).isEmpty(); }
    int slowestPing() const
    {
        int slowest = 0;
        for (int row = 0; row < rooms.rowCount(); ++row)
            slowest = std::max(slowest, rooms.text(row, RoomListModel::Ping).trimmed().toInt());
        return slowest;
    }
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
        // Blocks for events rather than spinning, which would take the processor from the
        // servers on a small machine; the timer wakes the wait to check the deadline.
        QTimer wake;
        wake.start(50);
        while (!done()) {
            if (deadline.hasExpired())
                return false;
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
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
    state.counters["rows"] = double(setup.rooms.rowCount());
    state.counters["slowest_ping_ms"] = setup.slowestPing();
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
        for (int row = 0; row < setup.rooms.rowCount(); ++row) {
            setup.query.pingGameServer(setup.rooms.tag(row));
            if (!setup.waitFor([&] { return setup.answered(row); })) {
                state.SkipWithError("a row was not answered within 5 s");
                return;
            }
        }
    }
    state.counters["rows"] = double(setup.rooms.rowCount());
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv); // the room list's icons need a GUI application

    const QString serverFile = qEnvironmentVariable("QUORVEL_PING_SERVERS");
    if (!serverFile.isEmpty()) {
        g_servers = readServerList(serverFile);
        if (g_servers->addresses.isEmpty()) {
            std::fprintf(stderr, "%s: no server to ping\n", qPrintable(serverFile));
            return 1;
        }
    }
    // Remote servers answer after real round trips: asked one at a time, 100 of them take
    // seconds, so the baseline runs once.
    benchmark::RegisterBenchmark("BM_RefreshPings", BM_RefreshPings)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(g_servers ? 20 : 50);
    benchmark::RegisterBenchmark("BM_PingOneAtATimeBaseline", BM_PingOneAtATimeBaseline)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Iterations(g_servers ? 1 : 20);

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
