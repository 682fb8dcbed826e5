#pragma once

#include <QAbstractButton>
#include <QIcon>

namespace client {

// A flat button that is only its picture, like the picture buttons of the lobby windows; a
// short text, when set, is drawn over the picture (a count, a wait). Its tool tip is also its
// name for screen readers, since the picture says nothing to them.
// Carries a free text `tag` that some buttons show state by (`picLogIn` holds the logged-in
// flag); the program reads its state from the models, never from a tag.
class PictureButton : public QAbstractButton
{
    Q_OBJECT
    Q_PROPERTY(QString tag READ tag WRITE setTag NOTIFY tagChanged)

public:
    explicit PictureButton(QWidget *parent = nullptr);

    void setPicture(const QIcon &picture);
    QString tag() const { return m_tag; }
    void setTag(const QString &tag);

    QSize sizeHint() const override;

Q_SIGNALS:
    void tagChanged(const QString &tag);

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    QString m_tag;
    bool m_hovered = false;
};

} // namespace client
