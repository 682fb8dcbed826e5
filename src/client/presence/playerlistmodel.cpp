#include "client/presence/playerlistmodel.h"

#include "client/ui/icons.h"

#include <QFont>

namespace client {

namespace {

const QString kLobbyCode = QStringLiteral("9");
const QString kPlayingCode = QStringLiteral("6");
const QString kAwayCode = QStringLiteral("3");

QString groupLabel(const QString &code, int count)
{
    if (code == kLobbyCode)
        return QStringLiteral(" Lobby (%1)").arg(count);
    if (code == kPlayingCode)
        return QStringLiteral(" Playing (%1)").arg(count);
    return QStringLiteral(" Away (%1)").arg(count);
}

} // namespace

PlayerListModel::PlayerListModel(QObject *parent) : QAbstractTableModel(parent) {}

PlayerListModel::~PlayerListModel() = default;

int PlayerListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_order.size();
}

int PlayerListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant PlayerListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const PlayerRow &row = rowAt(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return columnText(row, Column(index.column()));
    case Qt::DecorationRole:
        if (index.column() == Name)
            return iconFor(row.icon);
        return {};
    case Qt::FontRole:
        if (row.bold) {
            QFont font;
            font.setBold(true);
            return font;
        }
        return {};
    case Qt::ForegroundRole:
        return row.colour.isValid() ? QVariant(row.colour) : QVariant();
    default:
        return {};
    }
}

Qt::ItemFlags PlayerListModel::flags(const QModelIndex &index) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return Qt::NoItemFlags;
    // A group row is a heading: it is never the selected player.
    if (isGroupRowCode(rowAt(index.row()).texts[PlayerStatus]))
        return Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

std::optional<PlayerListModel::Group> PlayerListModel::groupOfCode(const QString &code)
{
    if (code.size() != 1 || code[0] < u'1' || code[0] > u'9')
        return std::nullopt;
    const int digit = code[0].unicode() - u'1';
    return Group(2 - digit / 3);
}

bool PlayerListModel::isGroupRowCode(const QString &code)
{
    return code == kLobbyCode || code == kPlayingCode || code == kAwayCode;
}

QVariant PlayerListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const std::array<QString, ColumnCount> labels = {
        QStringLiteral("Name"),    QStringLiteral("ipToGame"),      QStringLiteral("playerStatus"),
        QStringLiteral("index"),   QStringLiteral("pictureLoaded"), QStringLiteral("message"),
        QStringLiteral("vänTrue"), QStringLiteral("ipToPlayer"),    QStringLiteral("PingBild"),
        QStringLiteral("File"),    QStringLiteral("epostHash")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= ColumnCount)
        return {};
    return labels[std::size_t(section)];
}

void PlayerListModel::clearList()
{
    beginResetModel();
    m_order.clear();
    m_byName.clear();
    m_codeCounts.clear();
    m_gameAddressCounts.clear();
    endResetModel();
}

void PlayerListModel::addGroupRows()
{
    const struct
    {
        const QString &code;
        int icon;
    } groups[] = {{kLobbyCode, Icons::LobbyGroup},
                  {kPlayingCode, Icons::PlayingGroup},
                  {kAwayCode, Icons::AwayGroup}};
    for (const auto &group : groups) {
        Entry entry;
        entry.texts[Name] = groupLabel(group.code, 0);
        entry.texts[PlayerStatus] = group.code;
        entry.icon = group.icon;
        entry.bold = true;
        addEntry(std::move(entry));
    }
}

int PlayerListModel::addEntry(Entry entry)
{
    auto row = std::make_unique<PlayerRow>(std::move(entry));
    const QString code = row->texts[PlayerStatus];
    const int at = m_order.rowsBefore(code, row->texts[Name]);
    beginInsertRows(QModelIndex(), at, at);
    track(*row, +1);
    m_byName[row->texts[Name]].append(row.get());
    m_order.insert(std::move(row), code);
    endInsertRows();
    return at;
}

