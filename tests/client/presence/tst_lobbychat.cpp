#include "client/app/clock.h"
#include "client/app/sessionstate.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/chatinput.h"
#include "client/presence/chatwords.h"
#include "client/presence/lobbychat.h"
#include "client/presence/sendrateguard.h"
#include "loopbacklobby.h"
#include "protocol/message.h"

#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

using protocol::Code;

namespace {

const QDateTime kStart(QDate(2026, 1, 1), QTime(12, 0));

// The runs of one line of the chat box, adjacent pieces of equal style merged:
// "[b]" for bold, the colour as #rrggbb, "<link>" for an address shown as a link.
QStringList runsOf(const QTextBlock &block)
{
    QStringList runs;
    QString lastStyle;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment piece = it.fragment();
        const QTextCharFormat format = piece.charFormat();
        QString style = format.foreground().color().name();
        if (format.fontWeight() == QFont::Bold)
            style += QStringLiteral("[b]");
        if (format.isAnchor())
            style = QStringLiteral("<link ") + format.anchorHref() + u'>';
        if (!runs.isEmpty() && style == lastStyle) {
            runs.last().insert(runs.last().lastIndexOf(u'|'), piece.text());
            continue;
        }
        runs << piece.text() + u'|' + style;
        lastStyle = style;
    }
    return runs;
}

// A key sink standing for the main window: keys the input box lets through reach it.
class KeySink : public QWidget
{
public:
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
};

// The main window's chat controls, driven by the real chat classes.
struct ChatWindow
{
    ChatWindow()
        : txtChat(new QTextBrowser(&window)), txtChatSend(new QLineEdit(&window)),
          picture3(new QPushButton(&window)), connection(dispatcher),
          chat(txtChat, txtChatSend, picture3, connection, session, clock, nullptr,
               [this](const QString &address) { opened << address; })
    {
        auto *layout = new QVBoxLayout(&window);
        layout->addWidget(txtChat);
        layout->addWidget(txtChatSend);
        layout->addWidget(picture3);
        window.resize(400, 300);
        session.textSendTime = kStart;
        clock.set(kStart.addSecs(60));
        chat.registerHandler(dispatcher);
    }

    // The user has focused the input once and typed `text`.
    void type(const QString &text)
    {
        QFocusEvent focus(QEvent::FocusIn);
        QCoreApplication::sendEvent(txtChatSend, &focus);
        txtChatSend->setText(text);
    }

    KeySink window;
    QTextBrowser *txtChat;
    QLineEdit *txtChatSend;
    QPushButton *picture3;
    ManualClock clock;
    SessionState session;
    LobbyDispatcher dispatcher;
    LobbyConnection connection;
    QStringList opened;
    LobbyChat chat;
};

QString rawText(const QTextBrowser &box)
{
    return box.document()->toRawText();
}

} // namespace

class TestLobbyChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void chatLineLayout_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("colour");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("after"); // the runs after the time and its two spaces

        QTest::newRow("red text") << "Bob"
                                  << "255"
                                  << "hello there"
                                  << QStringList{"Bob|#000000[b]", "  >   |#000000",
                                                 "hello there |#ff0000"};
        QTest::newRow("black text merges with the arrow")
            << "Bob"
            << "0"
            << "hi" << QStringList{"Bob|#000000[b]", "  >   hi |#000000"};
        QTest::newRow("BGR order")
            << "Al"
            << "16711680"
            << "x" << QStringList{"Al|#000000[b]", "  >   |#000000", "x |#0000ff"};
        QTest::newRow("fraction rounded down")
            << "Al"
            << "65280.9"
            << "x" << QStringList{"Al|#000000[b]", "  >   |#000000", "x |#00ff00"};
        QTest::newRow("not a number is black")
            << "Al"
            << "red"
            << "x" << QStringList{"Al|#000000[b]", "  >   x |#000000"};
        QTest::newRow("negative is black")
            << "Al"
            << "-5"
            << "x" << QStringList{"Al|#000000[b]", "  >   x |#000000"};
        QTest::newRow("markup is text")
            << "<b>A</b>"
            << "0"
            << "<i>x</i> &amp;"
            << QStringList{"<b>A</b>|#000000[b]", "  >   <i>x</i> &amp; |#000000"};
        QTest::newRow("addresses become links")
            << "Bob"
            << "255"
            << "see www.example.com, or (https://a.org/x)"
            << QStringList{"Bob|#000000[b]", "  >   |#000000",
                           "see |#ff0000",   "www.example.com|<link www.example.com>",
                           ", or (|#ff0000", "https://a.org/x|<link https://a.org/x>",
                           ") |#ff0000"};
        QTest::newRow("empty text keeps its space")
            << "Bob"
            << "255"
            << "" << QStringList{"Bob|#000000[b]", "  >   |#000000", " |#ff0000"};
    }

    // Lines arrive as "MD" through the real dispatcher.
    void chatLineLayout()
    {
        QFETCH(QString, name);
        QFETCH(QString, colour);
        QFETCH(QString, text);
        QFETCH(QStringList, after);
        ChatWindow w;
        w.clock.set(QDateTime(kStart.date(), QTime(21, 34, 56)));
        w.dispatcher.receive(protocol::buildMessage(Code::ChatLine, {name, colour, text}));

        QTextDocument *doc = w.txtChat->document();
        QCOMPARE(doc->blockCount(), 2); // the box starts with an empty line
        QCOMPARE(doc->firstBlock().text(), QString());
        QStringList expected{chatTimeText(QTime(21, 34, 56)) + QStringLiteral("  |#000000")};
        expected += after;
        QCOMPARE(runsOf(doc->lastBlock()), expected);
        QVERIFY(w.opened.isEmpty());
    }

    void timeShowsHoursMinutesSecondsWithoutZone()
    {
        const QString time = chatTimeText(QTime(21, 34, 56));
        QVERIFY2(time.contains(QLatin1String("34")) && time.contains(QLatin1String("56")),
                 qPrintable(time));
        QVERIFY2(!time.contains(QLatin1String("UTC")) && time == time.trimmed(), qPrintable(time));
    }

    void statusLines()
    {
        ChatWindow w;
        w.chat.addStatusLine(QStringLiteral("Connected"));
        w.chat.addStatusLine(QStringLiteral("Diconnected"));
        QTextDocument *doc = w.txtChat->document();
        QCOMPARE(doc->blockCount(), 3);
        QCOMPARE(runsOf(doc->lastBlock()).mid(1),
                 (QStringList{"QUORVEL|#000000[b]", "  >   Diconnected |#000000"}));
        QVERIFY(doc->toPlainText().startsWith(u'\n'));
        QVERIFY(!doc->toPlainText().endsWith(u'\n'));
    }

    void wordRule_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("word");
        QTest::addColumn<bool>("opens");

        const QString line = QStringLiteral("\u2029"
                                            "12:00:00  Bob  >   go to www.a.com now ");
        const int www = int(line.indexOf(QLatin1String("www")));
        QTest::newRow("inside an address") << line << www + 4 << "www.a.com" << true;
        QTest::newRow("on the space before it") << line << www - 1 << "www.a.com" << true;
        QTest::newRow("on its last letter") << line << www + 8 << "www.a.com" << true;
        QTest::newRow("plain word") << line << www - 3 << "to" << false;
        QTest::newRow("sender name") << line << int(line.indexOf(u'B')) << "Bob" << false;
        QTest::newRow("markers are case-sensitive")
            << "x HTTP://A.COM y" << 4 << "HTTP://A.COM" << false;
        QTest::newRow("Www is no marker") << "x Www.a.com y" << 4 << "Www.a.com" << false;
        QTest::newRow("marker inside a word opens the whole word")
            << "x visitwww.a.com y" << 3 << "visitwww.a.com" << true;
        QTest::newRow("brackets belong to the word")
            << "x (http://a.com) y" << 5 << "(http://a.com)" << true;
        QTest::newRow("ftp") << "x ftp://f.org y" << 3 << "ftp://f.org" << true;
        QTest::newRow("https") << "x https://s.org y" << 3 << "https://s.org" << true;
        QTest::newRow("line breaks do not end a word") << QStringLiteral("x www.a.com\u2029"
                                                                         "12:00 y")
                                                       << 3
                                                       << QStringLiteral("www.a.com\u2029"
                                                                         "12:00")
                                                       << true;
        QTest::newRow("the next line's time is not the address")
            << QStringLiteral("x www.a.com \u2029"
                              "12:00:00  y")
            << 14
            << QStringLiteral("\u2029"
                              "12:00:00")
            << false;
        QTest::newRow("no space before: the first characters up to the start")
            << "www.a.com" << 2 << "www" << false;
        QTest::newRow("past the end: the text's first word")
            << "http://a.com b" << 14 << "http://a.com" << true;
    }

    void wordRule()
    {
        QFETCH(QString, text);
        QFETCH(int, start);
        QFETCH(QString, word);
        QFETCH(bool, opens);
        QCOMPARE(wordAtSelection(text, start), word);
        QCOMPARE(isOpenableWord(word), opens);
    }

    // The user puts the caret on a word far down a long chat.
    void opensAddressPastOffset40000()
    {
        ChatWindow w;
        while (rawText(*w.txtChat).size() < 40000)
            w.chat.addChatLine(QStringLiteral("Bob"), QStringLiteral("0"),
                               QStringLiteral("filler text of a long evening"));
        w.chat.addChatLine(QStringLiteral("Ann"), QStringLiteral("255"),
                           QStringLiteral("look at http://example.com/page now"));
        QVERIFY(w.opened.isEmpty());

        const int at = int(rawText(*w.txtChat).indexOf(QLatin1String("example")));
        QVERIFY(at > 40000);
        QTextCursor cursor(w.txtChat->document());
        cursor.setPosition(at);
        w.txtChat->setTextCursor(cursor);
        QCOMPARE(w.opened, QStringList{QStringLiteral("http://example.com/page")});

        cursor.setPosition(at - 10); // on "at"
        w.txtChat->setTextCursor(cursor);
        QCOMPARE(w.opened.size(), 1);
    }

    void clickAndArrowKeysOpen()
    {
        ChatWindow w;
        w.chat.addChatLine(QStringLiteral("Bob"), QStringLiteral("0"),
                           QStringLiteral("try www.example.org please"));
        w.window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));

        const int at = int(rawText(*w.txtChat).indexOf(QLatin1String("example")));
        QTextCursor cursor(w.txtChat->document());
        cursor.setPosition(at);
        const QPoint point = w.txtChat->cursorRect(cursor).center() + QPoint(2, 0);
        QTest::mouseClick(w.txtChat->viewport(), Qt::LeftButton, {}, point);
        QCOMPARE(w.opened, QStringList{QStringLiteral("www.example.org")});

        // Arrow keys move the caret within the word: each move looks again.
        w.txtChat->setFocus();
        QTest::keyClick(w.txtChat, Qt::Key_Right);
        QCOMPARE(w.opened.size(), 2);
        // Off the address onto "please": nothing more.
        const int please = int(rawText(*w.txtChat).indexOf(QLatin1String("please")));
        cursor.setPosition(please + 1);
        w.txtChat->setTextCursor(cursor);
        QCOMPARE(w.opened.size(), 2);
    }

    void draggingASelectionOpensOnce()
    {
        ChatWindow w;
        w.chat.addChatLine(QStringLiteral("Bob"), QStringLiteral("0"),
                           QStringLiteral("www.example.org and more"));
        const int at = int(rawText(*w.txtChat).indexOf(QLatin1String("www")));
        QTextCursor cursor(w.txtChat->document());
        cursor.setPosition(at);
        for (int end = at + 1; end < at + 20; ++end) {
            cursor.setPosition(end, QTextCursor::KeepAnchor);
            w.txtChat->setTextCursor(cursor);
        }
        QCOMPARE(w.opened, QStringList{QStringLiteral("www.example.org")});
    }

    void addingLinesOpensNothingAndShowsTheNewest()
    {
        ChatWindow w;
        w.txtChat->setFixedHeight(80);
        w.window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        for (int i = 0; i < 30; ++i)
            w.chat.addChatLine(QStringLiteral("www.name.com"), QStringLiteral("0"),
                               QStringLiteral("http://a.com www.b.com"));
        QVERIFY(w.opened.isEmpty());

        // The user scrolls up and selects text, then a line arrives.
        QScrollBar *bar = w.txtChat->verticalScrollBar();
        bar->setValue(0);
        QTextCursor cursor(w.txtChat->document());
        cursor.setPosition(5);
        cursor.setPosition(9, QTextCursor::KeepAnchor);
        w.txtChat->setTextCursor(cursor);
        const int openedBefore = int(w.opened.size());
        w.dispatcher.receive(
            protocol::buildMessage(Code::ChatLine, {"Bob", "0", "last www.c.com"}));
        QCOMPARE(w.opened.size(), openedBefore);
        QVERIFY(!w.txtChat->textCursor().hasSelection());
        QCOMPARE(w.txtChat->textCursor().position(), w.txtChat->document()->characterCount() - 1);
        QCOMPARE(bar->value(), bar->maximum());
    }

    void guard_data()
    {
        QTest::addColumn<QTime>("last");
        QTest::addColumn<QTime>("now");
        QTest::addColumn<bool>("passes");
        QTest::newRow("4 s") << QTime(12, 0, 0) << QTime(12, 0, 4) << true;
        QTest::newRow("3 s") << QTime(12, 0, 0) << QTime(12, 0, 3) << false;
        QTest::newRow("same second") << QTime(12, 0, 0) << QTime(12, 0, 0, 999) << false;
        QTest::newRow("3.2 s across 4 whole seconds")
            << QTime(12, 0, 0, 900) << QTime(12, 0, 4, 100) << true;
        QTest::newRow("3.8 s within 3 whole seconds")
            << QTime(12, 0, 0, 100) << QTime(12, 0, 3, 900) << false;
        QTest::newRow("clock went back") << QTime(12, 0, 30) << QTime(12, 0, 0) << false;
    }

    void guard()
    {
        QFETCH(QTime, last);
        QFETCH(QTime, now);
        QFETCH(bool, passes);
        SessionState session;
        ManualClock clock(QDateTime(kStart.date(), now));
        session.textSendTime = QDateTime(kStart.date(), last);
        SendRateGuard guard(session, clock);
        QCOMPARE(guard.tryPass(), passes);
        if (passes) {
            QCOMPARE(session.textSendTime, QDateTime(kStart.date(), now).addMSecs(-now.msec()));
            QVERIFY(!guard.tryPass()); // and it starts again from now
        } else {
            QCOMPARE(session.textSendTime, QDateTime(kStart.date(), last));
        }
    }

    void sendsThroughTheGuard()
    {
        ChatWindow w;
        LoopbackLobby lobby;
        QVERIFY(lobby.accept(w.connection));

        w.type(QStringLiteral("hello"));
        QTest::keyClick(w.txtChatSend, Qt::Key_Return);
        QCOMPARE(lobby.receivedThrough("MDhello\x0F"), QByteArray("MDhello\x0F"));
        QCOMPARE(w.txtChatSend->text(), QString());
        QCOMPARE(w.session.textSendTime, w.clock.now());

        w.clock.advanceSeconds(3);
        w.txtChatSend->setText(QStringLiteral("again"));
        QTest::keyClick(w.txtChatSend, Qt::Key_Enter);
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("again")); // kept for a later try

        w.clock.advanceSeconds(1);
        QTest::mouseClick(w.picture3, Qt::LeftButton);
        QCOMPARE(lobby.receivedThrough("MDagain\x0F"), QByteArray("MDagain\x0F"));
        QCOMPARE(w.window.keys, 0); // Enter never reached the window
    }

    void pagerSendBlocksChat()
    {
        ChatWindow w;
        LoopbackLobby lobby;
        QVERIFY(lobby.accept(w.connection));
        SendRateGuard pager(w.session, w.clock);
        QVERIFY(pager.tryPass());

        w.type(QStringLiteral("too soon"));
        w.chat.input().send();
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("too soon"));
        w.clock.advanceSeconds(4);
        w.chat.input().send();
        QCOMPARE(lobby.receivedThrough("MDtoo soon\x0F"), QByteArray("MDtoo soon\x0F"));
        QVERIFY(!pager.tryPass()); // and the chat send holds the pager back in turn
    }

    void trimming_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QByteArray>("sent"); // empty: nothing goes and the box keeps its text
        QTest::newRow("outer spaces go, inner stay")
            << "  two  words  " << QByteArray("MDtwo  words\x0F");
        QTest::newRow("spaces only") << "    " << QByteArray();
        QTest::newRow("empty") << "" << QByteArray();
        QTest::newRow("tabs are not spaces") << "\tx\t" << QByteArray("MD\tx\t\x0F");
    }

    void trimming()
    {
        QFETCH(QString, typed);
        QFETCH(QByteArray, sent);
        ChatWindow w;
        LoopbackLobby lobby;
        QVERIFY(lobby.accept(w.connection));
        w.type(typed);
        w.chat.input().send();
        w.connection.sendLobbyMessage(Code::KeepAlive); // marks the end of what was sent
        const QByteArray end = protocol::buildMessage(Code::KeepAlive);
        QCOMPARE(lobby.receivedThrough(end), sent + end);
        if (sent.isEmpty()) {
            QCOMPARE(w.txtChatSend->text(), typed);
            QCOMPARE(w.session.textSendTime, kStart);
        } else {
            QCOMPARE(w.txtChatSend->text(), QString());
        }
    }

    void sendWhileDisconnectedIsLost()
    {
        ChatWindow w;
        LoopbackLobby lobby;
        QVERIFY(lobby.accept(w.connection));
        w.connection.close();
        w.type(QStringLiteral("into the void"));
        QTest::keyClick(w.txtChatSend, Qt::Key_Return);
        QCOMPARE(w.txtChatSend->text(), QString());
        QCOMPARE(w.session.textSendTime, w.clock.now());
        QTest::qWait(50);
        QCOMPARE(lobby.received(), QByteArray());
    }

    void hintGoesOnFirstFocusOnly()
    {
        ChatWindow w;
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("Type message here and press ENTER"));
        QCOMPARE(w.txtChatSend->toolTip(), QStringLiteral("Enter message and press ENTER"));
        QVERIFY(!w.picture3->isEnabled());

        w.window.show();
        QVERIFY(QTest::qWaitForWindowActive(&w.window));
        w.txtChatSend->setFocus();
        QTRY_VERIFY(w.txtChatSend->hasFocus());
        QCOMPARE(w.txtChatSend->text(), QString());
        QVERIFY(w.picture3->isEnabled());

        QTest::keyClicks(w.txtChatSend, QStringLiteral("typed"));
        w.txtChat->setFocus();
        QTRY_VERIFY(!w.txtChatSend->hasFocus());
        w.txtChatSend->setFocus();
        QTRY_VERIFY(w.txtChatSend->hasFocus());
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("typed"));
    }
};

QTEST_MAIN(TestLobbyChat)
#include "tst_lobbychat.moc"
