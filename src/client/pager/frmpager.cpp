#include "client/pager/frmpager.h"

#include "client/pager/pager.h"
#include "client/presence/chatinput.h"
#include "client/session/sessionstate.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCharFormat>
#include <QTextCursor>

namespace client {

namespace {

// Lines from earlier runs are told apart from today's by their grey.
constexpr QRgb kEarlierColour = 0x808080;

// Appends `text` (lines ending in CR LF) at the end of `edit` in `format`, whatever format the
// text before it has.
void appendText(QPlainTextEdit &edit, const QString &text, const QTextCharFormat &format = {})
{
    QTextCursor cursor(edit.document());
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")), format);
}

} // namespace

FrmPager::FrmPager(Pager &pager, const SessionState &session, QWidget *parent)
    : BorderlessWindow({.objectName = "frmPager",
                        .title = pager.title(),
                        .size = kSize,
                        .closeButtonName = "Picture2"},
                       parent),
      m_pager(pager), m_session(session)
{
    picUser = addControl<QLabel>("picUser", {10, 38, 150, 150});
    picUser->setAlignment(Qt::AlignCenter);
    txtHistory = addControl<QPlainTextEdit>("txtHistory", {170, 38, 421, 150});
    txtHistory->setReadOnly(true);
    txtHistory->setAccessibleName(tr("Conversation"));
    txtSkicka = addControl<QLineEdit>("txtSkicka", {170, 194, 357, 24});
    txtSkicka->setAccessibleName(tr("Message"));
    Picture3 = addControl<PictureButton>("Picture3", {533, 195, 22, 22});
    Picture3->setPicture(Icons::button(QStringLiteral("send")));
    Picture3->setToolTip(QStringLiteral("Send"));
    Picture4 = addControl<PictureButton>("Picture4", {563, 195, 22, 22});
    Picture4->setPicture(Icons::button(QStringLiteral("viewstats")));
    Picture4->setToolTip(QStringLiteral("View stats"));

    // Typed, sent and refused as in the lobby chat, whose pace of one line per three seconds
    // it shares.
    new ChatInput(
        txtSkicka, Picture3, pager.guard(), [&pager](const QString &line) { pager.sendLine(line); },
        ChatInput::Hint::None, this);
    connect(Picture4, &QAbstractButton::clicked, &pager, &Pager::showPartnerStats);
    connect(&pager, &Pager::titleChanged, Label2, &QLabel::setText);
    connect(&pager, &Pager::titleChanged, this, &QWidget::setWindowTitle);
    connect(&pager, &Pager::displayChanged, this, &FrmPager::showConversation);
    connect(&pager, &Pager::avatarChanged, this, [this](qint64 index) {
        if (index == m_pager.current())
            showAvatar();
    });
    connect(&pager, &Pager::historyAppended, this, [this](qint64 index, const QString &line) {
        if (!m_pager.isDisplaying() || index != m_pager.current())
            return;
        appendText(*txtHistory, line);
        txtHistory->verticalScrollBar()->setValue(txtHistory->verticalScrollBar()->maximum());
    });
    connect(&pager, &Pager::hideRequested, this, &QWidget::hide);
    showConversation();
}

FrmPager::~FrmPager()
{
    m_pager.setShown(false);
}

void FrmPager::showConversation()
{
    const bool displaying = m_pager.isDisplaying();
    txtHistory->setVisible(displaying);
    picUser->setVisible(displaying);
    txtHistory->clear();
    if (displaying) {
        const QString earlier = m_pager.earlier(m_pager.current());
        if (!earlier.isEmpty()) {
            QTextCharFormat grey;
            grey.setForeground(QColor(kEarlierColour));
            grey.setFontItalic(true);
            appendText(*txtHistory, QStringLiteral("Earlier conversation\r\n"), grey);
            grey.setFontItalic(false);
            appendText(*txtHistory, earlier, grey);
        }
        appendText(*txtHistory, m_pager.history(m_pager.current()));
    }
    txtHistory->verticalScrollBar()->setValue(txtHistory->verticalScrollBar()->maximum());
    showAvatar();
}

void FrmPager::showAvatar()
{
    const QImage picture = m_pager.avatar(m_pager.current());
    picUser->setPixmap(picture.isNull() ? QPixmap() : QPixmap::fromImage(picture));
}

void FrmPager::closeEvent(QCloseEvent *event)
{
    if (m_session.exitPager) {
        event->accept();
        return;
    }
    event->ignore();
    txtSkicka->clear();
    hide();
}

void FrmPager::showEvent(QShowEvent *event)
{
    m_pager.setShown(true);
    BorderlessWindow::showEvent(event);
    // Opened to talk: the keyboard goes to the input box.
    activateWindow();
    txtSkicka->setFocus();
}

void FrmPager::hideEvent(QHideEvent *event)
{
    m_pager.setShown(false);
    BorderlessWindow::hideEvent(event);
}

} // namespace client