void PlayerListModel::removeEntry(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    beginRemoveRows(QModelIndex(), row, row);
    PlayerRow *gone = m_order.at(row);
    track(*gone, -1);
    const auto named = m_byName.find(gone->texts[Name]);
    named->removeOne(gone);
    if (named->isEmpty())
        m_byName.erase(named);
    m_order.take(gone);
    endRemoveRows();
}

int PlayerListModel::findEntry(const QString &name) const
{
    const auto named = m_byName.constFind(name);
    if (named == m_byName.constEnd())
        return -1;
    // Duplicates are rare: the first in display order is the one with the smallest row.
    int first = -1;
    for (const PlayerRow *row : *named) {
        const int at = m_order.rowOf(row);
        if (first < 0 || at < first)
            first = at;
    }
    return first;
}

QString PlayerListModel::text(int row, Column column) const
{
    if (row < 0 || row >= rowCount() || column < 0 || column >= ColumnCount)
        return {};
    return columnText(rowAt(row), column);
}

QString PlayerListModel::columnText(const PlayerRow &row, Column column)
{
    const bool typed = column == Index || column == VanTrue || column == PingBild;
    if (!typed)
        return row.texts[std::size_t(column)];
    if (!row.id)
        return {};
    switch (column) {
    case Index:
        return QString::number(*row.id);
    case VanTrue:
        return row.buddy ? QStringLiteral("1") : QStringLiteral("0");
    default:
        return QString::number(row.savedIcon);
    }
}

std::optional<qint64> PlayerListModel::id(int row) const
{
    return row >= 0 && row < rowCount() ? rowAt(row).id : std::nullopt;
}

bool PlayerListModel::isBuddy(int row) const
{
    return row >= 0 && row < rowCount() && rowAt(row).buddy;
}

void PlayerListModel::setBuddy(int row, bool buddy)
{
    if (row < 0 || row >= rowCount() || rowAt(row).buddy == buddy)
        return;
    rowAt(row).buddy = buddy;
    emitRowChanged(row, VanTrue, VanTrue, {Qt::DisplayRole, Qt::EditRole});
}

int PlayerListModel::savedIcon(int row) const
{
    return row >= 0 && row < rowCount() ? rowAt(row).savedIcon : 0;
}

void PlayerListModel::setText(int row, Column column, const QString &text)
{
    if (row < 0 || row >= rowCount() || column < 0 || column >= ColumnCount || column == Index ||
        column == VanTrue || column == PingBild)
        return;
    PlayerRow &entry = rowAt(row);
    if (entry.texts[std::size_t(column)] == text)
        return;
    switch (column) {
    case Name:
        setName(row, text);
        return;
    case PlayerStatus:
        setCode(row, text);
        return;
    case IpToGame:
        track(entry, -1);
        entry.texts[IpToGame] = text;
        track(entry, +1);
        break;
    default:
        entry.texts[std::size_t(column)] = text;
        break;
    }
    emitRowChanged(row, column, column, {Qt::DisplayRole, Qt::EditRole});
}

bool PlayerListModel::isBold(int row) const
{
    return row >= 0 && row < rowCount() && rowAt(row).bold;
}

void PlayerListModel::setBold(int row, bool bold)
{
    if (row < 0 || row >= rowCount() || rowAt(row).bold == bold)
        return;
    rowAt(row).bold = bold;
    emitRowChanged(row, 0, ColumnCount - 1, {Qt::FontRole});
}

int PlayerListModel::icon(int row) const
{
    return row >= 0 && row < rowCount() ? rowAt(row).icon : 0;
}

void PlayerListModel::setIcon(int row, int icon)
{
    if (row < 0 || row >= rowCount() || rowAt(row).icon == icon)
        return;
    rowAt(row).icon = icon;
    emitRowChanged(row, Name, Name, {Qt::DecorationRole});
}

QColor PlayerListModel::textColour(int row) const
{
    return row >= 0 && row < rowCount() ? rowAt(row).colour : QColor();
}

