#pragma once

#include "client/platform/keystate.h"

#include <QByteArray>

struct xcb_connection_t;

namespace client {

// The key state of the X11 display: the keyboard's keymap as the server holds it, read at
// each question. Knows the digits, the letters and F1..F12, at their places on the keyboard
// (as the hot-key field captures them). Without an X11 display no key is down.
class X11KeyState final : public KeyState
{
public:
    // `display`: as in DISPLAY; empty for the DISPLAY of the environment.
    explicit X11KeyState(const QByteArray &display = {});
    ~X11KeyState() override;
    X11KeyState(const X11KeyState &) = delete;
    X11KeyState &operator=(const X11KeyState &) = delete;

    bool isAvailable() const override { return m_connection != nullptr; }
    bool isKeyDown(int virtualKey) override;

private:
    xcb_connection_t *m_connection = nullptr;
};

} // namespace client
