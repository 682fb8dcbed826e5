#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>

class QWidget;

namespace client {

// Lets the user move a borderless window by pressing any mouse button on one of its handles
// (the window's own background, its title label) and dragging. The window manager moves the
// window when it can (QWindow::startSystemMove); otherwise the window follows the mouse.
class DragHandle : public QObject
{
    Q_OBJECT

public:
    // Installs handles on `window` (its background) and on each of `handles`; owned by
    // `window`.
    static DragHandle *install(QWidget *window, std::initializer_list<QWidget *> handles = {});

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit DragHandle(QWidget *window);

    QPointer<QWidget> m_window;
    bool m_manualDrag = false;
    QPoint m_grabOffset; // mouse position relative to the window's top-left corner
};

} // namespace client
