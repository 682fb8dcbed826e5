#pragma once

#include <QColor>
#include <QString>
#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace client {

// One entry of the player list: its column texts, typed values, small-icon index, bold flag
// and text colour.
struct PlayerRow
{
    static constexpr int kColumns = 11;

    // The texts of the columns that show the typed values below are not kept here.
    std::array<QString, kColumns> texts;
    std::optional<qint64> id; // the player's statistics id; none on a group row
    bool buddy = false;
    int savedIcon = 0; // the icon the entry goes back to when a marker icon is cleared
    int icon = 0;
    bool bold = false;
    QColor colour; // invalid: the view's default colour

private:
    friend class PlayerOrder;
    // Where the entry stands among the entries of its code: by name without regard to case,
    // then by exact name, then by arrival (a name announced twice keeps its announcements'
    // order). Kept apart from `texts` so that a renamed entry can still be found until it is
    // placed again.
    struct Key
    {
        QString folded;
        QString name;
        quint64 arrival = 0;

        bool operator<(const Key &other) const;
    };
    QString m_orderCode; // the code the entry is ordered under
    Key m_key;
};

// Owns the entries of the player list and keeps them in display order: by code as text,
// descending; entries of one code by name (case ignored), equal names in order of arrival.
// Adding, removing, re-placing and finding the row of an entry cost O(log n) comparisons, a
// move inside one block of at most 128 entries and a step per distinct code (a handful), so a
// burst of n presence messages costs O(n log n) whatever the order of arrival.
//
// Each code is a group holding its entries in sorted blocks; a Fenwick tree over the blocks'
// sizes counts the entries before any block. A block that grows too large splits in two and
// the tree is built again, once per 64 additions at most.
class PlayerOrder
{
public:
    PlayerOrder();
    ~PlayerOrder();

    int size() const { return m_size; }
    PlayerRow *at(int row) const;
    int rowOf(const PlayerRow *entry) const;

    // The first row of the entries of `code`, and the row just after them.
    int groupStart(const QString &code) const;
    int groupEnd(const QString &code) const;

    // How many entries stand before an entry of `code` named `name`: a new one (the newest
    // arrival) when `entry` is null, else `entry` itself with its arrival, as if it had that
    // code and name; `entry` is counted when it stands before that place.
    int rowsBefore(const QString &code, const QString &name,
                   const PlayerRow *entry = nullptr) const;

    // Adds `entry` under `code` and its present name; an entry taken out keeps its arrival.
    void insert(std::unique_ptr<PlayerRow> entry, const QString &code);
    std::unique_ptr<PlayerRow> take(PlayerRow *entry);
    void clear();

private:
    using Key = PlayerRow::Key;
    using Block = std::vector<std::unique_ptr<PlayerRow>>;

    struct Group
    {
        std::vector<Block> blocks; // each sorted and not empty; together in order
        std::vector<int> tree;     // Fenwick tree over the blocks' sizes
        int count = 0;

        int countBefore(const Key &key) const;
        PlayerRow *at(int index) const;
        void insert(std::unique_ptr<PlayerRow> entry);
        std::unique_ptr<PlayerRow> take(const PlayerRow *entry);

    private:
        std::size_t blockFor(const Key &key) const;
        int sizesBefore(std::size_t block) const;
        void addToTree(std::size_t block, int delta);
        void rebuildTree();
    };
    using Groups = std::map<QString, Group, std::greater<QString>>;

    static Key keyOf(const QString &name, quint64 arrival);
    int rowsBefore(Groups::const_iterator group) const;

    Groups m_groups;
    int m_size = 0;
    quint64 m_arrivals = 0;
};

} // namespace client
