// The player list under a burst of presence traffic, through the real dispatcher: one arrival
// holding n "AN" (a lobby filling up), and one arrival holding n "PS" that move every player to
// another group. Rows:
//   Announce/<n>, StatusChanges/<n>            the client's player list
//   Filtered_Announce/<n>, Filtered_StatusChanges/<n>
//                                              the same, shown through the name filter with a
//                                              text typed in and the away group folded
//   ResortEach_Announce/<n>, ResortEach_StatusChanges/<n>
//                                              the old way: an item model re-sorted whole, and
//                                              the groups counted by walking every row, after
//                                              each message; lookups by a scan from the top
#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/playerlistfilter.h"
#include "client/presence/playerlisthandlers.h"
#include "client/presence/playerlistmodel.h"
#include "protocol/message.h"

#include <QRandomGenerator>
#include <QStandardItemModel>
#include <benchmark/benchmark.h>
#include <memory>

using namespace client;

using protocol::Code;

namespace {

struct Traffic
{
    QByteArray announcements;
    QByteArray statusChanges;
    // Players per group after each burst: lobby, playing, away.
    std::array<int, 3> afterAnnounce{};
    std::array<int, 3> afterChanges{};
};

QString gameAddress(QRandomGenerator &random)
{
    return QStringLiteral("10.0.%1.%2").arg(random.bounded(4)).arg(random.bounded(1, 60));
}

// State 1 away, 2 playing, 3 lobby; as an evening looks: most in the lobby, many playing.
int pickState(QRandomGenerator &random)
{
    const int roll = int(random.bounded(10));
    return roll < 6 ? 3 : roll < 9 ? 2 : 1;
}

int groupOf(int state)
{
    return state == 3 ? 0 : state == 2 ? 1 : 2;
}

const Traffic &trafficOf(int n)
{
    static std::map<int, Traffic> made;
    auto it = made.find(n);
    if (it != made.end())
        return it->second;
    Traffic traffic;
    QRandomGenerator random(5);
    std::vector<int> states(std::size_t(n), 0);
    for (int i = 0; i < n; ++i) {
        const int state = pickState(random);
        states[std::size_t(i)] = state;
        ++traffic.afterAnnounce[std::size_t(groupOf(state))];
        traffic.announcements += protocol::buildMessage(
            Code::AddPlayer,
            {QStringLiteral("[CLAN]Player%1").arg(i), QString::number(1000 + i),
             QString::number(state), state == 2 ? gameAddress(random) : QString(),
             random.bounded(10) == 0 ? QStringLiteral("1") : QStringLiteral("0"),
             random.bounded(50) == 0 ? QStringLiteral("True") : QStringLiteral("False"),
             QStringLiteral("0123456789abcdef0123456789abcdef")});
    }
    for (int i = 0; i < n; ++i) {
        const int player = int(random.bounded(n)); // some move twice, some stay
        int state = pickState(random);
        if (state == states[std::size_t(player)])
            state = state % 3 + 1;
        states[std::size_t(player)] = state;
        traffic.statusChanges += protocol::buildMessage(
            Code::PlayerStatus,
            {QStringLiteral("[CLAN]Player%1").arg(player), QString::number(state),
             state == 2 ? gameAddress(random) : QString()});
    }
    for (const int state : states)
        ++traffic.afterChanges[std::size_t(groupOf(state))];
    return made.emplace(n, std::move(traffic)).first->second;
}

// The client's list, as the connect step leaves it.
struct ClientList
{
    ClientList() : handlers(model, dispatcher)
    {
        model.addGroupRows();
        QObject::connect(&handlers, &PlayerListHandlers::addGameRowRequested,
                         [this](const QString &) { ++gameRowCalls; });
        QObject::connect(&handlers, &PlayerListHandlers::removeGameRowRequested,
                         [this](const QString &) { ++gameRowCalls; });
    }

    // The counts as the group rows show them, and whether the order is by code, descending.
    bool holds(const std::array<int, 3> &counts) const
    {
        for (int r = 1; r < model.rowCount(); ++r) {
            if (model.text(r - 1, PlayerListModel::PlayerStatus) <
                model.text(r, PlayerListModel::PlayerStatus))
                return false;
        }
        const int playing = model.findEntry(QStringLiteral(" Playing (%1)").arg(counts[1]));
        return model.text(0, PlayerListModel::Name) ==
                   QStringLiteral(" Lobby (%1)").arg(counts[0]) &&
               playing > 0 &&
               model.findEntry(QStringLiteral(" Away (%1)").arg(counts[2])) > playing;
    }

    LobbyDispatcher dispatcher;
    PlayerListModel model;
    PlayerListHandlers handlers;
    qint64 gameRowCalls = 0;
};

// The client's list as the main window shows it: through the filter, in use.
struct FilteredList : ClientList
{
    FilteredList()
    {
        filter.setNameFilter(QStringLiteral("player1"));
        filter.setFolded(PlayerListModel::Group::Away, true);
    }

    bool holds(const std::array<int, 3> &counts) const
    {
        for (int r = 0; r < filter.rowCount(); ++r) {
            const QString name = filter.index(r, 0).data().toString();
            if (!name.startsWith(u' ') && !name.contains(QLatin1String("Player1")))
                return false;
        }
        return ClientList::holds(counts);
    }

