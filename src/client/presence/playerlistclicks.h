#pragma once

#include <QObject>
#include <QPoint>

class QAbstractItemView;

namespace client {

// Reports each mouse button released over the player list, after the press has selected the
// entry under the mouse, and the keys that stand for them: Enter on the current row for the
// left button, the context-menu key or Shift+F10 for the right one, at the row's middle.
class PlayerListClicks : public QObject
{
    Q_OBJECT

public:
    explicit PlayerListClicks(QAbstractItemView &ListView2, QObject *parent = nullptr);

Q_SIGNALS:
    void released(Qt::MouseButton button, QPoint globalPos);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPoint currentRowCentre() const;

    QAbstractItemView &m_view;
};

} // namespace client
