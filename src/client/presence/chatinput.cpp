#include "client/presence/chatinput.h"

#include "client/lobby/lobbyconnection.h"
#include "client/presence/chatwords.h"
#include "client/text/blanks.h"
#include "protocol/chat.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTimer>

namespace client {

QString ChatInput::hintText()
{
    return QStringLiteral("Type message here and press ENTER");
}

QString ChatInput::toolTipText()
{
    return QStringLiteral("Enter message and press ENTER");
}

QString ChatInput::uncarriedToolTip(const QString &characters)
{
    return QStringLiteral("These characters will arrive as \"?\": %1").arg(characters);
}

ChatInput::ChatInput(QLineEdit *input, QAbstractButton *sendButton, SendRateGuard guard,
                     Sender sender, Hint hint, QObject *parent)
    : QObject(parent), m_input(input), m_sendButton(sendButton), m_guard(guard),
      m_sender(std::move(sender)), m_waitTimer(new QTimer(this)),
      m_sendToolTip(sendButton->toolTip()), m_hintShown(hint == Hint::Shown), m_watched(input)
{
    input->setToolTip(toolTipText());
    if (m_hintShown) {
        input->setText(hintText());
        sendButton->setEnabled(false);
    }
    input->installEventFilter(this);
    connect(sendButton, &QAbstractButton::clicked, this, &ChatInput::send);
    connect(input, &QLineEdit::textChanged, this, &ChatInput::markUncarried);
    m_waitTimer->setInterval(kWaitPollMs);
    connect(m_waitTimer, &QTimer::timeout, this, &ChatInput::showWait);
}

ChatInput *ChatInput::forLobby(QLineEdit *txtChatSend, QAbstractButton *sendButton,
                               LobbyConnection &connection, SendRateGuard guard, QObject *parent)
{
    return new ChatInput(
        txtChatSend, sendButton, guard,
        [&connection](const QString &line) { connection.send(protocol::ChatLineToServer{line}); },
        Hint::Shown, parent);
}

void ChatInput::send()
{
    if (!m_input)
        return;
    const QString line = trimBlanks(m_input->text()).toString();
    if (line.isEmpty())
        return;
    if (!m_guard.tryPass()) {
        showWait();
        m_waitTimer->start();
        return;
    }
    if (m_waitTimer->isActive())
        endWait();
    m_input->clear();
    m_sender(line);
}

void ChatInput::endWait()
{
    m_waitTimer->stop();
    m_sendButton->setText({});
    m_sendButton->setToolTip(m_sendToolTip);
    m_sendButton->setEnabled(true);
}

void ChatInput::showWait()
{
    if (!m_sendButton)
        return;
    const int seconds = m_guard.secondsToWait();
    if (seconds == 0) {
        endWait();
        return;
    }
    m_sendButton->setText(QString::number(seconds));
    m_sendButton->setToolTip(tr("Wait %n second(s) before sending again", nullptr, seconds));
    m_sendButton->setEnabled(false);
}

void ChatInput::markUncarried()
{
    const QString uncarried = uncarriedCharacters(m_input->text());
    m_input->setToolTip(uncarried.isEmpty() ? toolTipText() : uncarriedToolTip(uncarried));
    m_input->setStyleSheet(
        uncarried.isEmpty() ? QString() : QStringLiteral("QLineEdit { background: #fff0c0; }"));
}

bool ChatInput::eventFilter(QObject *watched, QEvent *event)
{
    // Compared as a plain object: the box may be part way through its destruction (the window
    // that holds it goes first), when it is no longer a QLineEdit to look at.
    if (watched != m_watched)
        return false;
    if (event->type() == QEvent::FocusIn && m_sendButton && m_hintShown) {
        m_hintShown = false;
        m_sendButton->setEnabled(true);
        m_input->clear();
    } else if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            send();
            return true;
        }
    }
    return false;
}

} // namespace client
