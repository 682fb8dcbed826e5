#include "protocol/framebuffer.h"
#include "protocol/message.h"

#include <QRandomGenerator>
#include <QSet>
#include <QTest>

using namespace protocol;

namespace {

// Cuts up to `most` complete messages and renders each as "CODE:body" (body bytes as text).
QStringList cutAll(FrameBuffer &buffer, int most = INT_MAX)
{
    QStringList out;
    std::optional<FrameBuffer::Frame> frame;
    while (out.size() < most && (frame = buffer.next()))
        out << QString::fromLatin1(wireCode(frame->code).toByteArray() + ':' +
                                   frame->body.toByteArray());
    return out;
}

} // namespace

class TestFrameBuffer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every code travelling each way is cut by tst_messages; here is what arrives around them.
    void cutsArrivals_data()
    {
        QTest::addColumn<QList<QByteArray>>("arrivals");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QByteArray>("left");
        QTest::addColumn<int>("to");
        const auto row = [](const char *tag, QList<QByteArray> arrivals, QStringList messages,
                            QByteArray left = {}, Direction to = Direction::ToClient) {
            QTest::newRow(tag) << arrivals << messages << left << int(to);
        };
        row("split over arrivals, the rest waits", {"SL\x0FMDa\x0Ez", "z\x0Ehi", "\x0FMD"},
            {"SL:", "MD:a\x0Ezz\x0Ehi"}, "MD");
        row("stray bytes, unknown code and terminators in front", {"x\x0FXY\x0F\x0FSL\x0F"},
            {"SL:"});
        row("code going the other way is junk", {"VEx\x0FSL\x0F"}, {"SL:"});
        row("the same, to the server", {"SLx\x0FVE\x0F"}, {"VE:"}, {}, Direction::ToServer);
        row("nothing is dropped before a terminator", {"zzz"}, {}, "zzz");
    }
    void cutsArrivals()
    {
        QFETCH(QList<QByteArray>, arrivals);
        QFETCH(QStringList, messages);
        QFETCH(QByteArray, left);
        QFETCH(int, to);
        FrameBuffer buffer{Direction(to)};
        QStringList got;
        for (const QByteArray &a : arrivals) {
            buffer.append(a);
            got += cutAll(buffer);
        }
        QCOMPARE(got, messages);
        QCOMPARE(buffer.pending().toByteArray(), left);
    }

    // Noise with a good message after a terminator here and there: whether the stream arrives
    // whole, byte by byte or in random pieces (cut at once or later), the same messages are
    // cut, every good one among them.
    void cutsTheSameInAnyPieces()
    {
        QRandomGenerator rng(1252);
        QByteArray stream;
        for (int i = 0; i < 20000; ++i) {
            for (int n = rng.bounded(24); n > 0; --n) {
                const quint32 r = rng.bounded(10); // framing bytes and 0xD6 more often
                stream += r < 3 ? "\x0E\x0F\xD6"[r] : char(rng.bounded(256));
            }
            stream += '\x0F' + buildMessage(Code::RemovePlayer, {QString::number(i)});
        }
        FrameBuffer whole(Direction::ToClient);
        whole.append(stream);
        const QStringList expected = cutAll(whole);
        const QSet<QString> cut(expected.cbegin(), expected.cend());
        for (int i = 0; i < 20000; ++i)
            QVERIFY2(cut.contains("RN:" + QString::number(i)), qPrintable(QString::number(i)));
        for (const bool byteByByte : {true, false}) {
            FrameBuffer pieces(Direction::ToClient);
            QStringList got;
            for (qsizetype at = 0, n = 1; at < stream.size(); at += n) {
                n = byteByByte ? 1 : qMin<qsizetype>(rng.bounded(1, 64), stream.size() - at);
                pieces.append(QByteArrayView(stream).sliced(at, n));
                // Some cut later: more arrives while messages wait.
                got += cutAll(pieces, byteByByte ? INT_MAX : rng.bounded(3));
            }
            QCOMPARE(got + cutAll(pieces), expected);
        }
    }
};

QTEST_GUILESS_MAIN(TestFrameBuffer)
#include "tst_framebuffer.moc"
