#pragma once

#include <QWidget>

class QLabel;

namespace client {

class PictureButton;

// A borderless window of fixed size in the program's look: a darker title band with the bold
// title label and a close button at its right end, and a thin border. The user drags it by its
// background and its title label. The close button closes the window unless a subclass gives it
// another meaning (closeClicked); Escape does the same unless the frame says otherwise. Subclasses
// place their controls below the band at fixed positions; on its own it stands for a window whose
// contents are not there yet.
class BorderlessWindow : public QWidget
{
    Q_OBJECT

public:
    // The window's object name, title and size, and the object names that its title label and
    // close button are found by.
    struct Frame
    {
        const char *objectName;
        QString title; // the window title and the title label's text
        QSize size;
        const char *titleLabelName = "Label2";
        const char *closeButtonName = "closeButton";
        bool escapeCloses = true; // Escape does what the close button does
    };

    explicit BorderlessWindow(const Frame &frame, QWidget *parent = nullptr);

    QLabel *titleLabel() const { return m_title; }
    PictureButton *closeButton() const { return m_close; }

protected:
    // What the close button does: closes the window (which unloads it when the window deletes
    // itself on close).
    virtual void closeClicked();

    // A child control named `name` at `geometry`.
    template <typename Control> Control *addControl(const char *name, QRect geometry)
    {
        auto *control = new Control(this);
        control->setObjectName(QLatin1String(name));
        control->setGeometry(geometry);
        return control;
    }
    QLabel *addLabel(const char *name, const QString &text, QRect geometry);
    // A label that names `field` for screen readers and the keyboard.
    QLabel *addFieldLabel(const char *name, const QString &text, QRect geometry, QWidget *field);

    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    bool m_escapeCloses;
    QLabel *m_title;
    PictureButton *m_close;
};

} // namespace client
