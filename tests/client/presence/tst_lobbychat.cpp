#include "client/lobby/ignorelist.h"
#include "client/lobby/lobbyconnection.h"
#include "client/lobby/lobbydispatcher.h"
#include "client/presence/chatarchive.h"
#include "client/presence/chatinput.h"
#include "client/presence/chatlog.h"
#include "client/presence/chatwords.h"
#include "client/presence/lobbychat.h"
#include "client/presence/sendrateguard.h"
#include "client/session/sessionstate.h"
#include "protocol/chat.h"
#include "protocol/message.h"
#include "support/clientfakes.h"
#include "support/scriptedserver.h"
#include "support/wait.h"

#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

using namespace client;

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
        const QTextCharFormat format = it.fragment().charFormat();
        QString style = format.foreground().color().name();
        if (format.fontWeight() == QFont::Bold)
            style += QStringLiteral("[b]");
        if (format.isAnchor())
            style = QStringLiteral("<link ") + format.anchorHref() + u'>';
        if (!runs.isEmpty() && style == lastStyle)
            runs.last().insert(runs.last().lastIndexOf(u'|'), it.fragment().text());
        else
            runs << it.fragment().text() + u'|' + style;
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
          chat(txtChat, txtChatSend, picture3, connection, session, clock, ignored, nullptr,
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
    // The user focuses the input and types `text`.
    void type(const QString &text)
    {
        QFocusEvent focus(QEvent::FocusIn);
        QCoreApplication::sendEvent(txtChatSend, &focus);
        txtChatSend->insert(text);
    }
    // Lets the box draw what was appended, until its last line holds `text`.
    bool drawn(const QString &text)
    {
        return waitUntil([&] { return txtChat->document()->lastBlock().text().contains(text); });
    }
    // Puts the caret at the `nth` place where `text` occurs plus `offset`.
    void caretAt(const QString &text, int offset = 0, QTextCursor::MoveMode mode = {})
    {
        QTextCursor cursor = txtChat->textCursor();
        cursor.setPosition(int(txtChat->document()->toRawText().indexOf(text)) + offset, mode);
        txtChat->setTextCursor(cursor);
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
    IgnoreList ignored{QString()};
    LobbyChat chat;
};

} // namespace

