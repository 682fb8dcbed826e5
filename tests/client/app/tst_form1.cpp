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

    // The bar follows a drag within its limits, the lists with it; a double-click steps it
    // through its three places by its tag, and an unknown tag leaves it where it is.
    void splitter()
    {
        Form1 form;
        form.show();
        SplitterBar *bar = form.Picture1;
        // The mouse's place inside the bar, relative to its top, and where the top ends up.
        for (const auto &[mouseY, top] :
             QList<std::pair<int, int>>{{20, 309}, {-400, 80}, {500, 548}}) {
            QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(10, 2));
            QMouseEvent move(QEvent::MouseMove, QPointF(10, mouseY),
                             bar->mapToGlobal(QPointF(10, mouseY)), Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QCoreApplication::sendEvent(bar, &move);
            QTest::mouseRelease(bar, Qt::LeftButton, {}, QPoint(10, 2));
            QCOMPARE(bar->y(), top);
            QCOMPARE(form.ListView1->y() + form.ListView1->height(), top);
            QCOMPARE(form.txtChat->y(), top + bar->height());
            QCOMPARE(form.txtChat->height(), form.txtChatSend->y() - top - 10);
        }
        for (const auto &[top, tag] :
             QList<std::pair<int, QString>>{{289, "3"}, {548, "1"}, {80, "2"}}) {
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
