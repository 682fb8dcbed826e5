#include "client/options/frmoptions.h"

#include "client/options/hotkeyedit.h"
#include "client/platform/dialogs.h"
#include "client/settings/options.h"
#include "client/settings/optionsstore.h"
#include "client/ui/picturebutton.h"

#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QToolButton>

namespace client {

namespace {
constexpr QSize kSize(400, 310);
}

FrmOptions::FrmOptions(Options &options, OptionsStore &store, Dialogs &dialogs, QWidget *parent)
    : BorderlessWindow({.objectName = "frmOptions",
                        .title = QStringLiteral("Options"),
                        .size = kSize,
                        .titleLabelName = "lblOptions",
                        .closeButtonName = "picClose"},
                       parent),
      m_options(options), m_store(store), m_dialogs(dialogs)
{
    setWindowModality(Qt::ApplicationModal);
    picClose->setToolTip(QStringLiteral("Close"));

    chkAutoStart = addCheckBox("chkAutoStart", QStringLiteral("Autostart"),
                               QStringLiteral("Start QuorVel when windows starts"), 40);
    chkAutoLogIn = addCheckBox("chkAutoLogIn", QStringLiteral("Auto login"),
                               QStringLiteral("Log in to quorvel automatically"), 64);
    chkSound = addCheckBox("chkSound", QStringLiteral("Play sounds"),
                           QStringLiteral("Play sounds on diffrent events"), 88);
    chkReset = addCheckBox(
        "chkReset", QStringLiteral("Ingame reset key     (0-9)     (A-Z)           (F1 - F12) "),
        QStringLiteral("Ingame reset key"), 112);

    txtHotKey = addControl<HotKeyEdit>("txtHotKey", {32, 138, 60, 24});
    txtHotKey->setAccessibleName(QStringLiteral("Reset key"));

    txtPathRS = addFolderField("txtPathRS", 192);
    lblPathToRoguespear =
        addFieldLabel("lblPathToRoguespear", QStringLiteral("Path to: roguespear.exe"),
                      {10, 172, 290, 20}, txtPathRS);
    picDeletePathRS = addDeleteButton("picDeletePathRS", 192);
    txtPathBlackOps = addFolderField("txtPathBlackOps", 246);
    lblPathToR6BO = addFieldLabel("lblPathToR6BO", QStringLiteral("Path to: R6BO.exe"),
                                  {10, 226, 290, 20}, txtPathBlackOps);
    picDeletePathBO = addDeleteButton("picDeletePathBO", 246);
    chkBuddyNotify =
        addCheckBox("chkBuddyNotify", QStringLiteral("Tell me when a buddy comes online"),
                    QStringLiteral("A desktop message when a buddy logs in or starts a game"), 278);

    bindToOptions();
}

QCheckBox *FrmOptions::addCheckBox(const char *name, const QString &caption, const QString &toolTip,
                                   int top)
{
    auto *box = addControl<QCheckBox>(name, {12, top, 376, 22});
    box->setText(caption);
    box->setToolTip(toolTip);
    return box;
}

QLineEdit *FrmOptions::addFolderField(const char *name, int top)
{
    auto *field = addControl<QLineEdit>(name, {10, top, 290, 24});
    field->setToolTip(QStringLiteral("Click to browse for the game"));
    return field;
}

QToolButton *FrmOptions::addDeleteButton(const char *name, int top)
{
    auto *button = addControl<QToolButton>(name, {306, top, 84, 24});
    button->setText(QStringLiteral("Delete Path"));
    button->setAutoRaise(true);
    return button;
}

void FrmOptions::bindToOptions()
{
    const auto bindCheck = [this](QCheckBox *box, bool value, void (Options::*set)(bool),
                                  void (Options::*changed)(bool)) {
        box->setChecked(value);
        connect(box, &QCheckBox::toggled, &m_options, set);
        connect(&m_options, changed, box, &QCheckBox::setChecked);
    };
    bindCheck(chkAutoStart, m_options.autoStart(), &Options::setAutoStart,
              &Options::autoStartChanged);
    bindCheck(chkAutoLogIn, m_options.autoLogIn(), &Options::setAutoLogIn,
              &Options::autoLogInChanged);
    bindCheck(chkSound, m_options.sound(), &Options::setSound, &Options::soundChanged);
    bindCheck(chkReset, m_options.reset(), &Options::setReset, &Options::resetChanged);
    bindCheck(chkBuddyNotify, m_options.buddyNotifications(), &Options::setBuddyNotifications,
              &Options::buddyNotificationsChanged);

    txtHotKey->setEnabled(m_options.reset());
    connect(&m_options, &Options::resetChanged, txtHotKey, &QWidget::setEnabled);
    const auto showHotKey = [this] {
        txtHotKey->setText(m_options.hotKeyText());
        txtHotKey->setProperty("tag", m_options.hotKeyTag());
    };
    showHotKey();
    connect(&m_options, &Options::hotKeyChanged, txtHotKey, showHotKey);
    connect(txtHotKey, &HotKeyEdit::keyCaptured, &m_options, &Options::captureHotKey);

    const auto bindFolder = [this](QLineEdit *field, const QString &value,
                                   void (Options::*set)(const QString &),
                                   void (Options::*changed)(const QString &)) {
        field->setText(value);
        field->installEventFilter(this);
        connect(field, &QLineEdit::textEdited, &m_options, set);
        connect(&m_options, changed, field, [field](const QString &folder) {
            if (field->text() != folder)
                field->setText(folder);
        });
    };
    bindFolder(txtPathRS, m_options.pathRS(), &Options::setPathRS, &Options::pathRSChanged);
    bindFolder(txtPathBlackOps, m_options.pathBlackOps(), &Options::setPathBlackOps,
               &Options::pathBlackOpsChanged);

    connect(picDeletePathRS, &QAbstractButton::clicked, this,
            [this] { clearGameFolder(Game::RogueSpear); });
    connect(picDeletePathBO, &QAbstractButton::clicked, this,
            [this] { clearGameFolder(Game::BlackOps); });
}

void FrmOptions::browseGameFolder(Game game)
{
    const QString file =
        m_dialogs.openFileName(QStringLiteral("Open"), QStringLiteral("Programs (*.exe *.EXE)"));
    if (file.isEmpty())
        return;
    // Up to the last separator, whichever kind the path uses.
    const qsizetype cut = std::max(file.lastIndexOf(u'/'), file.lastIndexOf(u'\\'));
    const QString folder = cut < 0 ? QString() : file.left(cut);
    if (game == Game::RogueSpear)
        m_options.setPathRS(folder);
    else
        m_options.setPathBlackOps(folder);
}

void FrmOptions::clearGameFolder(Game game)
{
    if (m_dialogs.messageBox(QStringLiteral("Delete path"), QStringLiteral("Are you sure?"),
                             Dialogs::Buttons::YesNo,
                             Dialogs::Icon::Question) != Dialogs::Answer::Yes)
        return;
    if (game == Game::RogueSpear)
        m_options.setPathRS(QString());
    else
        m_options.setPathBlackOps(QString());
}

void FrmOptions::closeClicked()
{
    m_store.save();
    hide();
    Q_EMIT closed();
}

bool FrmOptions::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
        if (watched == txtPathRS)
            browseGameFolder(Game::RogueSpear);
        else if (watched == txtPathBlackOps)
            browseGameFolder(Game::BlackOps);
    }
    return BorderlessWindow::eventFilter(watched, event);
}

} // namespace client
