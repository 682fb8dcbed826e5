#pragma once

#include <QObject>
#include <functional>

class QWidget;

namespace client {

// Opens the program's other windows over the main window: the first time a window is shown
// after it was created, it is centred on the main window (kept on its screen), unless the main
// window is hidden or minimised. Later shows keep where the user put it.
class WindowPlacer : public QObject
{
    Q_OBJECT

public:
    explicit WindowPlacer(QWidget &mainWindow, QObject *parent = nullptr);

    void watch(QWidget *window);

    // A window factory whose windows are watched.
    template <typename Window> std::function<Window *()> placed(std::function<Window *()> make)
    {
        return [this, make = std::move(make)] {
            Window *window = make();
            watch(window);
            return window;
        };
    }

    // Centres `window` on `over`, inside the available area of `over`'s screen.
    static void centre(QWidget &window, const QWidget &over);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget &m_main;
};

} // namespace client
