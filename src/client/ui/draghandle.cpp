#include "client/ui/draghandle.h"

#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

namespace client {

DragHandle::DragHandle(QWidget *window) : QObject(window), m_window(window) {}

DragHandle *DragHandle::install(QWidget *window, std::initializer_list<QWidget *> handles)
{
    auto *handle = new DragHandle(window);
    window->installEventFilter(handle);
    for (QWidget *w : handles)
        w->installEventFilter(handle);
    return handle;
}

bool DragHandle::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_window)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        // A press on a child control of the window is the control's own, not a drag.
        if (watched == m_window && m_window->childAt(mouse->position().toPoint()) != nullptr)
            return false;
        if (QWidget *grabber = QWidget::mouseGrabber())
            grabber->releaseMouse();
        QWindow *handle = m_window->window()->windowHandle();
        if (handle && handle->startSystemMove()) {
            m_manualDrag = false;
            return true;
        }
        m_manualDrag = true;
        m_grabOffset = mouse->globalPosition().toPoint() - m_window->window()->pos();
        return true;
    }
    case QEvent::MouseMove:
        if (m_manualDrag) {
            auto *mouse = static_cast<QMouseEvent *>(event);
            m_window->window()->move(mouse->globalPosition().toPoint() - m_grabOffset);
            return true;
        }
        return false;
    case QEvent::MouseButtonRelease:
        if (m_manualDrag) {
            m_manualDrag = false;
            return true;
        }
        return false;
    default:
        return false;
    }
}

} // namespace client
