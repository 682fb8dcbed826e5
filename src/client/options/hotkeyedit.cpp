#include "client/options/hotkeyedit.h"

#include "client/options/hotkeynames.h"

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
    const int code =
        HotKeys::virtualKeyFromQtKey(event->key(), event->modifiers().testFlag(Qt::KeypadModifier));
    if (code != 0)
        Q_EMIT keyCaptured(code);
}

} // namespace client
