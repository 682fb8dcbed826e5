#include "client/ui/borderlesswindow.h"

#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QLabel>
#include <QPainter>

namespace client {

namespace {
constexpr int kTitleBandHeight = 30;
}

BorderlessWindow::BorderlessWindow(const Frame &frame, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
{
    setObjectName(QLatin1String(frame.objectName));
    setWindowTitle(frame.title);
    resize(frame.size);

    m_title = addLabel(frame.titleLabelName, frame.title, {10, 6, frame.size.width() - 50, 20});
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);

    m_close =
        addControl<PictureButton>(frame.closeButtonName, {frame.size.width() - 28, 4, 22, 22});
    m_close->setPicture(Icons::button(QStringLiteral("close")));
    connect(m_close, &QAbstractButton::clicked, this, [this] { closeClicked(); });

    DragHandle::install(this, {m_title});
}

void BorderlessWindow::closeClicked()
{
    close();
}

QLabel *BorderlessWindow::addLabel(const char *name, const QString &text, QRect geometry)
{
    auto *label = addControl<QLabel>(name, geometry);
    label->setText(text);
    return label;
}

void BorderlessWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor background = palette().color(QPalette::Window);
    painter.fillRect(rect(), background);
    painter.fillRect(QRect(0, 0, width(), kTitleBandHeight), background.darker(115));
    painter.setPen(background.darker(160));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace client
