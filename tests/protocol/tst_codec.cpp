// Code page 1252 both ways, and what message building and field cutting add to it. Whole
// messages are tst_messages' to test, frames tst_framebuffer's.
#include "protocol/codes.h"
#include "protocol/cp1252.h"
#include "protocol/message.h"

#include <QTest>

using namespace protocol;

class TestCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decodesEveryByteToOneCharacter()
    {
        QByteArray all;
        for (int b = 0; b < 256; ++b)
            all.append(static_cast<char>(b));
        const QString text = fromCp1252(all);
        QCOMPARE(text.size(), 256);
        QCOMPARE(toCp1252(text), all); // every byte survives the round trip
    }

    void mapsCharacters()
    {
        QCOMPARE(toCp1252(QStringLiteral("Ö€“”")), "\xD6\x80\x93\x94");
        QCOMPARE(fromCp1252("\xD6\x80\x93\x94"), QStringLiteral("Ö€“”"));
        // What code page 1252 cannot hold becomes one '?' per character, even outside the BMP.
        QCOMPARE(toCp1252(QStringLiteral("aЖb😀c")), "a?b?c");
    }

    void buildingRemovesFramingBytes()
    {
        QCOMPARE(buildMessage(Code::ChatLine, {QString::fromLatin1("a\x0Ez\x0Fy")}), "MDazy\x0F");
    }

    // As handlers read them: an extra separator stays in the last field, a body with too few
    // gives nothing, the body of a field-less message is ignored.
    void splitsFields()
    {
        const auto split = [](const char *body, int count) {
            return splitFields(body, count).value_or(QStringList{"(short)"});
        };
        QCOMPARE(split("a\x0Ez\x0Ey", 2), QStringList({"a", QString::fromLatin1("z\x0Ey")}));
        QCOMPARE(split("a", 2), QStringList{"(short)"});
        QCOMPARE(split("junk", 0), QStringList());
    }
};

QTEST_GUILESS_MAIN(TestCodec)
#include "tst_codec.moc"
