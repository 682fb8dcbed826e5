#include "client/presence/playerlistclicks.h"

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>

namespace client {

PlayerListClicks::PlayerListClicks(QAbstractItemView &ListView2, QObject *parent)
    : QObject(parent), m_view(ListView2)
{
    ListView2.viewport()->installEventFilter(this);
    ListView2.installEventFilter(this);
}

QPoint PlayerListClicks::currentRowCentre() const
{
    return m_view.viewport()->mapToGlobal(m_view.visualRect(m_view.currentIndex()).center());
}

bool PlayerListClicks::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_view.viewport()) {
        if (event->type() == QEvent::MouseButtonRelease) {
            const auto *mouse = static_cast<QMouseEvent *>(event);
            Q_EMIT released(mouse->button(), mouse->globalPosition().toPoint());
        }
        return false;
    }
    if (watched != &m_view || !m_view.currentIndex().isValid())
        return false;
    if (event->type() == QEvent::ContextMenu &&
        static_cast<QContextMenuEvent *>(event)->reason() == QContextMenuEvent::Keyboard) {
        Q_EMIT released(Qt::RightButton, currentRowCentre());
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() == Qt::Key_Menu ||
        (key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier)) {
        Q_EMIT released(Qt::RightButton, currentRowCentre());
        return true;
    }
    // Enter also folds a group row (the view's own keys): let it through.
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)
        Q_EMIT released(Qt::LeftButton, currentRowCentre());
    return false;
}

} // namespace client
