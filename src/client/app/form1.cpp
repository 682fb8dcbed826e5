#include "client/app/form1.h"

#include "client/app/splitterbar.h"
#include "client/session/clientversion.h"
#include "client/ui/draghandle.h"
#include "client/ui/icons.h"
#include "client/ui/picturebutton.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSizeGrip>
#include <QTextBrowser>
#include <QTreeView>

namespace client {

namespace {
// Places at the normal size; a larger window gives its extra width three parts to the left
// column and one to the player list, its extra height to the lists and the chat.
constexpr int kListTop = 76;
constexpr int kLeft = 10;
constexpr int kLeftWidth = 560;
constexpr int kRightLeft = 580;
constexpr int kRightWidth = 210;
constexpr int kFindHeight = 24;
constexpr int kSplitterHeight = 6;
constexpr int kSendTop = 560;
constexpr int kSendHeight = 28;
constexpr int kBottomMargin = 10;
} // namespace

Form1::Form1(QWidget *parent) : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("Form1"));
    setWindowTitle(QStringLiteral("QUORVEL"));
    setMinimumSize(kMinimumSize);
    resize(kSize);
    setWindowIcon(Icons::smallIcon(Icons::WindowOffline));

    Label1 = new QLabel(QStringLiteral("QUORVEL"), this);
    Label1->setObjectName(QStringLiteral("Label1"));
    QFont titleFont = Label1->font();
    titleFont.setPointSize(15);
    titleFont.setBold(true);
    titleFont.setLetterSpacing(QFont::AbsoluteSpacing, 2);
    Label1->setFont(titleFont);
    Label1->setGeometry(14, 4, 150, 30);

    Label3 = new QLabel(clientVersion(), this);
    Label3->setObjectName(QStringLiteral("Label3"));
    Label3->setGeometry(168, 14, 60, 16);

    Picture4 = makeButton("Picture4", QStringLiteral("hide"), tr("Hide to the notification area"),
                          QRect(736, 6, 26, 26));
    Picture2 = makeButton("Picture2", QStringLiteral("close"), tr("Close"), QRect(766, 6, 26, 26));

    const int toolTop = 38;
    picLogIn = makeButton("picLogIn", {}, tr("Log in / Log out"), QRect(kLeft, toolTop, 34, 34));
    picLogIn->setPicture(Icons::smallIcon(Icons::LogInOffline));
    picLogIn->setTag(QStringLiteral("OFFLINE"));
    picOptions = makeButton("picOptions", QStringLiteral("options"), tr("Options"),
                            QRect(kLeft + 40, toolTop, 34, 34));
    picCreateRoom = makeButton("picCreateRoom", QStringLiteral("createroom"), tr("Create room"),
                               QRect(kLeft + 80, toolTop, 34, 34));
    picResetStats = makeButton("picResetStats", QStringLiteral("resetstats"),
                               tr("Reset statistics"), QRect(kLeft + 120, toolTop, 34, 34));
    picViewStats = makeButton("picViewStats", QStringLiteral("viewstats"), tr("View statistics"),
                              QRect(kLeft + 160, toolTop, 34, 34));
    picRefreshPings = makeButton("picRefreshPings", QStringLiteral("refreshpings"),
                                 tr("Refresh pings"), QRect(kLeft + 200, toolTop, 34, 34));
    picCreateRoom->hide();
    picResetStats->hide();
    picViewStats->hide();

    ListView1 = new QTreeView(this);
    ListView1->setObjectName(QStringLiteral("ListView1"));
    ListView1->setRootIsDecorated(false);
    ListView1->setAccessibleName(tr("Rooms and games"));
    ListView1->setUniformRowHeights(true);
    ListView1->setGeometry(kLeft, kListTop, kLeftWidth, SplitterBar::kStartTop - kListTop);

    txtFindPlayer = new QLineEdit(this);
    txtFindPlayer->setObjectName(QStringLiteral("txtFindPlayer"));
    txtFindPlayer->setPlaceholderText(tr("Find a player"));
    txtFindPlayer->setAccessibleName(txtFindPlayer->placeholderText());

    ListView2 = new QTreeView(this);
    ListView2->setObjectName(QStringLiteral("ListView2"));
    ListView2->setAccessibleName(tr("Players"));

    Picture1 = new SplitterBar(this);
    Picture1->setObjectName(QStringLiteral("Picture1"));
    Picture1->setGeometry(kLeft, SplitterBar::kStartTop, kLeftWidth, kSplitterHeight);
    connect(Picture1, &SplitterBar::moved, this, &Form1::splitterMoved);

    txtChat = new QTextBrowser(this);
    txtChat->setObjectName(QStringLiteral("txtChat"));
    txtChat->setReadOnly(true);
    txtChat->setAccessibleName(tr("Lobby chat"));

    txtChatSend = new QLineEdit(this);
    txtChatSend->setObjectName(QStringLiteral("txtChatSend"));
    txtChatSend->setAccessibleName(tr("Chat message"));

    Picture3 = makeButton("Picture3", QStringLiteral("send"), tr("Send"),
                          QRect(kLeft + kLeftWidth - 32, kSendTop, 32, kSendHeight));
    Picture3->setEnabled(false);

    m_sizeGrip = new QSizeGrip(this);
    m_sizeGrip->setObjectName(QStringLiteral("sizeGrip"));

    connect(Picture2, &QAbstractButton::clicked, this, &QWidget::close);
    connect(Picture4, &QAbstractButton::clicked, this, &Form1::hideRequested);
    DragHandle::install(this, {Label1});

    layoutControls();
}

