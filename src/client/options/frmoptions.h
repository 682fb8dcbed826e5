#pragma once

#include "client/ui/borderlesswindow.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QToolButton;

namespace client {

class Dialogs;
class HotKeyEdit;
class Options;
class OptionsStore;

// The options window (borderless, dragged by its background and `lblOptions`): a view of the
// `Options` that edits them in place, so a change is in force at once. Clicking into a game
// folder field browses for the game's executable; the "Delete Path" buttons clear a folder
// after asking. `picClose` writes the settings file and hides the window, the only way the
// settings are saved. Shown application-modal.
class FrmOptions : public BorderlessWindow
{
    Q_OBJECT

public:
    enum class Game { RogueSpear, BlackOps };

    FrmOptions(Options &options, OptionsStore &store, Dialogs &dialogs, QWidget *parent = nullptr);

    // Asks for the game's executable; the folder that holds it becomes the game's folder.
    // Cancelling changes nothing.
    void browseGameFolder(Game game);
    // Asks "Are you sure?"; on Yes the game's folder becomes empty.
    void clearGameFolder(Game game);

    QLabel *lblOptions = titleLabel();
    PictureButton *picClose = closeButton();
    QCheckBox *chkAutoStart;
    QCheckBox *chkAutoLogIn;
    QCheckBox *chkSound;
    QCheckBox *chkReset;
    HotKeyEdit *txtHotKey;
    QLabel *lblPathToRoguespear;
    QLineEdit *txtPathRS;
    QToolButton *picDeletePathRS;
    QLabel *lblPathToR6BO;
    QLineEdit *txtPathBlackOps;
    QToolButton *picDeletePathBO;
    QCheckBox *chkBuddyNotify;

Q_SIGNALS:
    // `picClose` saved the settings and hid the window.
    void closed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    // Saves the settings, then hides the window.
    void closeClicked() override;
    // Escape closes the window as `picClose` does.

private:
    QCheckBox *addCheckBox(const char *name, const QString &caption, const QString &toolTip,
                           int top);
    QLineEdit *addFolderField(const char *name, int top);
    QToolButton *addDeleteButton(const char *name, int top);
    void bindToOptions();

    Options &m_options;
    OptionsStore &m_store;
    Dialogs &m_dialogs;
};

} // namespace client
