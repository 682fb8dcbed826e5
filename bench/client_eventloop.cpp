// How long one arrival of lobby traffic holds the event loop, with the main window shown
// (offscreen): the longest gap between two ticks of a 0 ms timer, from the arrival until
// everything it brought is in the views and painted. Each iteration's time is that gap.
// Rows:
//   ChatBurst/<n>       one arrival of n "MD" chat lines
//   AnnounceBurst/<n>   one arrival of n "AN" (a lobby filling up)
// Counters: arrival_ms, the time the arrival's own handling took; turns, the loop turns until
// all was shown.
#include "client/app/form1.h"
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/platform/clock.h"
#include "client/presence/lobbychat.h"
#include "client/presence/playerlistfilter.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "client/presence/playerlistview.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "protocol/message.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeView>
#include <benchmark/benchmark.h>
#include <memory>

using namespace client;

using protocol::Code;

namespace {

QByteArray chatBurst(int n)
{
    QByteArray bytes;
    for (int i = 0; i < n; ++i) {
        bytes += protocol::buildMessage(
            Code::ChatLine,
            {QStringLiteral("[CLAN]Player%1").arg(i % 300), QString::number((i * 7919) % 0xFFFFFF),
             QStringLiteral("line %1 of the burst, see www.example.org/page%2 and more words")
                 .arg(i)
                 .arg(i % 17)});
    }
    return bytes;
}

QByteArray announceBurst(int n)
{
    QByteArray bytes;
    for (int i = 0; i < n; ++i) {
        const int state = i % 10 < 6 ? 3 : i % 10 < 9 ? 2 : 1;
        bytes += protocol::buildMessage(
            Code::AddPlayer,
            {QStringLiteral("[CLAN]Player%1").arg(i), QString::number(1000 + i),
             QString::number(state),
             state == 2 ? QStringLiteral("10.0.%1.%2").arg(i % 4).arg(1 + i % 59) : QString(),
             i % 10 == 0 ? QStringLiteral("1") : QStringLiteral("0"), QStringLiteral("False"),
             QStringLiteral("0123456789abcdef0123456789abcdef")});
    }
    return bytes;
}

// The main window with the lobby chat and the player list attached, as the client builds
// them, shown.
struct Lobby
{
    Lobby()
        : connection(dispatcher),
          chat(form.txtChat, form.txtChatSend, form.Picture3, connection, session, clock, ignored),
          handlers(players, dispatcher)
    {
        chat.registerHandler(dispatcher);
        configurePlayerListView(*form.ListView2, filter, form.txtFindPlayer);
        players.addGroupRows();
        form.showAtNormalSize();
        (void)QTest::qWaitForWindowExposed(&form);
    }

    Form1 form;
    SystemClock clock;
    SessionState session;
    LobbyDispatcher dispatcher;
    LobbyConnection connection;
    IgnoreList ignored{QString()};
    LobbyChat chat;
    PlayerListModel players;
    PlayerListFilter filter{players, ignored};
    PlayerListHandlers handlers;
};

struct Blocked
{
    qint64 longestGapNs = 0;
    qint64 arrivalNs = 0;
    int turns = 0;
    bool shown = false;
};

// Delivers `bytes` as one arrival inside the running loop and watches the loop until `shown`
// holds and the window has painted after it.
Blocked measure(Lobby &lobby, const QByteArray &bytes, const std::function<bool()> &shown)
{
    Blocked result;
    QElapsedTimer clock;
    clock.start();
    qint64 lastTick = 0;
    QTimer ticker;
    ticker.setInterval(0);
    QObject::connect(&ticker, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        result.longestGapNs = std::max(result.longestGapNs, now - lastTick);
        lastTick = now;
        ++result.turns;
    });
    QTimer::singleShot(0, [&] {
        const qint64 start = clock.nsecsElapsed();
        lobby.dispatcher.receive(bytes);
        result.arrivalNs = clock.nsecsElapsed() - start;
    });
    lastTick = clock.nsecsElapsed();
    ticker.start();
    const qint64 deadline = 30'000'000'000;
    while (!shown() && clock.nsecsElapsed() < deadline)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    result.shown = shown();
    // Painting and layout that follow the data: let the window paint, and the loop run a
    // little longer, still watched.
    lobby.form.update();
    const qint64 settle = clock.nsecsElapsed() + 100'000'000;
    while (clock.nsecsElapsed() < settle)
        QCoreApplication::processEvents(QEventLoop::AllEvents);
    ticker.stop();
    return result;
}

void report(benchmark::State &state, const Blocked &blocked)
{
    if (!blocked.shown)
        state.SkipWithError("the arrival was not shown within 30 s");
    state.SetIterationTime(double(blocked.longestGapNs) / 1e9);
    state.counters["arrival_ms"] = double(blocked.arrivalNs) / 1e6;
    state.counters["turns"] = blocked.turns;
}

void ChatBurst(benchmark::State &state)
{
    const int n = int(state.range(0));
    const QByteArray bytes = chatBurst(n);
    const QString lastText = QStringLiteral("line %1 of the burst").arg(n - 1);
    for (auto _ : state) {
        auto lobby = std::make_unique<Lobby>();
        QTextDocument *doc = lobby->form.txtChat->document();
        report(state,
               measure(*lobby, bytes, [&] { return doc->lastBlock().text().contains(lastText); }));
    }
}

void AnnounceBurst(benchmark::State &state)
{
    const int n = int(state.range(0));
    const QByteArray bytes = announceBurst(n);
    for (auto _ : state) {
        auto lobby = std::make_unique<Lobby>();
        report(state, measure(*lobby, bytes, [&] { return lobby->players.rowCount() == n + 3; }));
    }
}

} // namespace

BENCHMARK(ChatBurst)->Arg(3000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(AnnounceBurst)->Arg(2000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
