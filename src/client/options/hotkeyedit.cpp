#include "client/options/hotkeyedit.h"

#include "client/platform/x11keycodes.h"
#include "client/settings/hotkeynames.h"

#include <QKeyEvent>

namespace client {

HotKeyEdit::HotKeyEdit(QWidget *parent) : QLineEdit(parent)
{
    // Read-only keeps pasting and input methods out; key presses still arrive.
    setReadOnly(true);
    setContextMenuPolicy(Qt::NoContextMenu);
}

void HotKeyEdit::keyPressEvent(QKeyEvent *event)
{
    event->accept();
    // Digits, letters and F-keys are taken by their place on the keyboard, so that the "1"
    // above "Q" is 49 on every layout (on AZERTY it prints "&"). Other keys, and every key
    // when the platform gives no keycode, are taken by what they mean.
    int code = X11Keycodes::virtualKey(event->nativeScanCode());
    if (code == 0)
        code = HotKeys::virtualKeyFromQtKey(event->key(),
                                            event->modifiers().testFlag(Qt::KeypadModifier));
    if (code != 0)
        Q_EMIT keyCaptured(code);
}

} // namespace client
