// What the dispatcher adds to the frame buffer: handlers per code, short messages dropped and
// reported, codes without a handler skipped whole, "OV" halting, and re-entrant arrivals.
// Cutting frames is the frame buffer's, and random input the fuzz target's, to test.
#include "client/lobby/lobbydispatcher.h"

#include "protocol/message.h"

#include <QTest>

using namespace client;

using protocol::Code;

class TestDispatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dispatchesArrivals_data()
    {
        QTest::addColumn<QList<QByteArray>>("arrivals");
        QTest::addColumn<QStringList>("handled"); // "CODE|field|..."; "short CODE" when dropped
        QTest::addColumn<QByteArray>("left");
        const auto row = [](const char *tag, QList<QByteArray> arrivals, QStringList handled,
                            QByteArray left = {}) {
            QTest::newRow(tag) << arrivals << handled << left;
        };
        row("split over arrivals, handled once, the rest waits",
            {"SL\x0FMDann\x0Ez", "z\x0Ehi", "\x0FMD"}, {"SL|", "MD|ann|zz|hi"}, "MD");
        row("short message dropped through its terminator", {"MDonly-one-field\x0FSL\x0F"},
            {"short MD", "SL|"});
        // "AR" has no handler here: eaten byte by byte, its fields would be read as codes.
        row("code without handler consumed whole", {"ARSL\x0Eq\x0Eq\x0Eq\x0Eq\x0Eq\x0FSL\x0F"},
            {"SL|"});
        row("OV stops dispatch", {"OV\x0FSL\x0F", "SL\x0F"}, {"OV|"}, "SL\x0FSL\x0F");
    }
    void dispatchesArrivals()
    {
        QFETCH(QList<QByteArray>, arrivals);
        QFETCH(QStringList, handled);
        QFETCH(QByteArray, left);
        LobbyDispatcher dispatcher;
        QStringList seen;
        for (Code code : protocol::clientIncomingOrder()) {
            if (code == Code::AddRoom)
                continue;
            dispatcher.setHandler(code, [&](const protocol::Message &m) {
                seen << QString::fromLatin1(protocol::wireCode(m.code).toByteArray()) + u'|' +
                            m.fields.join(u'|');
            });
        }
        connect(&dispatcher, &LobbyDispatcher::shortMessageDropped, this, [&](Code code) {
            seen << "short " + QString::fromLatin1(protocol::wireCode(code).toByteArray());
        });
        for (const QByteArray &arrival : arrivals)
            dispatcher.receive(arrival);
        QCOMPARE(seen, handled);
        QCOMPARE(dispatcher.pending(), left);
        QCOMPARE(dispatcher.isHalted(), handled.contains("OV|"));
    }

    void handlerThatReceivesMoreKeepsOrder()
    {
        // A handler may let pending events run, and with them the next arrival.
        LobbyDispatcher dispatcher;
        QStringList seen;
        dispatcher.setHandler(Code::SendLogin, [&](const protocol::Message &) {
            seen << "SL";
            if (seen.size() == 1)
                dispatcher.receive("RNlate\x0F");
        });
        dispatcher.setHandler(Code::RemovePlayer,
                              [&](const protocol::Message &m) { seen << m.field(0); });
        dispatcher.receive("SL\x0FRNfirst\x0F");
        QCOMPARE(seen, (QStringList{"SL", "first", "late"}));
    }
};

QTEST_GUILESS_MAIN(TestDispatcher)
#include "tst_dispatcher.moc"
