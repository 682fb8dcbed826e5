#include "client/presence/playerlistclicks.h"

#include <QAbstractItemView>
#include <QMouseEvent>

namespace client {

PlayerListClicks::PlayerListClicks(QAbstractItemView &ListView2, QObject *parent) : QObject(parent)
{
    ListView2.viewport()->installEventFilter(this);
}

bool PlayerListClicks::eventFilter(QObject *, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease) {
        const auto *mouse = static_cast<QMouseEvent *>(event);
        Q_EMIT released(mouse->button(), mouse->globalPosition().toPoint());
    }
    return false;
}

} // namespace client
