// Every lobby message: encoded to its exact bytes and read back whole by a receiver, and read
// from odd or broken fields the way its receiver tolerates them.
#include "protocol/chat.h"
#include "protocol/cp1252.h"
#include "protocol/framebuffer.h"
#include "protocol/login.h"
#include "protocol/number.h"
#include "protocol/presence.h"
#include "protocol/rooms.h"
#include "protocol/stats.h"

#include <QSet>
#include <QTest>

using namespace protocol;

namespace {

// (code, direction) of every message that went through the round trip.
QSet<QPair<int, int>> g_covered;

// Sends `value` through a receiver's buffer and cutting, decodes it, and adds a row with the
// bytes it encoded to and whether it came back equal.
template <typename T>
void addRoundTrip(const char *name, const T &value, const QByteArray &wire, Direction direction)
{
    g_covered.insert({int(T::kCode), int(direction)});
    const QByteArray encoded = value.encode();
    FrameBuffer buffer(direction);
    buffer.append(encoded);
    QString error = QStringLiteral("not cut");
    bool same = false;
    if (const auto frame = buffer.next()) {
        if (const auto fields = splitFields(frame->body, *fieldCount(frame->code, direction))) {
            const Decoded<T> back = T::decode(Message{frame->code, *fields});
            error = back.error();
            same = back && *back == value;
        }
    }
    QTest::newRow(name) << encoded << wire << error << same;
}
template <typename T> void addRoundTrip(const char *name, const T &value, const QByteArray &wire)
{
    addRoundTrip(name, value, wire, T::kDirection);
}

// Decodes `fields` as T and adds a row with the reason it failed or what it encodes to again.
template <typename T>
void addOdd(const char *name, const QStringList &fields, const QByteArray &reencoded,
            const QString &error = {}, Code code = T::kCode)
{
    const Decoded<T> got = T::decode(Message{code, fields});
    QTest::newRow(name) << (got ? got->encode() : QByteArray()) << reencoded << got.error()
                        << error;
}

// Field text written readably: "|" stands for the separator.
QString fieldText(QString text)
{
    return text.replace(QLatin1Char('|'), QChar(kSeparator));
}

// A whole message written readably: "|" stands for the separator, the terminator follows.
QByteArray wire(const QString &text)
{
    return toCp1252(fieldText(text)) + kTerminator;
}

} // namespace

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrips_data();
    void roundTrips();
    void readsOddFields_data();
    void readsOddFields();
    void readsNumbers_data();
    void readsNumbers();
};

void TestMessages::roundTrips_data()
{
    QTest::addColumn<QByteArray>("encoded");
    QTest::addColumn<QByteArray>("wire");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("same");
    g_covered.clear();
    const auto S = Direction::ToServer;
    const auto C = Direction::ToClient;

    addRoundTrip("VE", Version{"V 6.0"}, wire("VEV 6.0"));
    addRoundTrip("SL", SendLogin{}, wire("SL"));
    addRoundTrip("LG", Login{"Ann", "x1"}, QByteArray::fromHex("4C47416E6E0E78310F"));
    addRoundTrip("LT", LoginAccepted{"17", "Ann"}, wire("LT17|Ann"));
    addRoundTrip("LF", LoginFailed{}, wire("LF"));
    addRoundTrip("OV", OldVersion{}, wire("OV"));
    addRoundTrip("PI", KeepAlive{}, wire("PI"));

    addRoundTrip("AN", AddPlayer{"Ann", 17, Presence::Playing, "10.0.0.5", true, true, "d41d8"},
                 wire("ANAnn|17|2|10.0.0.5|1|True|d41d8"));
    addRoundTrip("RN", RemovePlayer{"Ann"}, wire("RNAnn"));
    addRoundTrip("PS to server", PlayerStatusToServer{Presence::Lobby, ""}, wire("PS3|"));
    addRoundTrip("PS to client", PlayerStatusToClient{"Ann", Presence::Away, ""}, wire("PSAnn|1|"));
    addRoundTrip("BA", BuddyAdd{17}, wire("BA17"));
    addRoundTrip("BR", BuddyRemove{17}, wire("BR17"));

    addRoundTrip("MD to server", ChatLineToServer{"hi there"}, wire("MDhi there"));
    addRoundTrip("MD to client", ChatLineToClient{"Ann", 255, "hé"}, wire("MDAnn|255|hé"));
    addRoundTrip("PM to server", PrivateMessageToServer{"Bob", "psst"}, wire("PMBob|psst"));
    addRoundTrip("PM to client", PrivateMessageToClient{"Bob", "psst", true}, wire("PMBob|psst|1"));

    addRoundTrip("AR to server", AddRoomToServer{"Fun"}, wire("ARFun"));
    addRoundTrip("AR to client", AddRoomToClient{"Ann", "Fun", "10.0.0.5", "In chat", "1", true},
                 wire("ARAnn|Fun|10.0.0.5|In chat|1|1"));
    addRoundTrip("RR to server", RemoveRoomToServer{}, wire("RR"));
    addRoundTrip("RR to client", RemoveRoomToClient{"Ann", true}, wire("RRAnn|1"));
    addRoundTrip("ÖC", RoomCount{"Ann", "3"}, wire("ÖCAnn|3"));
    addRoundTrip("LR to server", LockRoomToServer{"abc"}, wire("LRabc"));
    addRoundTrip("LR to client", LockRoomToClient{"Ann", false}, wire("LRAnn|0"));
    addRoundTrip("ÖJ to an open room", JoinRoom{"Ann", ""}, wire("ÖJAnn|"));
    addRoundTrip("ÖW", WrongPassword{}, wire("ÖW"));
    addRoundTrip("ÖT", MemberJoined{"Bob", ReadyState::Ready}, wire("ÖTBob|2"));
    addRoundTrip("ÖB", MemberLeft{"Bob"}, wire("ÖBBob"));
    addRoundTrip("ÖM to server, D6 4D", RoomChat{"go"}, "\xD6Mgo\x0F", S);
    addRoundTrip("ÖM to client", RoomChat{"Bob: go"}, wire("ÖMBob: go"), C);
    addRoundTrip("ÖR to server", MemberReadyToServer{ReadyState::Ready}, wire("ÖR2"));
    addRoundTrip("ÖR to client", MemberReadyToClient{"Bob", ReadyState::NotReady}, wire("ÖRBob|1"));
    addRoundTrip("ÖS to server", RoomStatusToServer{RoomStatus::InGame}, wire("ÖSIn game"));
    addRoundTrip("ÖS to client", RoomStatusToClient{"Ann", "In game"}, wire("ÖSAnn|In game"));
    addRoundTrip("ÖL", LeaveRoom{}, wire("ÖL"));

    const StatsRecord record{"3", "Ann", "2", "1", "4", "5", "6", "8", "Bob"};
    addRoundTrip("DS, one more separator after the records",
                 StatsUpload{1, "A", "Survival", "B", {record, record}},
                 wire("DS1|A|Survival|B|3|Ann|2|1|4|5|6|8|Bob|3|Ann|2|1|4|5|6|8|Bob|"));
    addRoundTrip("RS", StatsReset{}, wire("RS"));

    QStringList missing;
    for (std::size_t i = 0; i < kCodeCount; ++i) {
        for (Direction d : {C, S}) {
            if (fieldCount(Code(i), d) && !g_covered.contains({int(i), int(d)}))
                missing << codeText(Code(i)) + (d == C ? " to client" : " to server");
        }
    }
    QTest::newRow("every message in both directions is above")
        << QByteArray() << QByteArray() << missing.join(", ") << true;
}

