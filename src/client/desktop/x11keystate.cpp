#include "client/desktop/x11keystate.h"

#include "client/platform/x11keycodes.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace client {

X11KeyState::X11KeyState(const QByteArray &display)
{
    xcb_connection_t *connection =
        xcb_connect(display.isEmpty() ? nullptr : display.constData(), nullptr);
    if (xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        return;
    }
    m_connection = connection;
}

X11KeyState::~X11KeyState()
{
    if (m_connection)
        xcb_disconnect(m_connection);
}

bool X11KeyState::isKeyDown(int virtualKey)
{
    const quint32 keycode = X11Keycodes::keycode(virtualKey);
    if (!m_connection || keycode == 0 || keycode > 255)
        return false;
    const std::unique_ptr<xcb_query_keymap_reply_t, decltype(&std::free)> reply(
        xcb_query_keymap_reply(m_connection, xcb_query_keymap(m_connection), nullptr), &std::free);
    // One bit per keycode, the lowest bit of the first byte for keycode 0.
    return reply && (reply->keys[keycode / 8] >> (keycode % 8)) & 1;
}

} // namespace client
