#pragma once

#include <QWidget>

namespace client {

// The bar `Picture1` between the room list above and the lobby chat below. It moves only
// vertically, its top kept between 80 and 548 pixels of the window, by dragging or by
// double-clicking, which steps through three stops by its tag: "1" -> 80 (tag "2"),
// "2" -> 289 ("3"), "3" -> 548 ("1"); any other tag stays put. It starts at 289 with tag "2",
// so the first double-click leaves it in place. After every move `moved` asks the window to
// lay out again.
class SplitterBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kMinTop = 80;
    static constexpr int kMaxTop = 548;
    static constexpr int kStartTop = 289;

    explicit SplitterBar(QWidget *parent = nullptr);

    QString tag() const { return m_tag; }
    void setTag(const QString &tag) { m_tag = tag; }

    // Moves the bar to `top` clamped to the allowed range.
    void moveTopTo(int top);
    // The double-click step.
    void stepByTag();

Q_SIGNALS:
    void moved(int top);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_tag = QStringLiteral("2");
    bool m_dragging = false;
};

} // namespace client
