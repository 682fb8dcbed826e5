#include "client/rooms/frmmakeroom.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace client {

FrmMakeRoom::FrmMakeRoom(QWidget *parent)
    : BorderlessWindow({.objectName = "frmMakeRoom",
                        .title = QStringLiteral("Make room"),
                        .size = kSize,
                        .titleLabelName = "Label1",
                        .closeButtonName = "Picture2"},
                       parent)
{
    titleLabel()->setText(QStringLiteral("Make Room"));
    Text1 = addControl<QLineEdit>("Text1", {14, 62, 232, 26});
    addFieldLabel("Label2", QStringLiteral("Room name"), {14, 42, 200, 18}, Text1);
    Text1->setMaxLength(kMaxNameLength);
    Text1->setFocus(); // typing goes to the name as soon as the dialog shows
    Picture3 = addControl<QPushButton>("Picture3", {146, 100, 100, 28});
    Picture3->setText(QStringLiteral("Make room"));
    Picture3->setEnabled(false);

    connect(Text1, &QLineEdit::textChanged, this,
            [this](const QString &name) { Picture3->setEnabled(!name.trimmed().isEmpty()); });
    connect(Picture3, &QAbstractButton::clicked, this,
            [this] { Q_EMIT makeRoomRequested(Text1->text()); });
    connect(Text1, &QLineEdit::returnPressed, Picture3, &QAbstractButton::click);
}

} // namespace client