PictureButton *Form1::makeButton(const char *name, const QString &picture, const QString &tip,
                                 const QRect &geometry)
{
    auto *button = new PictureButton(this);
    button->setObjectName(QLatin1String(name));
    if (!picture.isEmpty())
        button->setPicture(Icons::button(picture));
    button->setToolTip(tip);
    button->setGeometry(geometry);
    button->setIconSize(geometry.size() - QSize(6, 6));
    return button;
}

void Form1::showAtNormalSize()
{
    resize(kSize);
    show();
    raise();
    activateWindow();
}

void Form1::relayout()
{
    const int top = Picture1->y();
    ListView1->setGeometry(ListView1->x(), ListView1->y(), ListView1->width(),
                           top - ListView1->y());
    const int chatTop = top + Picture1->height();
    txtChat->setGeometry(kLeft, chatTop, ListView1->width(), txtChatSend->y() - top - 10);
}

void Form1::layoutControls()
{
    const QScopedValueRollback guard(m_layingOut, true);
    const int extraWidth = width() - kSize.width();
    const int rightGrowth = extraWidth / 4;
    const int leftWidth = kLeftWidth + extraWidth - rightGrowth;
    const int rightLeft = kRightLeft + extraWidth - rightGrowth;
    const int rightWidth = kRightWidth + rightGrowth;
    const int sendTop = kSendTop + height() - kSize.height();

    Picture4->move(width() - 64, Picture4->y());
    Picture2->move(width() - 34, Picture2->y());
    txtFindPlayer->setGeometry(rightLeft, kListTop, rightWidth, kFindHeight);
    const int playersTop = kListTop + kFindHeight + 4;
    ListView2->setGeometry(rightLeft, playersTop, rightWidth,
                           height() - kBottomMargin - playersTop);
    txtChatSend->setGeometry(kLeft, sendTop, leftWidth - 36, kSendHeight);
    Picture3->move(kLeft + leftWidth - 32, sendTop);
    ListView1->resize(leftWidth, ListView1->height());
    Picture1->resize(leftWidth, kSplitterHeight);
    const QSize grip = m_sizeGrip->sizeHint();
    m_sizeGrip->setGeometry(QRect(QPoint(width() - grip.width(), height() - grip.height()), grip));
    m_sizeGrip->raise();

    // The middle stop is the normal place, scaled with the space; the outer stops leave the
    // room list its header and a row and the chat two lines.
    const int top = kListTop + minimumRoomListHeight();
    const int bottom = sendTop - 10 - minimumChatHeight();
    const int middle = kListTop + (SplitterBar::kStartTop - kListTop) * (sendTop - kListTop) /
                                      (kSendTop - kListTop);
    Picture1->setStops(top, middle, bottom);
    if (m_splitShare < 0)
        m_splitShare = bottom > top ? double(Picture1->middleStop() - top) / (bottom - top) : 0;
    Picture1->moveTopTo(top + qRound(m_splitShare * (bottom - top)));
}

void Form1::splitterMoved()
{
    relayout();
    if (m_layingOut)
        return;
    const int span = Picture1->bottomStop() - Picture1->topStop();
    m_splitShare = span > 0 ? double(Picture1->y() - Picture1->topStop()) / span : 0;
}

int Form1::minimumRoomListHeight() const
{
    const int row = std::max(ListView1->fontMetrics().height(), ListView1->iconSize().height());
    // Before the list has its columns its header has no height yet.
    const int header = std::max(ListView1->header()->sizeHint().height(),
                                ListView1->header()->fontMetrics().height() + 8);
    return header + row + 6 + 2 * ListView1->frameWidth();
}

int Form1::minimumChatHeight() const
{
    const int margins = 2 * int(txtChat->document()->documentMargin()) + 2 * txtChat->frameWidth();
    return 2 * txtChat->fontMetrics().lineSpacing() + margins;
}

void Form1::resizeEvent(QResizeEvent *)
{
    if (m_sizeGrip) // the controls exist
        layoutControls();
}

void Form1::closeEvent(QCloseEvent *event)
{
    Q_EMIT unloading();
    event->accept();
}

void Form1::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const QColor window = palette().color(QPalette::Window);
    QLinearGradient header(0, 0, 0, kListTop);
    header.setColorAt(0, window.darker(118));
    header.setColorAt(1, window);
    painter.fillRect(rect(), window);
    painter.fillRect(QRect(0, 0, width(), kListTop - 4), header);
    painter.setPen(window.darker(160));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace client
