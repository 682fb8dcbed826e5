#pragma once

#include <QColor>
#include <QString>
#include <array>
#include <map>
#include <memory>
#include <vector>

namespace client {

// One entry of the player list: its column texts, small-icon index, bold flag and text colour.
struct PlayerRow
{
    static constexpr int kColumns = 11;

    std::array<QString, kColumns> texts;
    int icon = 0;
    bool bold = false;
    QColor colour; // invalid: the view's default colour

private:
    friend class PlayerOrder;
    QString m_orderCode; // the code the entry is ordered under
    qsizetype m_slot = -1;
};

// Owns the entries of the player list and keeps them in display order: by code as text,
// descending; entries of one code in the order in which they got that code. Adding, removing,
// re-coding and finding the row of an entry cost O(log n) plus a step per distinct code (a
// handful), so a burst of n presence messages costs O(n log n) whatever the order of arrival.
//
// Each code is a group holding its entries in slots, oldest first; a removed entry leaves an
// empty slot, and a Fenwick tree over the slots counts the entries before any slot.
class PlayerOrder
{
public:
    PlayerOrder();
    ~PlayerOrder();

    int size() const { return m_size; }
    PlayerRow *at(int row) const;
    int rowOf(const PlayerRow *entry) const;

    // The first row of the entries of `code`, and the row just after them (where a new entry
    // of that code goes).
    int groupStart(const QString &code) const;
    int groupEnd(const QString &code) const;

    // Adds `entry` as the last entry of `code`.
    void insert(std::unique_ptr<PlayerRow> entry, const QString &code);
    std::unique_ptr<PlayerRow> take(PlayerRow *entry);
    void clear();

private:
    struct Group
    {
        std::vector<std::unique_ptr<PlayerRow>> slots;
        std::vector<int> tree; // Fenwick tree over slots: 1 where a slot holds an entry
        int count = 0;

        int countBefore(qsizetype slot) const;
        qsizetype slotOf(int index) const;
        void append(std::unique_ptr<PlayerRow> entry);
        std::unique_ptr<PlayerRow> take(qsizetype slot);
        void compact();
    };
    using Groups = std::map<QString, Group, std::greater<QString>>;

    int rowsBefore(Groups::const_iterator group) const;

    Groups m_groups;
    int m_size = 0;
};

} // namespace client
