#include "client/app/windowplacer.h"

#include <QEvent>
#include <QScreen>
#include <QWidget>

namespace client {

namespace {

constexpr auto kPlaced = "placedOverMainWindow";

} // namespace

WindowPlacer::WindowPlacer(QWidget &mainWindow, QObject *parent)
    : QObject(parent), m_main(mainWindow)
{
}

void WindowPlacer::watch(QWidget *window)
{
    if (window)
        window->installEventFilter(this);
}

void WindowPlacer::centre(QWidget &window, const QWidget &over)
{
    QRect placed(QPoint(), window.frameGeometry().size());
    placed.moveCenter(over.frameGeometry().center());
    if (const QScreen *screen = over.screen()) {
        const QRect area = screen->availableGeometry();
        placed.moveLeft(std::clamp(placed.left(), area.left(),
                                   std::max(area.left(), area.right() - placed.width() + 1)));
        placed.moveTop(std::clamp(placed.top(), area.top(),
                                  std::max(area.top(), area.bottom() - placed.height() + 1)));
    }
    window.move(placed.topLeft());
}

bool WindowPlacer::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && !event->spontaneous() &&
        !watched->property(kPlaced).toBool()) {
        auto *window = static_cast<QWidget *>(watched);
        window->setProperty(kPlaced, true);
        if (m_main.isVisible() && !m_main.isMinimized())
            centre(*window, m_main);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace client
