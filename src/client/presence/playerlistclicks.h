#pragma once

#include <QObject>
#include <QPoint>

class QAbstractItemView;

namespace client {

// Reports each mouse button released over the player list, after the press has selected the
// entry under the mouse.
class PlayerListClicks : public QObject
{
    Q_OBJECT

public:
    explicit PlayerListClicks(QAbstractItemView &ListView2, QObject *parent = nullptr);

Q_SIGNALS:
    void released(Qt::MouseButton button, QPoint globalPos);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

} // namespace client
