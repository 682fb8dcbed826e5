#include "client/presence/playerorder.h"

namespace client {

namespace {

qsizetype lowestBit(qsizetype i)
{
    return i & -i;
}

} // namespace

PlayerOrder::PlayerOrder() = default;
PlayerOrder::~PlayerOrder() = default;

PlayerRow *PlayerOrder::at(int row) const
{
    if (row < 0 || row >= m_size)
        return nullptr;
    for (const auto &[code, group] : m_groups) {
        if (row < group.count)
            return group.slots[std::size_t(group.slotOf(row))].get();
        row -= group.count;
    }
    return nullptr;
}

int PlayerOrder::rowOf(const PlayerRow *entry) const
{
    const auto group = m_groups.find(entry->m_orderCode);
    return rowsBefore(group) + group->second.countBefore(entry->m_slot);
}

int PlayerOrder::groupStart(const QString &code) const
{
    return rowsBefore(m_groups.lower_bound(code));
}

int PlayerOrder::groupEnd(const QString &code) const
{
    return rowsBefore(m_groups.upper_bound(code));
}

void PlayerOrder::insert(std::unique_ptr<PlayerRow> entry, const QString &code)
{
    entry->m_orderCode = code;
    m_groups[code].append(std::move(entry));
    ++m_size;
}

std::unique_ptr<PlayerRow> PlayerOrder::take(PlayerRow *entry)
{
    const auto group = m_groups.find(entry->m_orderCode);
    std::unique_ptr<PlayerRow> taken = group->second.take(entry->m_slot);
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

int PlayerOrder::rowsBefore(Groups::const_iterator group) const
{
    int rows = 0;
    for (auto it = m_groups.begin(); it != group; ++it)
        rows += it->second.count;
    return rows;
}

int PlayerOrder::Group::countBefore(qsizetype slot) const
{
    int sum = 0;
    for (qsizetype i = slot; i > 0; i -= lowestBit(i))
        sum += tree[std::size_t(i - 1)];
    return sum;
}

qsizetype PlayerOrder::Group::slotOf(int index) const
{
    // Descends the tree to the slot that holds the entry with `index` entries before it.
    const auto size = qsizetype(tree.size());
    qsizetype step = 1;
    while (step * 2 <= size)
        step *= 2;
    qsizetype at = 0;
    for (; step > 0; step /= 2) {
        if (at + step <= size && tree[std::size_t(at + step - 1)] <= index) {
            at += step;
            index -= tree[std::size_t(at - 1)];
        }
    }
    return at;
}

void PlayerOrder::Group::append(std::unique_ptr<PlayerRow> entry)
{
    const auto slot = qsizetype(slots.size());
    entry->m_slot = slot;
    slots.push_back(std::move(entry));
    // The new node covers the slots (slot + 1 - lowestBit(slot + 1), slot].
    const qsizetype node = slot + 1;
    tree.push_back(countBefore(slot) - countBefore(node - lowestBit(node)) + 1);
    ++count;
}

std::unique_ptr<PlayerRow> PlayerOrder::Group::take(qsizetype slot)
{
    std::unique_ptr<PlayerRow> taken = std::move(slots[std::size_t(slot)]);
    taken->m_slot = -1;
    for (qsizetype i = slot + 1; i <= qsizetype(tree.size()); i += lowestBit(i))
        --tree[std::size_t(i - 1)];
    --count;
    if (count > 0 && slots.size() > std::size_t(2 * count + 16))
        compact();
    return taken;
}

void PlayerOrder::Group::compact()
{
    std::vector<std::unique_ptr<PlayerRow>> kept;
    kept.reserve(std::size_t(count));
    for (auto &entry : slots) {
        if (entry) {
            entry->m_slot = qsizetype(kept.size());
            kept.push_back(std::move(entry));
        }
    }
    slots = std::move(kept);
    tree.assign(slots.size(), 1);
    for (qsizetype i = 1; i <= qsizetype(tree.size()); ++i) {
        const qsizetype parent = i + lowestBit(i);
        if (parent <= qsizetype(tree.size()))
            tree[std::size_t(parent - 1)] += tree[std::size_t(i - 1)];
    }
}

} // namespace client