void PlayerListModel::countPlayers()
{
    for (const QString *code : {&kLobbyCode, &kPlayingCode, &kAwayCode}) {
        const Group group = *code == kLobbyCode     ? Group::Lobby
                            : *code == kPlayingCode ? Group::Playing
                                                    : Group::Away;
        const QString label = groupLabel(*code, groupCount(group));
        // The rows of one code stand together; renaming them does not move them.
        const int end = m_order.groupEnd(*code);
        for (int row = m_order.groupStart(*code); row < end; ++row)
            setName(row, label);
    }
}

int PlayerListModel::groupCount(Group group) const
{
    const auto count = [this](const char *code) {
        return m_codeCounts.value(QString::fromLatin1(code));
    };
    switch (group) {
    case Group::Lobby:
        return count("7") + count("8");
    case Group::Playing:
        return count("4") + count("5");
    case Group::Away:
        return count("1") + count("2");
    }
    return 0;
}

bool PlayerListModel::hasGameAddress(const QString &address) const
{
    return !address.isEmpty() && m_gameAddressCounts.contains(address);
}

void PlayerListModel::setCode(int row, const QString &code)
{
    PlayerRow &entry = rowAt(row);
    const int to = place(row, code, entry.texts[Name], [this, &entry, &code] {
        track(entry, -1);
        entry.texts[PlayerStatus] = code;
        track(entry, +1);
    });
    emitRowChanged(to, PlayerStatus, PlayerStatus, {Qt::DisplayRole, Qt::EditRole});
}

void PlayerListModel::setName(int row, const QString &name)
{
    PlayerRow &entry = rowAt(row);
    if (entry.texts[Name] == name)
        return;
    const auto rename = [this, &entry, &name] {
        const auto named = m_byName.find(entry.texts[Name]);
        named->removeOne(&entry);
        if (named->isEmpty())
            m_byName.erase(named);
        entry.texts[Name] = name;
        m_byName[name].append(&entry);
    };
    // A group row, relabelled after every message, is the only one of its code: it stays.
    if (isGroupRowCode(entry.texts[PlayerStatus])) {
        rename();
        emitRowChanged(row, Name, Name, {Qt::DisplayRole, Qt::EditRole});
        return;
    }
    const int to = place(row, entry.texts[PlayerStatus], name, rename);
    emitRowChanged(to, Name, Name, {Qt::DisplayRole, Qt::EditRole});
}

template <typename Change>
int PlayerListModel::place(int from, const QString &code, const QString &name, Change change)
{
    PlayerRow *entry = m_order.at(from);
    const int before = m_order.rowsBefore(code, name, entry);
    const int to = before > from ? before - 1 : before;
    const bool moves = to != from;
    if (moves)
        beginMoveRows(QModelIndex(), from, from, QModelIndex(), to > from ? to + 1 : to);
    std::unique_ptr<PlayerRow> taken = m_order.take(entry);
    change();
    m_order.insert(std::move(taken), code);
    if (moves)
        endMoveRows();
    return to;
}

void PlayerListModel::track(const PlayerRow &row, int delta)
{
    const auto adjust = [delta](QHash<QString, int> &counts, const QString &key) {
        const int n = counts.value(key) + delta;
        if (n > 0)
            counts.insert(key, n);
        else
            counts.remove(key);
    };
    adjust(m_codeCounts, row.texts[PlayerStatus]);
    if (!row.texts[IpToGame].isEmpty())
        adjust(m_gameAddressCounts, row.texts[IpToGame]);
}

void PlayerListModel::emitRowChanged(int row, int firstColumn, int lastColumn,
                                     const QList<int> &roles)
{
    Q_EMIT dataChanged(index(row, firstColumn), index(row, lastColumn), roles);
}

QIcon PlayerListModel::iconFor(int index) const
{
    auto cached = m_icons.find(index);
    if (cached == m_icons.end())
        cached = m_icons.insert(index, Icons::smallIcon(index));
    return *cached;
}

} // namespace client
