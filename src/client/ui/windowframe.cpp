#include "client/ui/windowframe.h"

#include <QPainter>
#include <QWidget>

namespace client {

void paintWindowFrame(QWidget &window)
{
    QPainter painter(&window);
    const QColor background = window.palette().color(QPalette::Window);
    painter.fillRect(window.rect(), background);
    painter.fillRect(QRect(0, 0, window.width(), 30), background.darker(115));
    painter.setPen(background.darker(160));
    painter.drawRect(window.rect().adjusted(0, 0, -1, -1));
}

} // namespace client
