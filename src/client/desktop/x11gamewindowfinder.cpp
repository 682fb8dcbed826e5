#include "client/desktop/x11gamewindowfinder.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace client {

namespace {

template <typename T> using XcbReply = std::unique_ptr<T, decltype(&std::free)>;

template <typename T> XcbReply<T> own(T *reply)
{
    return XcbReply<T>(reply, &std::free);
}

xcb_atom_t internAtom(xcb_connection_t *connection, const char *name)
{
    const auto reply = own(xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, uint16_t(qstrlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

QByteArray propertyBytes(xcb_connection_t *connection, xcb_get_property_cookie_t cookie)
{
    const auto reply = own(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8)
        return {};
    return QByteArray(static_cast<const char *>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

QList<xcb_window_t> children(xcb_connection_t *connection, xcb_window_t window)
{
    const auto reply =
        own(xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!reply)
        return {};
    const xcb_window_t *first = xcb_query_tree_children(reply.get());
    return QList<xcb_window_t>(first, first + xcb_query_tree_children_length(reply.get()));
}

} // namespace

X11GameWindowFinder::X11GameWindowFinder(const QByteArray &display)
{
    int screenNumber = 0;
    xcb_connection_t *connection =
        xcb_connect(display.isEmpty() ? nullptr : display.constData(), &screenNumber);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = 0; i < screenNumber && screens.rem; ++i)
        xcb_screen_next(&screens);
    if (!screens.rem) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
    m_root = screens.data->root;
}

X11GameWindowFinder::~X11GameWindowFinder()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

QList<X11GameWindowFinder::Window> X11GameWindowFinder::topLevelWindows()
{
    xcb_connection_t *c = m_connection;
    const xcb_atom_t clientList = internAtom(c, "_NET_CLIENT_LIST");
    const xcb_atom_t netWmName = internAtom(c, "_NET_WM_NAME");

    QList<xcb_window_t> candidates;
    const auto clients = own(xcb_get_property_reply(
        c, xcb_get_property(c, 0, m_root, clientList, XCB_ATOM_WINDOW, 0, 4096), nullptr));
    if (clients && clients->format == 32) {
        const auto *first =
            static_cast<const xcb_window_t *>(xcb_get_property_value(clients.get()));
        candidates.append(
            QList<xcb_window_t>(first, first + xcb_get_property_value_length(clients.get()) / 4));
    }
    for (const xcb_window_t top : children(c, m_root)) {
        candidates.append(top);
        candidates.append(children(c, top));
    }
    candidates = QSet<xcb_window_t>(candidates.cbegin(), candidates.cend()).values();

    // All requests first, then all replies: one round trip for the lot.
    struct Cookies
    {
        xcb_get_property_cookie_t netName, name, wmClass;
    };
    QList<Cookies> cookies;
    cookies.reserve(candidates.size());
    for (const xcb_window_t window : candidates)
        cookies.append(
            {xcb_get_property(c, 0, window, netWmName, XCB_GET_PROPERTY_TYPE_ANY, 0, 256),
             xcb_get_property(c, 0, window, XCB_ATOM_WM_NAME, XCB_GET_PROPERTY_TYPE_ANY, 0, 256),
             xcb_get_property(c, 0, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 0, 256)});
    QList<Window> windows;
    for (const Cookies &cookie : cookies) {
        const QByteArray netName = propertyBytes(c, cookie.netName);
        const QByteArray name = propertyBytes(c, cookie.name);
        const QByteArray wmClass = propertyBytes(c, cookie.wmClass);
        Window window;
        window.title = netName.isEmpty() ? QString::fromLatin1(name) : QString::fromUtf8(netName);
        for (const QByteArray &part : wmClass.split('\0'))
            if (!part.isEmpty())
                window.classes << QString::fromLocal8Bit(part);
        windows.append(window);
    }
    return windows;
}

bool X11GameWindowFinder::windowExists(const QString &windowClass, const QString &title,
                                       const QString &executable)
{
    if (!m_connection || xcb_connection_has_error(m_connection))
        return processRuns(executable);
    const QList<Window> windows = topLevelWindows();
    return std::any_of(windows.cbegin(), windows.cend(), [&](const Window &window) {
        if (window.title != title || window.classes.size() < 2)
            return false;
        const QString &className = window.classes.at(1);
        return className == windowClass || className.compare(executable, Qt::CaseInsensitive) == 0;
    });
}

bool X11GameWindowFinder::processRuns(const QString &executable, const QString &procFolder)
{
    QDirIterator processes(procFolder, QDir::Dirs | QDir::NoDotAndDotDot);
    while (processes.hasNext()) {
        const QString folder = processes.next();
        QFile comm(folder + QStringLiteral("/comm"));
        if (comm.open(QIODevice::ReadOnly) &&
            QString::fromLocal8Bit(comm.readAll().trimmed())
                    .compare(executable, Qt::CaseInsensitive) == 0)
            return true;
        // Wine's processes carry the Windows path of the program as their first argument.
        QFile cmdline(folder + QStringLiteral("/cmdline"));
        if (!cmdline.open(QIODevice::ReadOnly))
            continue;
        const QString program = QString::fromLocal8Bit(cmdline.readAll().split('\0').value(0));
        const QString name = program.section(QRegularExpression(QStringLiteral("[/\\\\]")), -1);
        if (!name.isEmpty() && name.compare(executable, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

} // namespace client
