#pragma once

#include <QWidget>
#include <array>

namespace client {

// The bar `Picture1` between the room list above and the lobby chat below. It moves only
// vertically, its top kept between a top and a bottom stop, by dragging or by double-clicking,
// which steps through three stops by its tag: "1" -> top (tag "2"), "2" -> middle ("3"),
// "3" -> bottom ("1"); any other tag stays put. It starts at the middle with tag "2", so the
// first double-click leaves it in place. The window sets the stops from its size (on its own,
// 80, 289 and 548). After every move `moved` asks the window to lay out again.
class SplitterBar : public QWidget
{
    Q_OBJECT

public:
    static constexpr int kStartTop = 289;

    explicit SplitterBar(QWidget *parent = nullptr);

    QString tag() const { return m_tag; }
    void setTag(const QString &tag) { m_tag = tag; }

    int topStop() const { return m_stops[0]; }
    int middleStop() const { return m_stops[1]; }
    int bottomStop() const { return m_stops[2]; }
    // Sets the three stops (top <= middle <= bottom); the bar itself stays where it is.
    void setStops(int top, int middle, int bottom);

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
    std::array<int, 3> m_stops{80, kStartTop, 548};
    bool m_dragging = false;
};

} // namespace client