class TestLobbyChat : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Lines arrive as "MD" through the real dispatcher; the box starts with an empty line.
    void chatLineLayout_data()
    {
        QTest::addColumn<QStringList>("fields"); // name, colour, text
        QTest::addColumn<QStringList>("after");  // the runs after the time and its two spaces

        QTest::newRow("BGR order") << QStringList{"Al", "16711680", "x"}
                                   << QStringList{"Al|#000000[b]", "  >   |#000000", "x |#0000ff"};
        QTest::newRow("not a number is black")
            << QStringList{"Al", "red", "x"} << QStringList{"Al|#000000[b]", "  >   x |#000000"};
        QTest::newRow("markup is text")
            << QStringList{"<b>A</b>", "0", "<i>x</i> &amp;"}
            << QStringList{"<b>A</b>|#000000[b]", "  >   <i>x</i> &amp; |#000000"};
        QTest::newRow("addresses become links")
            << QStringList{"Bob", "255", "see www.example.com, or (https://a.org/x)"}
            << QStringList{"Bob|#000000[b]", "  >   |#000000",
                           "see |#ff0000",   "www.example.com|<link www.example.com>",
                           ", or (|#ff0000", "https://a.org/x|<link https://a.org/x>",
                           ") |#ff0000"};
    }
    void chatLineLayout()
    {
        QFETCH(QStringList, fields);
        QFETCH(QStringList, after);
        ChatWindow w;
        w.clock.set(QDateTime(kStart.date(), QTime(21, 34, 56)));
        w.dispatcher.receive(protocol::buildMessage(Code::ChatLine, fields));
        QVERIFY(w.drawn(fields[0]));

        QTextDocument *doc = w.txtChat->document();
        QCOMPARE(doc->toPlainText().count(u'\n'), 1);
        QCOMPARE(runsOf(doc->lastBlock()),
                 QStringList{chatTimeText(QTime(21, 34, 56)) + "  |#000000"} + after);

        w.chat.addStatusLine(QStringLiteral("Diconnected"));
        QVERIFY(w.drawn("Diconnected"));
        QCOMPARE(runsOf(doc->lastBlock()).mid(1),
                 (QStringList{"QUORVEL|#000000[b]", "  >   Diconnected |#000000"}));
    }

    void wordRule_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("start");
        QTest::addColumn<QString>("word");
        QTest::addColumn<QString>("opens"); // the address as drawn; empty: nothing opens

        const auto row = [](const char *name, const QString &text, int start, const QString &word,
                            const QString &opens) {
            QTest::newRow(name) << text << start << word << opens;
        };
        const QString line = "\u2029" + QStringLiteral("12:00:00  Bob  >   go to www.a.com now ");
        const int www = int(line.indexOf(QLatin1String("www")));
        row("inside an address", line, www + 4, "www.a.com", "www.a.com");
        row("on the space before it", line, www - 1, "www.a.com", "www.a.com");
        row("markers are case-sensitive", "x HTTP://A.COM y", 4, "HTTP://A.COM", "");
        row("marker inside a word opens the whole word", "x visitwww.a.com y", 3, "visitwww.a.com",
            "visitwww.a.com");
        row("brackets belong to the word, not to the address", "x (www.test.org) y", 5,
            "(www.test.org)", "www.test.org");
        row("a sentence's comma neither", "x https://a.org/x, y", 5, "https://a.org/x,",
            "https://a.org/x");
        row("line breaks do not end a word", "x www.a.com\u2029" + QStringLiteral("12:00 y"), 3,
            "www.a.com\u2029" + QStringLiteral("12:00"), "www.a.com");
        row("no space before: the first characters up to the start", "www.a.com", 2, "www", "");
        row("past the end: the text's first word", "http://a.com b", 14, "http://a.com",
            "http://a.com");
    }
    void wordRule()
    {
        QFETCH(QString, text);
        QFETCH(int, start);
        QFETCH(QString, word);
        QFETCH(QString, opens);
        QCOMPARE(wordAtSelection(text, start), word);
        QCOMPARE(isOpenableWord(word) ? addressInWord(word) : QString(), opens);
    }

    // Characters that code page 1252 cannot carry are marked while typed, each named once.
    void uncarriedCharactersMarked_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("named"); // empty: not marked
        QTest::newRow("1252 letters and signs") << "G\u00f6ran \u20ac \u00e6 ?" << QString();
        QTest::newRow("Han, twice") << "a\u6f22b\u6f22" << QString("\u6f22");
        QTest::newRow("beyond the first plane")
            << "ok \U0001F600 \u0416" << QString("\U0001F600\u0416");
    }
    void uncarriedCharactersMarked()
    {
        QFETCH(QString, text);
        QFETCH(QString, named);
        ChatWindow w;
        w.type(text);
        QCOMPARE(w.txtChatSend->toolTip(),
                 named.isEmpty() ? ChatInput::toolTipText() : ChatInput::uncarriedToolTip(named));
        QCOMPARE(w.txtChatSend->styleSheet().isEmpty(), named.isEmpty());
    }

    // A long evening: adding lines opens nothing, drops the user's selection and shows the
    // newest line; an address far down (offsets past 32767) opens once when the user drags
    // over it, a plain word next to it opens nothing.
    void longChat()
    {
        ChatWindow w;
        w.txtChat->setFixedHeight(80);
        w.window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w.window));
        for (int i = 0; i < 950; ++i)
            w.chat.addChatLine("www.name.com", 0, "http://a.com www.b.com " + QString::number(i));
        QVERIFY(w.drawn("www.b.com 949"));
        QVERIFY(w.txtChat->document()->characterCount() > 40000);
        QVERIFY(w.opened.isEmpty());

        QScrollBar *bar = w.txtChat->verticalScrollBar();
        bar->setValue(0);
        w.caretAt("name", 0);
        w.caretAt("name", 4, QTextCursor::KeepAnchor);
        const qsizetype before = w.opened.size();
        w.dispatcher.receive(
            protocol::ChatLineToClient{"Ann", 255, "look at http://example.com/page now"}.encode());
        QVERIFY(w.drawn("example.com"));
        QCOMPARE(w.opened.size(), before);
        QVERIFY(!w.txtChat->textCursor().hasSelection());
        QCOMPARE(w.txtChat->textCursor().position(), w.txtChat->document()->characterCount() - 1);
        QCOMPARE(bar->value(), bar->maximum());

        w.caretAt("example");
        QVERIFY(w.txtChat->textCursor().position() > 40000);
        for (int end = 1; end < 20; ++end)
            w.caretAt("example", end, QTextCursor::KeepAnchor);
        w.caretAt("at http");
        QCOMPARE(w.opened.mid(before), QStringList{"http://example.com/page"});
    }

    // Thousands of lines in one arrival: the arrival only queues them, and the box then keeps
    // the newest lines only, in order, after its empty first line.
    void burstKeepsTheNewestLines()
    {
        ChatWindow w;
        QByteArray burst;
        for (int i = 0; i < 3000; ++i)
            burst += protocol::ChatLineToClient{"Al", 0, QString("line %1 .").arg(i)}.encode();
        w.dispatcher.receive(burst);
        QCOMPARE(w.txtChat->document()->blockCount(), 1);
        QVERIFY(w.drawn("line 2999 ."));

        QTextDocument *doc = w.txtChat->document();
        QCOMPARE(doc->blockCount(), ChatBox::kMaxLines + 1);
        QCOMPARE(doc->firstBlock().text(), QString());
        QVERIFY(doc->findBlockByNumber(1).text().endsWith(
            QString("line %1 . ").arg(3000 - ChatBox::kMaxLines)));
        QCOMPARE(w.chat.log().lines().size(), ChatLog::kMaxLines);
        QCOMPARE(w.chat.log().lines().first().text,
                 QString("line %1 .").arg(3000 - ChatLog::kMaxLines));
    }

    // The chat kept on disk comes back after a restart: the newest lines, oldest first, with
    // their times, colours and whatever their text holds, across days; a day's file stops
    // growing at its cap and the oldest days go past the folder's.
    void archiveKeepsTheNewestLines()
    {
        QTemporaryDir home;
        const QString folder = home.filePath("chat");
        const ChatArchive::Limits limits{
            .maxDayBytes = 400, .maxTotalBytes = 600, .restoredLines = 6};
        const QStringList odd{"tab\there", "two\nlines\r", "back\\slash \\t", "\u6f22 \U0001F600"};
        ChatWindow w;
        ChatArchive archive(folder, w.clock, limits);
        archive.attach(w.chat.log());
        w.clock.set(QDateTime(QDate(2026, 3, 1), QTime(23, 59, 58)));
        for (int i = 0; i < 20; ++i) // past the day's cap
            w.chat.addChatLine("Bo", 0, QString("filler %1").arg(i));
        QTRY_VERIFY(QFileInfo(folder + "/2026-03-01.txt").size() > 300);
        QVERIFY(QFileInfo(folder + "/2026-03-01.txt").size() <= 400);
        QCOMPARE(QFileInfo(folder + "/2026-03-01.txt").permissions() & 0x0077, 0);
        w.clock.set(QDateTime(QDate(2026, 3, 2), QTime(0, 0, 1)));
        for (const QString &text : odd)
            w.chat.addChatLine("Al\tx", 255, text);
        QTRY_VERIFY(QFileInfo(folder + "/2026-03-02.txt").size() > 0);

        ChatWindow next;
        ChatArchive(folder, next.clock, limits).attach(next.chat.log());
        const QList<ChatLine> &lines = next.chat.log().lines();
        QCOMPARE(lines.size(), 6);
        QVERIFY(lines[0].text.startsWith("filler") && lines[1].text.startsWith("filler"));
        QStringList texts;
        for (const ChatLine &line : lines.mid(2))
            texts << line.text;
        QCOMPARE(texts, odd);
        QCOMPARE(lines.last().name, QString("Al\tx"));
        QCOMPARE(lines.last().colour, QColor(Qt::red));
        QCOMPARE(lines.last().time, QTime(0, 0, 1));
        QVERIFY(next.drawn("\U0001F600"));

        // The first line of a new day drops the oldest day past the folder's cap.
        w.clock.set(QDateTime(QDate(2026, 3, 3), QTime(9, 0)));
        w.chat.addChatLine("Di", 0, QString(300, u'x'));
        QTRY_VERIFY(QFile::exists(folder + "/2026-03-03.txt"));
        QVERIFY(!QFile::exists(folder + "/2026-03-01.txt"));
        QVERIFY(QFile::exists(folder + "/2026-03-02.txt"));
    }

    // Whole seconds count: the send passes when more than three have gone by.
    void guard_data()
    {
        QTest::addColumn<QTime>("last");
        QTest::addColumn<QTime>("now");
        QTest::addColumn<bool>("passes");
        QTest::newRow("3 s") << QTime(12, 0, 0) << QTime(12, 0, 3) << false;
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
        QCOMPARE(session.textSendTime, passes ? QDateTime(kStart.date(), now).addMSecs(-now.msec())
                                              : QDateTime(kStart.date(), last));
    }

    // The pager and the chat share one guard; Enter, Return and the send button all send,
    // and Enter never reaches the window.
    void sendsThroughTheSharedGuard()
    {
        ChatWindow w;
        ScriptedServer server;
        w.connection.connectToLobby(QStringLiteral("127.0.0.1"), server.port());
        QVERIFY(QTest::qWaitFor([&] { return w.connection.isConnected(); }));
        SendRateGuard pager(w.session, w.clock);
        QVERIFY(pager.tryPass());
        QCOMPARE(w.txtChatSend->text(), ChatInput::hintText());
        QVERIFY(!w.picture3->isEnabled());

        w.type(QStringLiteral("hello")); // the first focus takes the hint away, later ones not
        QTest::keyClick(w.txtChatSend, Qt::Key_Return); // too soon: kept, the wait shown
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("hello"));
        QCOMPARE(w.picture3->text(), QStringLiteral("4"));
        QVERIFY(!w.picture3->isEnabled());
        w.clock.advanceSeconds(2);
        QTRY_COMPARE(w.picture3->text(), QStringLiteral("2"));
        w.clock.advanceSeconds(2);
        QTRY_VERIFY(w.picture3->isEnabled());
        QCOMPARE(w.picture3->text(), QString());
        w.clock.advanceSeconds(-4);
        w.type(QStringLiteral(" there"));
        w.clock.advanceSeconds(4);
        QTest::keyClick(w.txtChatSend, Qt::Key_Enter);
        QVERIFY(server.expect("MDhello there\x0F"));
        QCOMPARE(w.txtChatSend->text(), QString());
        QCOMPARE(w.session.textSendTime, w.clock.now());
        QVERIFY(!pager.tryPass());

        w.clock.advanceSeconds(4);
        w.txtChatSend->setText(QStringLiteral("  two  words  ")); // outer spaces go
        QTest::mouseClick(w.picture3, Qt::LeftButton);
        QVERIFY(server.expect("MDtwo  words\x0F"));
        QCOMPARE(w.window.keys, 0);

        // A blank line stays in the box and nothing goes; tabs are not spaces.
        const QDateTime lastSent = w.clock.now();
        w.clock.advanceSeconds(4);
        w.txtChatSend->setText(QStringLiteral("    "));
        QTest::keyClick(w.txtChatSend, Qt::Key_Return);
        QCOMPARE(w.txtChatSend->text(), QStringLiteral("    "));
        QCOMPARE(w.session.textSendTime, lastSent);
        w.txtChatSend->setText(QStringLiteral("\tx\t"));
        QTest::keyClick(w.txtChatSend, Qt::Key_Return);
        QVERIFY(server.expect("MD\tx\t\x0F"));

        // While disconnected the line is lost as if it went.
        w.connection.close();
        w.clock.advanceSeconds(4);
        w.txtChatSend->setText(QStringLiteral("into the void"));
        QTest::keyClick(w.txtChatSend, Qt::Key_Return);
        QCOMPARE(w.txtChatSend->text(), QString());
        QCOMPARE(w.session.textSendTime, w.clock.now());
    }
};

QTEST_MAIN(TestLobbyChat)
#include "tst_lobbychat.moc"