void TestMessages::roundTrips()
{
    QFETCH(QByteArray, encoded);
    QFETCH(QByteArray, wire);
    QFETCH(QString, error);
    QFETCH(bool, same);
    QCOMPARE(encoded, wire);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(same);
}

void TestMessages::readsOddFields_data()
{
    QTest::addColumn<QByteArray>("got");
    QTest::addColumn<QByteArray>("reencoded"); // what the receiver made of it, written plainly
    QTest::addColumn<QString>("gotError");
    QTest::addColumn<QString>("error"); // part of the reason; empty: it decodes

    addOdd<AddPlayer>("too few fields", {"Bob", "1", "3", "", "0", "False"}, {},
                      "6 fields instead of 7");
    addOdd<RemovePlayer>("another code", {"Bob"}, {}, "PS is not RN", Code::PlayerStatus);
    addOdd<AddPlayer>("AN: no numbers; flags only exactly \"1\" and \"True\"",
                      {"Bob", "abc", "three", "", "1 ", "true", ""}, wire("ANBob|0|||0|False|"));
    addOdd<AddPlayer>("AN: fractions rounded down", {"Bob", "-1.5", "2.7", "g", "1", "True", "h"},
                      wire("ANBob|-2|2|g|1|True|h"));
    addOdd<AddPlayer>("AN: state outside 1..3", {"Bob", "1", "4", "", "0", "False", ""},
                      wire("ANBob|1|||0|False|"));
    addOdd<PlayerStatusToClient>("PS to client: unknown state keeps the address",
                                 {"Bob", "0", "10.0.0.2"}, wire("PSBob||10.0.0.2"));
    addOdd<PlayerStatusToServer>("PS to server: state outside 1..3", {"33", ""}, {},
                                 "state \"33\" is not 1, 2 or 3");
    addOdd<PlayerStatusToServer>("PS to server: not a number", {"x", ""}, {}, "state \"x\"");
    addOdd<PlayerStatusToServer>("PS to server: a number that rounds to 2", {" 2.5", "host"},
                                 wire("PS2|host"));
    addOdd<BuddyAdd>("BA: not a number", {"twelve"}, {}, "id \"twelve\" is not a number");
    addOdd<BuddyAdd>("BA: beyond any whole number", {"99999999999999999999"}, {}, "id");
    addOdd<BuddyRemove>("BR: negative is still a number", {"-3"}, wire("BR-3"));
    addOdd<ChatLineToClient>("MD: colour not a number", {"Ann", "red", "x"}, wire("MDAnn||x"));
    addOdd<ChatLineToClient>("MD: colour below 0", {"Ann", "-1", "x"}, wire("MDAnn||x"));
    addOdd<ChatLineToClient>("MD: colour past 32 bits", {"Ann", "4294967296", "x"},
                             wire("MDAnn||x"));
    addOdd<ChatLineToClient>("MD: colour rounded down", {"Ann", "255.9", "x"}, wire("MDAnn|255|x"));
    addOdd<PrivateMessageToClient>("PM: echo neither 0 nor 1", {"Bob", "t", "2"}, wire("PMBob|t|"));
    addOdd<AddRoomToClient>("AR: lock flag only exactly \"1\"",
                            {"Ann", "Fun", "1.2.3.4", "In chat", "12", "1.0"},
                            wire("ARAnn|Fun|1.2.3.4|In chat|12|0"));
    addOdd<RemoveRoomToClient>("RR: game flag only exactly \"1\"", {"Ann", " 1"}, wire("RRAnn|0"));
    addOdd<LockRoomToClient>("LR: the value 1 locks", {"Ann", " 1.0"}, wire("LRAnn|1"));
    addOdd<LockRoomToClient>("LR: 1.5 is not 1", {"Ann", "1.5"}, wire("LRAnn|0"));
    addOdd<LockRoomToClient>("LR: not a number opens", {"Ann", "x"}, wire("LRAnn|0"));
    addOdd<MemberJoined>("ÖT: state outside 1..2", {"Bob", "3"}, wire("ÖTBob|"));
    addOdd<MemberReadyToClient>("ÖR to client: fraction", {"Bob", "2.5"}, wire("ÖRBob|2"));
    addOdd<MemberReadyToServer>("ÖR to server: state 3", {"3"}, {}, "state \"3\" is not 1 or 2");
    addOdd<RoomStatusToServer>("ÖS to server: other text", {"in game"}, {}, "status \"in game\"");
    addOdd<RoomStatusToClient>("ÖS to client: any text", {"Ann", "Lunch"}, wire("ÖSAnn|Lunch"));

    // "DS" arrives cut into its four header fields, the records left in the last one.
    const QString records = fieldText("B|3|Ann|2|1|4|5|6|8|Bob|");
    const QByteArray upload = wire("DS1|A|Survival|B|3|Ann|2|1|4|5|6|8|Bob|");
    addOdd<StatsUpload>("DS: as the receiver cuts it", {"1", "A", "Survival", records}, upload);
    addOdd<StatsUpload>("DS: without the separator at the end",
                        {"1", "A", "Survival", records.chopped(1)}, upload);
    addOdd<StatsUpload>("DS: no records", {"0", "A", "Survival", fieldText("B|")},
                        wire("DS0|A|Survival|B|"));
    addOdd<StatsUpload>("DS: part of a record", {"1", "A", "Survival", fieldText("B|3|Ann")}, {},
                        "2 record fields are not records of 9");
    addOdd<StatsUpload>("DS: own index not a number", {"me", "A", "Survival", "B"}, {},
                        "own index \"me\"");
    addOdd<StatsUpload>("DS: header cut short", {"1", "A", "Survival"}, {},
                        "3 fields instead of at least 4");
}

