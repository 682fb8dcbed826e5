#pragma once

#include <QLineEdit>

namespace client {

// The hot-key field `txtHotKey`: typing does not edit it; every key pressed in it is offered
// as the hot key (`keyCaptured` with the key's virtual-key code, the same on every keyboard
// layout for digits, letters and F-keys). Keys without a code, and Tab, which moves the focus
// on, are not offered. The text is set from outside.
class HotKeyEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit HotKeyEdit(QWidget *parent = nullptr);

Q_SIGNALS:
    void keyCaptured(int virtualKey);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

} // namespace client
