#include "client/presence/playerlistview.h"

#include "client/presence/playerlistfilter.h"
#include "client/ui/showncolumns.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace client {

namespace {

// Draws the players' rows as usual, and on each group row an arrow at the right that points
// down while its players show and right while they are folded away.
class PlayerListDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override
    {
        QStyledItemDelegate::paint(painter, option, index);
        const QVariant folded = index.data(PlayerListFilter::FoldedRole);
        if (!folded.isValid())
            return;
        QStyleOption arrow;
        arrow.initFrom(option.widget);
        const int size = option.rect.height() / 2;
        arrow.rect =
            QRect(option.rect.right() - size - 6, option.rect.center().y() - size / 2, size, size);
        const QStyle *style = option.widget ? option.widget->style() : QApplication::style();
        style->drawPrimitive(folded.toBool() ? QStyle::PE_IndicatorArrowRight
                                             : QStyle::PE_IndicatorArrowDown,
                             &arrow, painter, option.widget);
    }
};

// Space or Enter on the current row folds or unfolds it when it is a group row, as a click
// does; on a player the keys do what they always do.
class FoldKeys : public QObject
{
public:
    FoldKeys(QAbstractItemView &view, PlayerListFilter &filter)
        : QObject(&view), m_view(view), m_filter(filter)
    {
        view.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::KeyPress)
            return false;
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key != Qt::Key_Space && key != Qt::Key_Return && key != Qt::Key_Enter)
            return false;
        const auto *shown = static_cast<const QAbstractProxyModel *>(m_view.model());
        return m_filter.toggleGroupAt(shown->mapToSource(m_view.currentIndex()));
    }

private:
    QAbstractItemView &m_view;
    PlayerListFilter &m_filter;
};

} // namespace

void configurePlayerListView(QTreeView &view, PlayerListFilter &filter, QLineEdit *findBox)
{
    // Only the name column is shown, to the eye and to screen readers alike.
    auto *shown = new ShownColumns(filter, {PlayerListModel::Name}, &view);
    view.setModel(shown);
    view.setRootIsDecorated(false);
    view.setItemsExpandable(false);
    view.setIndentation(0);
    view.setUniformRowHeights(true);
    view.setSortingEnabled(false);
    view.setSelectionMode(QAbstractItemView::SingleSelection);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setEditTriggers(QAbstractItemView::NoEditTriggers);
    view.setTabKeyNavigation(false); // Tab goes on to the next control; arrows move in the list
    view.setAllColumnsShowFocus(true);
    view.setItemDelegateForColumn(PlayerListModel::Name, new PlayerListDelegate(&view));
    view.header()->setStretchLastSection(true);
    view.header()->setSectionsMovable(false);
    view.header()->setSectionsClickable(false);
    QObject::connect(&view, &QAbstractItemView::clicked, &filter,
                     [&filter, shown](const QModelIndex &index) {
                         filter.toggleGroupAt(shown->mapToSource(index));
                     });
    new FoldKeys(view, filter); // owned by the view
    if (findBox) {
        findBox->setClearButtonEnabled(true);
        QObject::connect(findBox, &QLineEdit::textChanged, &filter,
                         &PlayerListFilter::setNameFilter);
    }
}

} // namespace client
