#include "client/ui/borderlesswindow.h"

#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPainter>

namespace client {

namespace {
constexpr int kTitleBandHeight = 30;
}

BorderlessWindow::BorderlessWindow(const Frame &frame, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint), m_escapeCloses(frame.escapeCloses)
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
    m_close->setToolTip(tr("Close"));
    connect(m_close, &QAbstractButton::clicked, this, [this] { closeClicked(); });

    DragHandle::install(this, {m_title});
}

void BorderlessWindow::closeClicked()
{
    close();
}

void BorderlessWindow::keyPressEvent(QKeyEvent *event)
{
    if (m_escapeCloses && event->key() == Qt::Key_Escape) {
        closeClicked();
        return;
    }
    QWidget::keyPressEvent(event);
}

void BorderlessWindow::showEvent(QShowEvent *event)
{
    // The close button comes first in the window but last in the tab order, after the controls
    // the subclass added (and may have shown or hidden since).
    QWidget *last = nullptr;
    for (QWidget *w = nextInFocusChain(); w != this; w = w->nextInFocusChain()) {
        if (w != m_close && isAncestorOf(w))
            last = w;
    }
    if (last)
        QWidget::setTabOrder(last, m_close);
    QWidget::showEvent(event);
}

QLabel *BorderlessWindow::addLabel(const char *name, const QString &text, QRect geometry)
{
    auto *label = addControl<QLabel>(name, geometry);
    label->setText(text);
    return label;
}

QLabel *BorderlessWindow::addFieldLabel(const char *name, const QString &text, QRect geometry,
                                        QWidget *field)
{
    QLabel *label = addLabel(name, text, geometry);
    label->setBuddy(field); // the field is named by the label, and Alt+key on it focuses it
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
