#include "client/app/splitterbar.h"

#include <QMouseEvent>
#include <QPainter>

namespace client {

SplitterBar::SplitterBar(QWidget *parent) : QWidget(parent)
{
    setCursor(Qt::SplitVCursor);
}

void SplitterBar::setStops(int top, int middle, int bottom)
{
    bottom = std::max(top, bottom);
    m_stops = {top, std::clamp(middle, top, bottom), bottom};
}

void SplitterBar::moveTopTo(int top)
{
    move(x(), std::clamp(top, topStop(), bottomStop()));
    Q_EMIT moved(y());
}

void SplitterBar::stepByTag()
{
    if (m_tag == QLatin1String("1")) {
        m_tag = QStringLiteral("2");
        moveTopTo(topStop());
    } else if (m_tag == QLatin1String("2")) {
        m_tag = QStringLiteral("3");
        moveTopTo(middleStop());
    } else if (m_tag == QLatin1String("3")) {
        m_tag = QStringLiteral("1");
        moveTopTo(bottomStop());
    } else {
        Q_EMIT moved(y());
    }
}

void SplitterBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = true;
}

void SplitterBar::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging || !(event->buttons() & Qt::LeftButton))
        return;
    // The bar's top follows the mouse: its offset inside the bar is added to the top.
    moveTopTo(y() + event->position().toPoint().y());
}

void SplitterBar::mouseReleaseEvent(QMouseEvent *)
{
    m_dragging = false;
}

void SplitterBar::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        stepByTag();
}

void SplitterBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor base = palette().color(QPalette::Window).darker(115);
    painter.fillRect(rect(), base);
    painter.setPen(base.darker(130));
    const int mid = width() / 2;
    for (int dx = -12; dx <= 12; dx += 6)
        painter.drawPoint(mid + dx, height() / 2);
}

} // namespace client
