#include "client/ui/picturebutton.h"

#include <QEvent>
#include <QPainter>

namespace client {

PictureButton::PictureButton(QWidget *parent) : QAbstractButton(parent)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
    setIconSize(QSize(24, 24));
}

void PictureButton::setPicture(const QIcon &picture)
{
    setIcon(picture);
    update();
}

void PictureButton::setTag(const QString &tag)
{
    if (m_tag == tag)
        return;
    m_tag = tag;
    Q_EMIT tagChanged(tag);
}

QSize PictureButton::sizeHint() const
{
    return iconSize() + QSize(8, 8);
}

void PictureButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isEnabled() && (m_hovered || isDown())) {
        QColor glow = palette().color(QPalette::Highlight);
        glow.setAlpha(isDown() ? 110 : 60);
        painter.setPen(Qt::NoPen);
        painter.setBrush(glow);
        painter.drawRoundedRect(rect().adjusted(1, 1, -1, -1), 4, 4);
    }
    const QIcon::Mode mode = isEnabled() ? QIcon::Normal : QIcon::Disabled;
    const QSize size = iconSize().boundedTo(this->size());
    const QRect target(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    icon().paint(&painter, target, Qt::AlignCenter, mode);
    if (!text().isEmpty()) {
        QFont bold = font();
        bold.setBold(true);
        painter.setFont(bold);
        const QRect badge = painter.fontMetrics().boundingRect(text()).adjusted(-3, -1, 3, 1);
        const QRect placed(QPoint(width() - badge.width(), height() - badge.height()),
                           badge.size());
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().color(QPalette::ToolTipBase));
        painter.drawRoundedRect(placed, 3, 3);
        painter.setPen(palette().color(QPalette::ToolTipText));
        painter.drawText(placed, Qt::AlignCenter, text());
    }
}

void PictureButton::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void PictureButton::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}

bool PictureButton::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTipChange)
        setAccessibleName(toolTip());
    return QAbstractButton::event(event);
}

} // namespace client
