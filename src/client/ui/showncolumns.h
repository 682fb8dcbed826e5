#pragma once

#include <QList>
#include <QSortFilterProxyModel>

namespace client {

// What a list view shows of a model that keeps more columns than the user sees: only the
// listed columns, rows in the model's order. Hiding columns in the view is not enough, since
// screen readers are still handed every column; the view gets this model instead.
class ShownColumns : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    ShownColumns(QAbstractItemModel &source, QList<int> columns, QObject *parent = nullptr);

protected:
    bool filterAcceptsColumn(int sourceColumn, const QModelIndex &sourceParent) const override;

private:
    QList<int> m_columns;
};

} // namespace client
