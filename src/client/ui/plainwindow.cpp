#include "client/ui/plainwindow.h"

#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"
#include "client/ui/windowframe.h"

#include <QLabel>

namespace client {

PlainWindow::PlainWindow(const QString &objectName, const QString &title, QSize size,
                         QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
{
    setObjectName(objectName);
    setWindowTitle(title);
    resize(size);

    Label2 = new QLabel(title, this);
    Label2->setObjectName(QStringLiteral("Label2"));
    QFont font = Label2->font();
    font.setBold(true);
    Label2->setFont(font);
    Label2->setGeometry(10, 6, size.width() - 50, 20);

    auto *close = new PictureButton(this);
    close->setObjectName(QStringLiteral("closeButton"));
    close->setPicture(Icons::button(QStringLiteral("close")));
    close->setGeometry(size.width() - 28, 4, 22, 22);
    connect(close, &QAbstractButton::clicked, this, &QWidget::close);

    DragHandle::install(this, {Label2});
}

void PlainWindow::paintEvent(QPaintEvent *)
{
    paintWindowFrame(*this);
}

} // namespace client
