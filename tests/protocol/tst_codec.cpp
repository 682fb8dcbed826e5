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

    void mapsCharacters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("Ö, euro and quotes, both ways") << "Ö€“”" << QByteArray("\xD6\x80\x93\x94");
        QTest::newRow("cyrillic is replaced") << "aЖb" << QByteArray("a?b");
        QTest::newRow("emoji is one character") << "a😀b" << QByteArray("a?b");
    }
    void mapsCharacters()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(toCp1252(text), bytes);
        if (!bytes.contains(kUnmappable))
            QCOMPARE(fromCp1252(bytes), text);
    }

    void buildingRemovesFramingBytes()
    {
        QCOMPARE(buildMessage(Code::ChatLine, {QString::fromLatin1("a\x0Ez\x0Fy")}), "MDazy\x0F");
    }

    void splitsFieldsAsHandlersRead_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("fields"); // {"short"}: too few separators, nothing read
        QTest::newRow("extra separator stays in the last field")
            << QByteArray("a\x0Ez\x0Ey") << 2 << QStringList{"a", QString::fromLatin1("z\x0Ey")};
        QTest::newRow("short") << QByteArray("a") << 2 << QStringList{"short"};
        QTest::newRow("field-less body ignored") << QByteArray("junk") << 0 << QStringList{};
    }
    void splitsFieldsAsHandlersRead()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, count);
        QFETCH(QStringList, fields);
        QCOMPARE(splitFields(body, count).value_or(QStringList{"short"}), fields);
    }
};

QTEST_GUILESS_MAIN(TestCodec)
#include "tst_codec.moc"
