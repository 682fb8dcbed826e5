#pragma once

#include "client/platform/gamewindowfinder.h"

#include <QByteArray>
#include <QStringList>

struct xcb_connection_t;

namespace client {

// Looks through the top-level windows of the X11 display: those the window manager lists as
// clients, the children of the root window and their children (the frames a reparenting
// window manager puts around clients). Without an X11 display it looks for a running process
// whose program is the executable instead (by its name or the file its command line starts).
class X11GameWindowFinder final : public GameWindowFinder
{
public:
    // `display`: as in DISPLAY; empty for the DISPLAY of the environment.
    explicit X11GameWindowFinder(const QByteArray &display = {});
    ~X11GameWindowFinder() override;
    X11GameWindowFinder(const X11GameWindowFinder &) = delete;
    X11GameWindowFinder &operator=(const X11GameWindowFinder &) = delete;

    bool windowExists(const QString &windowClass, const QString &title,
                      const QString &executable) override;

    bool hasDisplay() const { return m_connection != nullptr; }

    // Whether a process runs the executable; `procFolder` holds one folder per process.
    static bool processRuns(const QString &executable,
                            const QString &procFolder = QStringLiteral("/proc"));

private:
    struct Window
    {
        QString title;
        QStringList classes; // WM_CLASS: instance and class
    };
    QList<Window> topLevelWindows();

    xcb_connection_t *m_connection = nullptr;
    quint32 m_root = 0;
};

} // namespace client
