#include "client/options/frmoptions.h"

#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/options/hotkeyedit.h"
#include "client/options/options.h"
#include "client/options/optionsstore.h"
#include "client/ui/picturebutton.h"
#include "client/ui/windowframe.h"
#include "client/platform/dialogs.h"

#include <QCheckBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QToolButton>

namespace client {

namespace {

constexpr QSize kSize(400, 290);

QToolButton *deleteButton(QWidget *parent, const char *name, int top)
{
    auto *button = new QToolButton(parent);
    button->setObjectName(QLatin1String(name));
    button->setText(QStringLiteral("Delete Path"));
    button->setAutoRaise(true);
    button->setGeometry(306, top, 84, 24);
    return button;
}

QLineEdit *folderField(QWidget *parent, const char *name, int top)
{
    auto *field = new QLineEdit(parent);
    field->setObjectName(QLatin1String(name));
    field->setGeometry(10, top, 290, 24);
    field->setToolTip(QStringLiteral("Click to browse for the game"));
    return field;
}

QLabel *label(QWidget *parent, const char *name, const QString &text, QRect geometry)
{
    auto *l = new QLabel(text, parent);
    l->setObjectName(QLatin1String(name));
    l->setGeometry(geometry);
    return l;
}

} // namespace

FrmOptions::FrmOptions(Options &options, OptionsStore &store, Dialogs &dialogs, QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint), m_options(options), m_store(store),
      m_dialogs(dialogs)
{
    setObjectName(QStringLiteral("frmOptions"));
    setWindowTitle(QStringLiteral("Options"));
    setWindowModality(Qt::ApplicationModal);
    resize(kSize);

    lblOptions = label(this, "lblOptions", QStringLiteral("Options"), {10, 6, 200, 20});
    QFont bold = lblOptions->font();
    bold.setBold(true);
    lblOptions->setFont(bold);

    picClose = new PictureButton(this);
    picClose->setObjectName(QStringLiteral("picClose"));
    picClose->setPicture(Icons::button(QStringLiteral("close")));
    picClose->setToolTip(QStringLiteral("Close"));
    picClose->setGeometry(kSize.width() - 28, 4, 22, 22);

    chkAutoStart = addCheckBox("chkAutoStart", QStringLiteral("Autostart"),
                               QStringLiteral("Start QuorVel when windows starts"), 40);
    chkAutoLogIn = addCheckBox("chkAutoLogIn", QStringLiteral("Auto login"),
                               QStringLiteral("Log in to quorvel automatically"), 64);
    chkSound = addCheckBox("chkSound", QStringLiteral("Play sounds"),
                           QStringLiteral("Play sounds on diffrent events"), 88);
    chkReset = addCheckBox(
        "chkReset", QStringLiteral("Ingame reset key     (0-9)     (A-Z)           (F1 - F12) "),
        QStringLiteral("Ingame reset key"), 112);

    txtHotKey = new HotKeyEdit(this);
    txtHotKey->setObjectName(QStringLiteral("txtHotKey"));
    txtHotKey->setGeometry(32, 138, 60, 24);

    lblPathToRoguespear = label(this, "lblPathToRoguespear",
                                QStringLiteral("Path to: roguespear.exe"), {10, 172, 290, 20});
    txtPathRS = folderField(this, "txtPathRS", 192);
    picDeletePathRS = deleteButton(this, "picDeletePathRS", 192);
    lblPathToR6BO =
        label(this, "lblPathToR6BO", QStringLiteral("Path to: R6BO.exe"), {10, 226, 290, 20});
    txtPathBlackOps = folderField(this, "txtPathBlackOps", 246);
    picDeletePathBO = deleteButton(this, "picDeletePathBO", 246);

    bindToOptions();
    DragHandle::install(this, {lblOptions});
}

QCheckBox *FrmOptions::addCheckBox(const char *name, const QString &caption, const QString &toolTip,
                                   int top)
{
    auto *box = new QCheckBox(caption, this);
    box->setObjectName(QLatin1String(name));
    box->setToolTip(toolTip);
    box->setGeometry(12, top, 376, 22);
    return box;
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
    connect(picClose, &QAbstractButton::clicked, this, &FrmOptions::closeAndSave);
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

void FrmOptions::closeAndSave()
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
    return QWidget::eventFilter(watched, event);
}

void FrmOptions::paintEvent(QPaintEvent *)
{
    paintWindowFrame(*this);
}

} // namespace client
