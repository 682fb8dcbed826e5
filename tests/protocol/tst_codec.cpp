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
        QTest::newRow("O umlaut") << QStringLiteral("Ö") << QByteArray("\xD6");
        QTest::newRow("euro") << QStringLiteral("€") << QByteArray("\x80");
        QTest::newRow("quotes") << QStringLiteral("“”") << QByteArray("\x93\x94");
        QTest::newRow("ascii") << QStringLiteral("Ann x1") << QByteArray("Ann x1");
        QTest::newRow("cyrillic is replaced") << QStringLiteral("aЖb") << QByteArray("a?b");
        QTest::newRow("emoji is one character") << QStringLiteral("a😀b") << QByteArray("a?b");
        QTest::newRow("lone surrogate") << QString(QChar(0xD800)) << QByteArray("?");
    }
    void mapsCharacters()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, bytes);
        QCOMPARE(toCp1252(text), bytes);
    }

    void buildsMessages_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QByteArray>("wire");
        QTest::newRow("framing bytes removed from text")
            << int(Code::ChatLine) << QStringList{QString::fromLatin1("a\x0E" "b\x0F" "c")}
            << QByteArray("MDabc\x0F");
        QTest::newRow("unmappable stays one byte")
            << int(Code::ChatLine) << QStringList{QStringLiteral("Жx")} << QByteArray("MD?x\x0F");
    }
    void buildsMessages()
    {
        QFETCH(int, code);
        QFETCH(QStringList, fields);
        QFETCH(QByteArray, wire);
        QCOMPARE(buildMessage(Code(code), fields), wire);
    }

    void splitsFieldsAsHandlersRead_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("count");
        QTest::addColumn<bool>("complete");
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("exact") << QByteArray("a\x0E" "b\x0E" "c") << 3 << true
                               << QStringList{"a", "b", "c"};
        QTest::newRow("empty fields") << QByteArray("\x0E") << 2 << true << QStringList{"", ""};
        QTest::newRow("extra separator stays in last field")
            << QByteArray("a\x0E" "b\x0E" "c") << 2 << true
            << QStringList{"a", QString::fromLatin1("b\x0E" "c")};
        QTest::newRow("short") << QByteArray("a") << 2 << false << QStringList{};
        QTest::newRow("field-less body ignored") << QByteArray("junk") << 0 << true << QStringList{};
    }
    void splitsFieldsAsHandlersRead()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, count);
        QFETCH(bool, complete);
        QFETCH(QStringList, fields);
        const auto got = splitFields(body, count);
        QCOMPARE(got.has_value(), complete);
        if (complete)
            QCOMPARE(*got, fields);
    }

    void clientOrderListsEveryIncomingCodeOnce()
    {
        QSet<int> seen;
        for (Code c : clientIncomingOrder()) {
            QVERIFY(fieldCount(c, Direction::ToClient).has_value());
            QVERIFY(!seen.contains(int(c)));
            seen.insert(int(c));
        }
        QCOMPARE(seen.size(), 19);
        QCOMPARE(clientIncomingOrder().front(), Code::PlayerStatus);
        QCOMPARE(clientIncomingOrder().back(), Code::PrivateMessage);
    }
};

QTEST_GUILESS_MAIN(TestCodec)
#include "tst_codec.moc"