    IgnoreList ignored{QString()};
    PlayerListFilter filter{model, ignored};
};

// The old way, for comparison: a plain item model sorted whole after every message.
class ResortEachList
{
public:
    ResortEachList()
    {
        model.setColumnCount(PlayerListModel::ColumnCount);
        addGroupRow(QStringLiteral(" Lobby (0)"), QStringLiteral("9"));
        addGroupRow(QStringLiteral(" Playing (0)"), QStringLiteral("6"));
        addGroupRow(QStringLiteral(" Away (0)"), QStringLiteral("3"));
        dispatcher.setHandler(Code::AddPlayer, [this](const protocol::Message &m) {
            QList<QStandardItem *> row;
            for (int c = 0; c < PlayerListModel::ColumnCount; ++c)
                row << new QStandardItem;
            const bool buddy = m.field(4) == QLatin1String("1");
            row[0]->setText(m.field(0));
            row[1]->setText(m.field(3));
            row[2]->setText(QString::number(3 * (m.field(2).toInt() - 1) + 1 + (buddy ? 1 : 0)));
            row[3]->setText(m.field(1));
            row[6]->setText(buddy ? QStringLiteral("1") : QStringLiteral("0"));
            row[10]->setText(m.field(6));
            model.appendRow(row);
            resortAndCount();
        });
        dispatcher.setHandler(Code::RemovePlayer, [this](const protocol::Message &m) {
            const int row = find(m.field(0));
            if (row >= 0)
                model.removeRow(row);
            resortAndCount();
        });
        dispatcher.setHandler(Code::PlayerStatus, [this](const protocol::Message &m) {
            const int row = find(m.field(0));
            if (row < 0)
                return;
            const bool buddy = model.item(row, 6)->text() == QLatin1String("1");
            model.item(row, 2)->setText(
                QString::number(3 * (m.field(1).toInt() - 1) + 1 + (buddy ? 1 : 0)));
            model.item(row, 1)->setText(m.field(2));
            resortAndCount();
        });
    }

    bool holds(const std::array<int, 3> &counts) const
    {
        return model.item(0, 0)->text() == QStringLiteral(" Lobby (%1)").arg(counts[0]);
    }

    LobbyDispatcher dispatcher;

private:
    void addGroupRow(const QString &label, const QString &code)
    {
        QList<QStandardItem *> row;
        for (int c = 0; c < PlayerListModel::ColumnCount; ++c)
            row << new QStandardItem;
        row[0]->setText(label);
        row[2]->setText(code);
        model.appendRow(row);
    }

    int find(const QString &name) const
    {
        for (int r = 0; r < model.rowCount(); ++r) {
            if (model.item(r, 0)->text() == name)
                return r;
        }
        return -1;
    }

    void resortAndCount()
    {
        model.sort(PlayerListModel::PlayerStatus, Qt::DescendingOrder);
        int counts[10] = {};
        for (int r = 0; r < model.rowCount(); ++r) {
            const QString code = model.item(r, 2)->text();
            if (code.size() == 1 && code[0].isDigit())
                ++counts[code[0].digitValue()];
        }
        for (int r = 0; r < model.rowCount(); ++r) {
            const QString code = model.item(r, 2)->text();
            if (code == QLatin1String("9"))
                model.item(r, 0)->setText(QStringLiteral(" Lobby (%1)").arg(counts[7] + counts[8]));
            else if (code == QLatin1String("6"))
                model.item(r, 0)->setText(
                    QStringLiteral(" Playing (%1)").arg(counts[4] + counts[5]));
            else if (code == QLatin1String("3"))
                model.item(r, 0)->setText(QStringLiteral(" Away (%1)").arg(counts[1] + counts[2]));
        }
    }

    QStandardItemModel model;
};

template <typename List> void announce(benchmark::State &state)
{
    const Traffic &traffic = trafficOf(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto list = std::make_unique<List>();
        state.ResumeTiming();
        list->dispatcher.receive(traffic.announcements);
        state.PauseTiming();
        if (!list->holds(traffic.afterAnnounce))
            state.SkipWithError("wrong counts or order after the announcements");
        list.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <typename List> void changeStatus(benchmark::State &state)
{
    const Traffic &traffic = trafficOf(int(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto list = std::make_unique<List>();
        list->dispatcher.receive(traffic.announcements);
        state.ResumeTiming();
        list->dispatcher.receive(traffic.statusChanges);
        state.PauseTiming();
        if (!list->holds(traffic.afterChanges))
            state.SkipWithError("wrong counts or order after the status changes");
        list.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void Announce(benchmark::State &state)
{
    announce<ClientList>(state);
}
void StatusChanges(benchmark::State &state)
{
    changeStatus<ClientList>(state);
}
void Filtered_Announce(benchmark::State &state)
{
    announce<FilteredList>(state);
}
void Filtered_StatusChanges(benchmark::State &state)
{
    changeStatus<FilteredList>(state);
}
void ResortEach_Announce(benchmark::State &state)
{
    announce<ResortEachList>(state);
}
void ResortEach_StatusChanges(benchmark::State &state)
{
    changeStatus<ResortEachList>(state);
}

} // namespace

// Each size doubles the one before, so the growth reads straight off the rows.
void clientSizes(benchmark::internal::Benchmark *b)
{
    for (const int n : {1250, 2500, 5000, 10000, 20000})
        b->Arg(n)->Unit(benchmark::kMillisecond);
}

void resortSizes(benchmark::internal::Benchmark *b)
{
    for (const int n : {625, 1250, 2500})
        b->Arg(n)->Unit(benchmark::kMillisecond);
}

BENCHMARK(Announce)->Apply(clientSizes);
BENCHMARK(StatusChanges)->Apply(clientSizes);
BENCHMARK(Filtered_Announce)->Apply(clientSizes);
BENCHMARK(Filtered_StatusChanges)->Apply(clientSizes);
BENCHMARK(ResortEach_Announce)->Apply(resortSizes);
BENCHMARK(ResortEach_StatusChanges)->Apply(resortSizes);

BENCHMARK_MAIN();
