#include "client/app/form1.h"
#include "client/app/sessionlooks.h"
#include "client/app/splitterbar.h"
#include "client/session/sessionstate.h"
#include "client/ui/picturebutton.h"
#include "support/clientfakes.h"

#include <QLineEdit>
#include <QTest>
#include <QTextBrowser>
#include <QTreeView>

using namespace client;

class TestForm1 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksFollowTheLoggedInFlag()
    {
        Form1 form;
        FakeTray tray;
        SessionState session;
        SessionLooks looks(form, tray, session);
        form.show();
        form.picViewStats->setVisible(true);

        QCOMPARE(SessionLooks::trayTip(false), QStringLiteral("QUORVEL - Logged out"));
        session.ownName = QStringLiteral("Ann");
        session.setOnline(true);
        QCOMPARE(form.picLogIn->tag(), QStringLiteral("ONLINE"));
        QVERIFY(form.picCreateRoom->isVisible() && form.picResetStats->isVisible());
        QCOMPARE(tray.tip, QStringLiteral("QUORVEL - Ann - Logged In"));

        session.setOnline(false);
        QCOMPARE(form.picLogIn->tag(), QStringLiteral("OFFLINE"));
        QVERIFY(!form.picCreateRoom->isVisible() && !form.picResetStats->isVisible());
        QVERIFY(form.picViewStats->isVisible()); // keeps its state
        QCOMPARE(tray.tip, QStringLiteral("QUORVEL - Ann - Logged out"));
    }

    // The bar follows a drag within its stops, the lists with it; a double-click steps it
    // through its three places by its tag, and an unknown tag leaves it where it is. At either
    // end the room list still shows a row under its header and the chat two lines.
    void splitter()
    {
        Form1 form;
        form.show();
        SplitterBar *bar = form.Picture1;
        const int top = bar->topStop(), bottom = bar->bottomStop();
        QVERIFY(top < 289 && 289 < bottom);
        const auto bothShow = [&] {
            const int row = form.ListView1->fontMetrics().height();
            return form.ListView1->viewport()->height() >= row &&
                   form.txtChat->viewport()->height() >= 2 * form.txtChat->fontMetrics().height();
        };
        // The mouse's place inside the bar, relative to its top, and where the top ends up.
        for (const auto &[mouseY, to] :
             QList<std::pair<int, int>>{{20, 309}, {-400, top}, {500, bottom}}) {
            QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(10, 2));
            QMouseEvent move(QEvent::MouseMove, QPointF(10, mouseY),
                             bar->mapToGlobal(QPointF(10, mouseY)), Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QCoreApplication::sendEvent(bar, &move);
            QTest::mouseRelease(bar, Qt::LeftButton, {}, QPoint(10, 2));
            QCOMPARE(bar->y(), to);
            QCOMPARE(form.ListView1->y() + form.ListView1->height(), to);
            QCOMPARE(form.txtChat->y(), to + bar->height());
            QCOMPARE(form.txtChat->height(), form.txtChatSend->y() - to - 10);
            QVERIFY(bothShow());
        }
        for (const auto &[to, tag] :
             QList<std::pair<int, QString>>{{289, "3"}, {bottom, "1"}, {top, "2"}}) {
            QTest::mouseDClick(bar, Qt::LeftButton, {}, QPoint(5, 2));
            QCOMPARE(bar->y(), to);
            QCOMPARE(bar->tag(), tag);
            QCOMPARE(form.ListView1->height(), to - form.ListView1->y());
        }
        bar->setTag(QStringLiteral("x"));
        QTest::mouseDClick(bar, Qt::LeftButton, {}, QPoint(5, 2));
        QCOMPARE(bar->y(), top);
        QCOMPARE(bar->tag(), QStringLiteral("x"));
    }

    // Sizes as "WxH", applied in turn. At the normal size the controls stand where they always
    // did; at any size the lists and the chat reach the window's edges, and the splitter keeps
    // its share of the height.
    void resizes_data()
    {
        QTest::addColumn<QStringList>("sizes");
        QTest::newRow("normal") << QStringList{"800x600"};
        QTest::newRow("larger") << QStringList{"1200x900"};
        QTest::newRow("below the smallest: the smallest") << QStringList{"300x200"};
        QTest::newRow("larger and back") << QStringList{"1200x900", "700x500", "800x600"};
    }
    void resizes()
    {
        QFETCH(QStringList, sizes);
        Form1 form;
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        const double share = double(form.Picture1->y() - form.Picture1->topStop()) /
                             (form.Picture1->bottomStop() - form.Picture1->topStop());
        for (const QString &size : sizes) {
            form.resize(size.section('x', 0, 0).toInt(), size.section('x', 1).toInt());
            QCoreApplication::processEvents();
        }
        const QRect window = form.rect();
        const QSize asked(sizes.last().section('x', 0, 0).toInt(),
                          sizes.last().section('x', 1).toInt());
        QCOMPARE(window.size(), asked.expandedTo(Form1::kMinimumSize));
        const auto right = [](QWidget *w) { return w->geometry().right(); };
        const auto bottom = [](QWidget *w) { return w->geometry().bottom(); };
        QCOMPARE(right(form.ListView2), window.right() - 10);
        QCOMPARE(bottom(form.ListView2), window.bottom() - 10);
        QCOMPARE(right(form.txtFindPlayer), right(form.ListView2));
        QCOMPARE(right(form.Picture3), right(form.ListView1));
        QCOMPARE(right(form.txtChat), right(form.ListView1));
        QCOMPARE(bottom(form.txtChatSend), window.bottom() - 12);
        QCOMPARE(right(form.Picture2), window.right() - 8);
        QVERIFY(right(form.ListView1) < form.ListView2->x());
        const int span = form.Picture1->bottomStop() - form.Picture1->topStop();
        QVERIFY(qAbs(form.Picture1->y() - form.Picture1->topStop() - share * span) <= 1);
        if (window.size() == Form1::kSize) {
            QCOMPARE(form.ListView1->geometry(), QRect(10, 76, 560, 213));
            QCOMPARE(form.Picture1->y(), 289);
            QCOMPARE(form.txtChat->geometry(), QRect(10, 295, 560, 261));
            QCOMPARE(form.txtChatSend->geometry(), QRect(10, 560, 524, 28));
            QCOMPARE(form.ListView2->geometry(), QRect(580, 104, 210, 486));
        }
    }
};

QTEST_MAIN(TestForm1)
#include "tst_form1.moc"
