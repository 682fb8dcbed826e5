#pragma once

#include "client/ui/borderlesswindow.h"

class QLineEdit;
class QPushButton;

namespace client {

// The create-room dialog: a room name of at most 20 characters, and "Make room", enabled
// while the name is not blank once trimmed. The room is asked for with the name as typed.
class FrmMakeRoom : public BorderlessWindow
{
    Q_OBJECT

public:
    static constexpr QSize kSize{260, 141};
    static constexpr int kMaxNameLength = 20;

    explicit FrmMakeRoom(QWidget *parent = nullptr);

    QLineEdit *Text1;      // the room name
    QPushButton *Picture3; // "Make room"

Q_SIGNALS:
    void makeRoomRequested(const QString &roomName);
};

} // namespace client
