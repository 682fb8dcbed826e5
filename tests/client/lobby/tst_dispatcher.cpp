#include "client/lobby/lobbydispatcher.h"

#include "protocol/message.h"

#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using namespace client;

using protocol::Code;

namespace {

// Records every handled message as "CODE|field|field...", one handler per incoming code.
struct Recorder
{
    QStringList seen;

    void attach(LobbyDispatcher &dispatcher)
    {
        for (Code code : protocol::clientIncomingOrder()) {
            dispatcher.setHandler(code, [this](const protocol::Message &m) {
                const QString code = QString::fromLatin1(protocol::wireCode(m.code).toByteArray());
                seen << code + QLatin1Char('|') + m.fields.join(QLatin1Char('|'));
            });
        }
    }
};

QByteArray bytes(const char *text)
{
    return QByteArray(text);
}

} // namespace

class TestDispatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dispatchesArrivals_data()
    {
        QTest::addColumn<QList<QByteArray>>("arrivals");
        QTest::addColumn<QStringList>("handled");
        QTest::addColumn<QByteArray>("left");

        QTest::newRow("two messages in one arrival")
            << QList<QByteArray>{bytes("SL\x0F"
                                       "MDann\x0E"
                                       "255\x0E"
                                       "hi\x0F")}
            << QStringList{"SL|", "MD|ann|255|hi"} << QByteArray();
        QTest::newRow("split over arrivals, handled once")
            << QList<QByteArray>{bytes("MDann\x0E"
                                       "2"),
                                 bytes("55\x0Ehi"), bytes("\x0F")}
            << QStringList{"MD|ann|255|hi"} << QByteArray();
        QTest::newRow("unknown code alone is dropped, no handler")
            << QList<QByteArray>{bytes("XY\x0F")} << QStringList{} << QByteArray();
        QTest::newRow("stray byte before a code")
            << QList<QByteArray>{bytes("xSL\x0F")} << QStringList{"SL|"} << QByteArray();
        QTest::newRow("field-less message keeps the next one whole")
            << QList<QByteArray>{bytes("SL\x0FMDa\x0E"
                                       "0\x0E"
                                       "b\x0F"
                                       "MD")}
            << QStringList{"SL|", "MD|a|0|b"} << QByteArray("MD");
        QTest::newRow("0xD6 codes")
            << QList<QByteArray>{bytes("\xD6Mhej\x0F\xD6"
                                       "Cann\x0E"
                                       "3\x0F")}
            << QStringList{QString::fromLatin1("\xD6M|hej"), QString::fromLatin1("\xD6"
                                                                                 "C|ann|3")}
            << QByteArray();
        QTest::newRow("short message, then a good one")
            << QList<QByteArray>{bytes("MDonly-one-field\x0FSL\x0F")} << QStringList{"SL|"}
            << QByteArray();
        QTest::newRow("short message split, then a good one")
            << QList<QByteArray>{bytes("ANbob"), bytes("\x0FRNbob\x0F")} << QStringList{"RN|bob"}
            << QByteArray();
        QTest::newRow("empty fields are fields")
            << QList<QByteArray>{bytes("PS3\x0E\x0E\x0F")} << QStringList{"PS|3||"} << QByteArray();
        QTest::newRow("a client-bound code only")
            << QList<QByteArray>{bytes("LGann\x0Epw\x0FSL\x0F")} << QStringList{"SL|"}
            << QByteArray();
    }
    void dispatchesArrivals()
    {
        QFETCH(QList<QByteArray>, arrivals);
        QFETCH(QStringList, handled);
        QFETCH(QByteArray, left);

        LobbyDispatcher dispatcher;
        Recorder recorder;
        recorder.attach(dispatcher);
        for (const QByteArray &arrival : arrivals)
            dispatcher.receive(arrival);
        QCOMPARE(recorder.seen, handled);
        QCOMPARE(dispatcher.pending(), left);
    }

    void shortMessageIsReported()
    {
        LobbyDispatcher dispatcher;
        bool called = false;
        dispatcher.setHandler(Code::LoginAccepted,
                              [&](const protocol::Message &) { called = true; });
        QSignalSpy spy(&dispatcher, &LobbyDispatcher::shortMessageDropped);
        dispatcher.receive("LTonly\x0F");
        QVERIFY(!called);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).value<Code>(), Code::LoginAccepted);
    }

    void codeWithoutHandlerIsConsumedWhole()
    {
        LobbyDispatcher dispatcher;
        QStringList seen;
        dispatcher.setHandler(Code::SendLogin, [&](const protocol::Message &) { seen << "SL"; });
        // "AR" has no handler here: it must not be eaten byte by byte (its fields could
        // then be read as codes).
        dispatcher.receive("ARSL\x0E"
                           "a\x0E"
                           "b\x0E"
                           "c\x0E"
                           "d\x0E"
                           "e\x0E"
                           "f\x0FSL\x0F");
        QCOMPARE(seen, QStringList{"SL"});
        QCOMPARE(dispatcher.pendingBytes(), 0);
    }

    void oldVersionStopsDispatch()
    {
        LobbyDispatcher dispatcher;
        Recorder recorder;
        recorder.attach(dispatcher);
        dispatcher.receive("OV\x0FSL\x0F");
        QCOMPARE(recorder.seen, QStringList{"OV|"});
        QVERIFY(dispatcher.isHalted());
        dispatcher.receive("SL\x0F");
        QCOMPARE(recorder.seen, QStringList{"OV|"});
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

    void randomBytesNeverBreakIt()
    {
        // Random streams built from code bytes, separators and terminators: nothing crashes,
        // every handler gets exactly its field count, and the buffer never keeps a complete
        // message undispatched.
        LobbyDispatcher dispatcher;
        qint64 handled = 0;
        bool countsRight = true;
        for (Code code : protocol::clientIncomingOrder()) {
            const int count = protocol::fieldCount(code, protocol::Direction::ToClient).value_or(0);
            dispatcher.setHandler(code, [&, count](const protocol::Message &m) {
                ++handled;
                if (m.fields.size() != count)
                    countsRight = false;
            });
        }
        static const char alphabet[] = "PSOVLTFMDANRWCKGIE\xD6\x0E\x0F\x0F"
                                       "abc";
        QRandomGenerator random(20261123);
        for (int round = 0; round < 300000; ++round) {
            QByteArray chunk(int(random.bounded(1, 24)), '\0');
            for (char &c : chunk) {
                c = random.bounded(4) == 0 ? char(random.bounded(256))
                                           : alphabet[random.bounded(int(sizeof alphabet) - 1)];
            }
            dispatcher.receive(chunk);
            if (dispatcher.isHalted())
                dispatcher.clear();
        }
        QVERIFY(countsRight);
        QVERIFY(handled > 1000);
        QVERIFY(!dispatcher.pending().contains('\x0F'));
    }
};

QTEST_GUILESS_MAIN(TestDispatcher)
#include "tst_dispatcher.moc"
