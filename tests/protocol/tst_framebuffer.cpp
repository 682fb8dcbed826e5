#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QRandomGenerator>
#include <QTest>

using namespace protocol;

namespace {

// Cuts everything complete and renders each message as "CODE:body" (body bytes as text).
QStringList cutAll(FrameBuffer &buffer)
{
    QStringList out;
    while (auto frame = buffer.next())
        out << QString::fromLatin1(wireCode(frame->code).toByteArray() + ':' +
                                   frame->body.toByteArray());
    return out;
}

} // namespace

class TestFrameBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsArrivals_data()
    {
        QTest::addColumn<QList<QByteArray>>("arrivals");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QByteArray>("left");

        QTest::newRow("two in one arrival")
            << QList<QByteArray>{"SL\x0F" "MDa\x0E" "0\x0E" "hi\x0F"}
            << QStringList{"SL:", "MD:a\x0E" "0\x0E" "hi"} << QByteArray();
        QTest::newRow("split over arrivals")
            << QList<QByteArray>{"MDa\x0E", "0\x0Ehi", "\x0F"}
            << QStringList{"MD:a\x0E" "0\x0E" "hi"} << QByteArray();
        QTest::newRow("partial waits") << QList<QByteArray>{"SL\x0FMDa"} << QStringList{"SL:"}
                                       << QByteArray("MDa");
        QTest::newRow("unknown two letters eaten")
            << QList<QByteArray>{"XY\x0F"} << QStringList{} << QByteArray();
        QTest::newRow("stray byte before a code")
            << QList<QByteArray>{"xSL\x0F"} << QStringList{"SL:"} << QByteArray();
        QTest::newRow("field-less then another")
            << QList<QByteArray>{"SL\x0FMDa\x0E" "0\x0E" "b\x0F"}
            << QStringList{"SL:", "MD:a\x0E" "0\x0E" "b"} << QByteArray();
        QTest::newRow("D6 codes")
            << QList<QByteArray>{"\xD6Mhej\x0F\xD6" "C" "h\x0E" "3\x0F"}
            << QStringList{QString::fromLatin1("\xD6M:hej"), QString::fromLatin1("\xD6" "C:h\x0E" "3")} << QByteArray();
        QTest::newRow("server-bound code not known to the client")
            << QList<QByteArray>{"VEx\x0FSL\x0F"} << QStringList{"SL:"} << QByteArray();
        QTest::newRow("only stray bytes, no terminator")
            << QList<QByteArray>{"zzz"} << QStringList{} << QByteArray("zzz");
        QTest::newRow("terminator inside the junk in front")
            << QList<QByteArray>{"\x0F\x0FSL\x0F"} << QStringList{"SL:"} << QByteArray();
    }
    void cutsArrivals()
    {
        QFETCH(QList<QByteArray>, arrivals);
        QFETCH(QStringList, messages);
        QFETCH(QByteArray, left);
        FrameBuffer buffer(Direction::ToClient);
        QStringList got;
        for (const QByteArray &a : arrivals) {
            buffer.append(a);
            got += cutAll(buffer);
        }
        QCOMPARE(got, messages);
        QCOMPARE(buffer.pending().toByteArray(), left);
    }

    void serverSideKnowsServerCodes()
    {
        FrameBuffer buffer(Direction::ToServer);
        buffer.append(buildMessage(Code::Version, {"V 6.0"}) + buildMessage(Code::SendLogin) +
                      buildMessage(Code::LeaveRoom));
        QCOMPARE(cutAll(buffer), (QStringList{"VE:V 6.0", QString::fromLatin1("\xD6L:")}));
    }

    // A byte-by-byte feed must cut exactly what one big arrival cuts.
    void byteByByteMatchesWhole()
    {
        QByteArray stream;
        for (int i = 0; i < 200; ++i)
            stream += buildMessage(Code::ChatLine, {"n" + QString::number(i), "0", "t"}) + "?";
        FrameBuffer whole(Direction::ToClient), bytes(Direction::ToClient);
        whole.append(stream);
        const QStringList expected = cutAll(whole);
        QStringList got;
        for (char c : stream) {
            bytes.append(QByteArrayView(&c, 1));
            got += cutAll(bytes);
        }
        QCOMPARE(got.size(), 200);
        QCOMPARE(got, expected);
    }

    // Random input never crashes, every cut frame lies inside what was received, and a
    // well-formed message after the noise is still cut whole.
    void randomBytesNeverBreakTheBuffer()
    {
        QRandomGenerator rng(1252);
        const QByteArray good = buildMessage(Code::RemovePlayer, {"Zed"});
        for (int round = 0; round < 300000; ++round) {
            FrameBuffer buffer(round % 2 ? Direction::ToClient : Direction::ToServer);
            QByteArray noise(int(rng.bounded(24)), Qt::Uninitialized);
            for (char &c : noise) {
                const quint32 r = rng.bounded(10);
                c = r == 0 ? '\x0E' : r == 1 ? '\x0F' : r == 2 ? '\xD6' : char(rng.bounded(256));
            }
            buffer.append(noise);
            while (auto f = buffer.next())
                QVERIFY(f->body.size() <= noise.size());
            if (round % 2 == 0)
                continue;
            buffer.append(QByteArray("\x0F") + good);
            bool sawGood = false;
            while (auto f = buffer.next())
                sawGood = sawGood || (f->code == Code::RemovePlayer && f->body == "Zed");
            QVERIFY2(sawGood, noise.toHex().constData());
        }
    }
};

QTEST_GUILESS_MAIN(TestFrameBuffer)
#include "tst_framebuffer.moc"
