#include "client/desktop/qtdialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

namespace client {

QWidget *QtDialogs::owner() const
{
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget *active = QApplication::activeWindow())
        return active;
    // The program is not in front: the dialog still opens over its main window.
    return m_mainWindow && m_mainWindow->isVisible() ? m_mainWindow.data() : nullptr;
}

Dialogs::Answer QtDialogs::messageBox(const QString &title, const QString &text, Buttons buttons,
                                      Icon icon)
{
    QMessageBox box(owner());
    box.setWindowTitle(title);
    box.setText(text);
    switch (icon) {
    case Icon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case Icon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case Icon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case Icon::Warning:
        box.setIcon(QMessageBox::Warning);
        break;
    case Icon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    }
    switch (buttons) {
    case Buttons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case Buttons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        box.setEscapeButton(QMessageBox::Cancel);
        break;
    case Buttons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Ok:
        return Answer::Ok;
    case QMessageBox::Yes:
        return Answer::Yes;
    case QMessageBox::No:
        return Answer::No;
    default:
        return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
}

QString QtDialogs::openFileName(const QString &title, const QString &filter)
{
    return QFileDialog::getOpenFileName(owner(), title, QString(), filter);
}

QString QtDialogs::inputBox(const QString &prompt, const QString &title, const QString &defaultText,
                            bool masked)
{
    bool ok = false;
    const QString text = QInputDialog::getText(
        owner(), title, prompt, masked ? QLineEdit::Password : QLineEdit::Normal, defaultText, &ok);
    return ok ? text : QString();
}

} // namespace client
