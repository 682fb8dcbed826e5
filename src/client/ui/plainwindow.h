#pragma once

#include <QWidget>

class QLabel;

namespace client {

// A borderless window with a title and a close button, draggable by its background and its
// title label `Label2`. Stands for the windows whose contents are not there yet (room,
// player menu, pager, create-room).
class PlainWindow : public QWidget
{
    Q_OBJECT

public:
    PlainWindow(const QString &objectName, const QString &title, QSize size,
                QWidget *parent = nullptr);

    QLabel *Label2; // title

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace client
