#include "client/presence/playerorder.h"

#include <algorithm>

namespace client {

namespace {

// A block splits in two when it grows past this: small enough that inserting into one is a
// short move, large enough that the blocks of 10,000 players are a few hundred.
constexpr std::size_t kMaxBlock = 128;

std::size_t lowestBit(std::size_t i)
{
    return i & (~i + 1);
}

} // namespace

bool PlayerRow::Key::operator<(const Key &other) const
{
    if (const int c = folded.compare(other.folded))
        return c < 0;
    if (const int c = name.compare(other.name))
        return c < 0;
    return arrival < other.arrival;
}

PlayerOrder::PlayerOrder() = default;
PlayerOrder::~PlayerOrder() = default;

PlayerRow *PlayerOrder::at(int row) const
{
    if (row < 0 || row >= m_size)
        return nullptr;
    for (const auto &[code, group] : m_groups) {
        if (row < group.count)
            return group.at(row);
        row -= group.count;
    }
    return nullptr;
}

int PlayerOrder::rowOf(const PlayerRow *entry) const
{
    const auto group = m_groups.find(entry->m_orderCode);
    return rowsBefore(group) + group->second.countBefore(entry->m_key);
}

int PlayerOrder::groupStart(const QString &code) const
{
    return rowsBefore(m_groups.lower_bound(code));
}

int PlayerOrder::groupEnd(const QString &code) const
{
    return rowsBefore(m_groups.upper_bound(code));
}

int PlayerOrder::rowsBefore(const QString &code, const QString &name, const PlayerRow *entry) const
{
    const auto group = m_groups.lower_bound(code);
    int rows = rowsBefore(group);
    if (group == m_groups.end() || group->first != code)
        return rows;
    if (entry && entry->m_key.name == name)
        return rows + group->second.countBefore(entry->m_key);
    return rows + group->second.countBefore(keyOf(name, entry ? entry->m_key.arrival : ~0ULL));
}

void PlayerOrder::insert(std::unique_ptr<PlayerRow> entry, const QString &code)
{
    entry->m_orderCode = code;
    if (entry->m_key.arrival == 0)
        entry->m_key = keyOf(entry->texts[0], ++m_arrivals);
    else if (entry->m_key.name != entry->texts[0])
        entry->m_key = keyOf(entry->texts[0], entry->m_key.arrival);
    m_groups[code].insert(std::move(entry));
    ++m_size;
}

std::unique_ptr<PlayerRow> PlayerOrder::take(PlayerRow *entry)
{
    const auto group = m_groups.find(entry->m_orderCode);
    std::unique_ptr<PlayerRow> taken = group->second.take(entry);
    if (group->second.count == 0)
        m_groups.erase(group);
    --m_size;
    return taken;
}

void PlayerOrder::clear()
{
    m_groups.clear();
    m_size = 0;
}

PlayerOrder::Key PlayerOrder::keyOf(const QString &name, quint64 arrival)
{
    return Key{name.toCaseFolded(), name, arrival};
}

int PlayerOrder::rowsBefore(Groups::const_iterator group) const
{
    int rows = 0;
    for (auto it = m_groups.begin(); it != group; ++it)
        rows += it->second.count;
    return rows;
}

int PlayerOrder::Group::countBefore(const Key &key) const
{
    if (blocks.empty())
        return 0;
    const std::size_t block = blockFor(key);
    const Block &entries = blocks[block];
    const auto at = std::lower_bound(
        entries.begin(), entries.end(), key,
        [](const std::unique_ptr<PlayerRow> &entry, const Key &k) { return entry->m_key < k; });
    return sizesBefore(block) + int(at - entries.begin());
}

PlayerRow *PlayerOrder::Group::at(int index) const
{
    // Descends the tree to the block holding the entry with `index` entries before it.
    const std::size_t size = tree.size();
    std::size_t step = 1;
    while (step * 2 <= size)
        step *= 2;
    std::size_t block = 0;
    for (; step > 0; step /= 2) {
        if (block + step <= size && tree[block + step - 1] <= index) {
            block += step;
            index -= tree[block - 1];
        }
    }
    return blocks[block][std::size_t(index)].get();
}

void PlayerOrder::Group::insert(std::unique_ptr<PlayerRow> entry)
{
    ++count;
    if (blocks.empty()) {
        blocks.emplace_back().push_back(std::move(entry));
        tree.assign(1, 1);
        return;
    }
    const std::size_t block = blockFor(entry->m_key);
    Block &entries = blocks[block];
    const auto at = std::upper_bound(
        entries.begin(), entries.end(), entry->m_key,
        [](const Key &k, const std::unique_ptr<PlayerRow> &e) { return k < e->m_key; });
    entries.insert(at, std::move(entry));
    if (entries.size() <= kMaxBlock) {
        addToTree(block, +1);
        return;
    }
    Block upper(std::make_move_iterator(entries.begin() + qsizetype(kMaxBlock / 2)),
                std::make_move_iterator(entries.end()));
    entries.resize(kMaxBlock / 2);
    blocks.insert(blocks.begin() + qsizetype(block) + 1, std::move(upper));
    rebuildTree();
}

std::unique_ptr<PlayerRow> PlayerOrder::Group::take(const PlayerRow *entry)
{
    const std::size_t block = blockFor(entry->m_key);
    Block &entries = blocks[block];
    const auto at = std::lower_bound(
        entries.begin(), entries.end(), entry->m_key,
        [](const std::unique_ptr<PlayerRow> &e, const Key &k) { return e->m_key < k; });
    std::unique_ptr<PlayerRow> taken = std::move(*at);
    entries.erase(at);
    --count;
    if (entries.empty()) {
        blocks.erase(blocks.begin() + qsizetype(block));
        rebuildTree();
    } else {
        addToTree(block, -1);
    }
    return taken;
}

std::size_t PlayerOrder::Group::blockFor(const Key &key) const
{
    // The first block whose last entry does not stand before `key`; past them all, the last.
    const auto it = std::partition_point(blocks.begin(), blocks.end(),
                                         [&key](const Block &b) { return b.back()->m_key < key; });
    return it == blocks.end() ? blocks.size() - 1 : std::size_t(it - blocks.begin());
}

int PlayerOrder::Group::sizesBefore(std::size_t block) const
{
    int sum = 0;
    for (std::size_t i = block; i > 0; i -= lowestBit(i))
        sum += tree[i - 1];
    return sum;
}

void PlayerOrder::Group::addToTree(std::size_t block, int delta)
{
    for (std::size_t i = block + 1; i <= tree.size(); i += lowestBit(i))
        tree[i - 1] += delta;
}

void PlayerOrder::Group::rebuildTree()
{
    tree.assign(blocks.size(), 0);
    for (std::size_t i = 1; i <= tree.size(); ++i) {
        tree[i - 1] += int(blocks[i - 1].size());
        const std::size_t parent = i + lowestBit(i);
        if (parent <= tree.size())
            tree[parent - 1] += tree[i - 1];
    }
}

} // namespace client
