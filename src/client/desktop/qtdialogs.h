#pragma once

#include "client/platform/dialogs.h"

#include <QPointer>
#include <QWidget>

namespace client {

// The real Qt dialogs, centred on the program's window in front (a modal one first), else on
// its main window while that is shown, so that a dialog raised from the background still opens
// over the program rather than in a corner of the screen.
class QtDialogs final : public Dialogs
{
public:
    explicit QtDialogs(QWidget *mainWindow = nullptr) : m_mainWindow(mainWindow) {}

    // The window the dialogs fall back to; the composition root sets it once the main window
    // exists. It may be destroyed before this object.
    void setMainWindow(QWidget *mainWindow) { m_mainWindow = mainWindow; }

    Answer messageBox(const QString &title, const QString &text, Buttons buttons,
                      Icon icon) override;
    QString openFileName(const QString &title, const QString &filter) override;
    QString inputBox(const QString &prompt, const QString &title, const QString &defaultText,
                     bool masked) override;

private:
    QWidget *owner() const;

    QPointer<QWidget> m_mainWindow;
};

} // namespace client