void TestMessages::readsOddFields()
{
    QFETCH(QByteArray, got);
    QFETCH(QByteArray, reencoded);
    QFETCH(QString, gotError);
    QFETCH(QString, error);
    if (error.isEmpty()) {
        QVERIFY2(gotError.isEmpty(), qPrintable(gotError));
        QCOMPARE(got, reencoded);
    } else {
        QVERIFY2(gotError.contains(error), qPrintable(gotError));
    }
}

void TestMessages::readsNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isNumber");
    QTest::addColumn<QString>("whole"); // "": no whole number
    QTest::newRow("plain") << "12" << true << "12";
    QTest::newRow("white space and sign") << " +7\t" << true << "7";
    QTest::newRow("leading zeros") << "0012" << true << "12";
    QTest::newRow("fraction down") << "12.9" << true << "12";
    QTest::newRow("negative fraction down") << "-1.5" << true << "-2";
    QTest::newRow("bare fraction") << ".5" << true << "0";
    QTest::newRow("trailing point") << "5." << true << "5";
    QTest::newRow("exponent") << "1e3" << true << "1000";
    QTest::newRow("beyond qint64") << "99999999999999999999" << true << "";
    QTest::newRow("empty") << "" << false << "";
    QTest::newRow("blank") << "  " << false << "";
    QTest::newRow("group separator") << "1,000" << false << "";
    QTest::newRow("hexadecimal") << "0x10" << false << "";
    QTest::newRow("infinity") << "inf" << false << "";
    QTest::newRow("not a number") << "nan" << false << "";
    QTest::newRow("too large for a double") << "1e400" << false << "";
    QTest::newRow("trailing text") << "12abc" << false << "";
}

void TestMessages::readsNumbers()
{
    QFETCH(QString, text);
    QFETCH(bool, isNumber);
    QFETCH(QString, whole);
    QCOMPARE(readNumber(text).has_value(), isNumber);
    const std::optional<qint64> got = readWholeNumber(text);
    QCOMPARE(got ? QString::number(*got) : QString(), whole);
}

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
