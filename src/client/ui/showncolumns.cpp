#include "client/ui/showncolumns.h"

namespace client {

ShownColumns::ShownColumns(QAbstractItemModel &source, QList<int> columns, QObject *parent)
    : QSortFilterProxyModel(parent), m_columns(std::move(columns))
{
    setSourceModel(&source);
}

bool ShownColumns::filterAcceptsColumn(int sourceColumn, const QModelIndex &) const
{
    return m_columns.contains(sourceColumn);
}

} // namespace client
