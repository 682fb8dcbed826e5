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

        session.setOnline(true);
        QCOMPARE(form.picLogIn->tag(), QStringLiteral("ONLINE"));
        QVERIFY(form.picCreateRoom->isVisible() && form.picResetStats->isVisible());
        QCOMPARE(tray.tip, QStringLiteral("Logged In"));

        session.setOnline(false);
        QCOMPARE(form.picLogIn->tag(), QStringLiteral("OFFLINE"));
        QVERIFY(!form.picCreateRoom->isVisible() && !form.picResetStats->isVisible());
        QVERIFY(form.picViewStats->isVisible()); // keeps its state
        QCOMPARE(tray.tip, QStringLiteral("Logged out"));
    }

    void splitterDragIsClamped_data()
    {
        QTest::addColumn<int>("mouseY"); // inside the bar, relative to its top
        QTest::addColumn<int>("top");
        QTest::newRow("down a little") << 20 << 309;
        QTest::newRow("above the limit") << -400 << 80;
        QTest::newRow("below the limit") << 500 << 548;
    }
    void splitterDragIsClamped()
    {
        QFETCH(int, mouseY);
        QFETCH(int, top);
        Form1 form;
        form.show();
        SplitterBar *bar = form.Picture1;
        QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(10, 2));
        QMouseEvent move(QEvent::MouseMove, QPointF(10, mouseY),
                         bar->mapToGlobal(QPointF(10, mouseY)), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(bar, &move);
        QTest::mouseRelease(bar, Qt::LeftButton, {}, QPoint(10, 2));
        QCOMPARE(bar->y(), top);
        // The lists follow the bar.
        QCOMPARE(form.ListView1->y() + form.ListView1->height(), top);
        QCOMPARE(form.txtChat->y(), top + bar->height());
        QCOMPARE(form.txtChat->height(), form.txtChatSend->y() - top - 10);
    }

    void splitterDoubleClickCycles()
    {
        Form1 form;
        form.show();
        SplitterBar *bar = form.Picture1;
        const QList<std::pair<int, QString>> steps = {{289, "3"}, {548, "1"}, {80, "2"}};
        for (const auto &[top, tag] : steps) {
            QTest::mouseDClick(bar, Qt::LeftButton, {}, QPoint(5, 2));
            QCOMPARE(bar->y(), top);
            QCOMPARE(bar->tag(), tag);
            QCOMPARE(form.ListView1->height(), top - form.ListView1->y());
        }
        bar->setTag(QStringLiteral("x"));
        QTest::mouseDClick(bar, Qt::LeftButton, {}, QPoint(5, 2));
        QCOMPARE(bar->y(), 80);
        QCOMPARE(bar->tag(), QStringLiteral("x"));
    }
};

QTEST_MAIN(TestForm1)
#include "tst_form1.moc"
