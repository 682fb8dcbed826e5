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

// A whole message written readably: "|" stands for the separator, the terminator follows.
QByteArray wire(const QString &text)
{
    return toCp1252(QString(text).replace(QLatin1Char('|'), QChar(kSeparator))) + kTerminator;
}

// Every table here compares what the code made of something (`got`) with what it should.
void addColumns()
{
    QTest::addColumn<QByteArray>("got");
    QTest::addColumn<QByteArray>("expected");
}
void compareRow()
{
    QFETCH(QByteArray, got);
    QFETCH(QByteArray, expected);
    QCOMPARE(got, expected);
}

// Encodes `value`, sends it through a receiver's buffer and cutting and decodes it: a row
// with the bytes it encoded to if it came back equal, else with what went wrong.
template <typename T>
void addRoundTrip(const char *name, const T &value, const QByteArray &wire,
                  Direction direction = T::kDirection)
{
    g_covered.insert({int(T::kCode), int(direction)});
    const QByteArray encoded = value.encode();
    FrameBuffer buffer(direction);
    buffer.append(encoded);
    QByteArray got = "not cut";
    if (const auto frame = buffer.next()) {
        const auto fields = splitFields(frame->body, *fieldCount(frame->code, direction));
        const Decoded<T> back = T::decode(Message{frame->code, fields.value_or(QStringList())});
        got = !back ? back.error().toUtf8() : *back == value ? encoded : "came back different";
    }
    QTest::newRow(name) << got << wire;
}
// The same for a message written readably, which names the row.
template <typename T>
void addRoundTrip(const T &value, const char *readable, Direction direction = T::kDirection)
{
    addRoundTrip(readable, value, wire(QString::fromUtf8(readable)), direction);
}

// Decodes `fields` as T: a row with what it encodes to again, or with why it was refused.
// `expected` is a message written readably, or "refused: " and the reason.
template <typename T>
void addRead(const char *name, const QStringList &fields, const char *expected,
             Code code = T::kCode)
{
    const Decoded<T> got = T::decode(Message{code, fields});
    const QByteArray want(expected);
    QTest::newRow(name) << (got ? got->encode() : "refused: " + got.error().toUtf8())
                        << (want.startsWith("refused: ") ? want : wire(QString::fromUtf8(want)));
}

// What the number readers make of `text`: its whole number, or why there is none.
QByteArray readAs(const QString &text)
{
    if (!readNumber(text))
        return "not a number";
    const std::optional<qint64> whole = readWholeNumber(text);
    return whole ? QByteArray::number(*whole) : "no whole number";
}

} // namespace

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTrips_data();
    void roundTrips() { compareRow(); }
    void readsOddFields_data();
    void readsOddFields() { compareRow(); }
};

void TestMessages::roundTrips_data()
{
    addColumns();
    g_covered.clear();
    const auto S = Direction::ToServer;
    const auto C = Direction::ToClient;

    addRoundTrip(Version{"V 6.0"}, "VEV 6.0");
    addRoundTrip(SendLogin{}, "SL");
    addRoundTrip("LG, bytes spelled out", Login{"Ann", "x1"},
                 QByteArray::fromHex("4C47416E6E0E78310F"));
    addRoundTrip(LoginAccepted{NumberText::read("17"), "Ann"}, "LT17|Ann");
    addRoundTrip(LoginFailed{}, "LF");
    addRoundTrip(OldVersion{}, "OV");
    addRoundTrip(KeepAlive{}, "PI");

    addRoundTrip(AddPlayer{"Ann", 17, Presence::Playing, "10.0.0.5", true, true, "d41d8"},
                 "ANAnn|17|2|10.0.0.5|1|True|d41d8");
    addRoundTrip(RemovePlayer{"Ann"}, "RNAnn");
    addRoundTrip(PlayerStatusToServer{Presence::Lobby, ""}, "PS3|");
    addRoundTrip(PlayerStatusToClient{"Ann", Presence::Away, ""}, "PSAnn|1|");
    addRoundTrip(BuddyAdd{17}, "BA17");
    addRoundTrip(BuddyRemove{17}, "BR17");

    addRoundTrip(ChatLineToServer{"hi there"}, "MDhi there");
    addRoundTrip(ChatLineToClient{"Ann", 255, "hé"}, "MDAnn|255|hé");
    addRoundTrip(PrivateMessageToServer{"Bob", "psst"}, "PMBob|psst");
    addRoundTrip(PrivateMessageToClient{"Bob", "psst", true}, "PMBob|psst|1");

    addRoundTrip(AddRoomToServer{"Fun"}, "ARFun");
    addRoundTrip(AddRoomToClient{"Ann", "Fun", "10.0.0.5", "In chat", NumberText::of(1), true},
                 "ARAnn|Fun|10.0.0.5|In chat|1|1");
    addRoundTrip("RR to server", RemoveRoomToServer{}, wire("RR"));
    addRoundTrip(RemoveRoomToClient{"Ann", true}, "RRAnn|1");
    addRoundTrip(RoomCount{"Ann", NumberText::of(3)}, "ÖCAnn|3");
    addRoundTrip(LockRoomToServer{"abc"}, "LRabc");
    addRoundTrip(LockRoomToClient{"Ann", false}, "LRAnn|0");
    addRoundTrip(JoinRoom{"Ann", ""}, "ÖJAnn|");
    addRoundTrip(WrongPassword{}, "ÖW");
    addRoundTrip(RoomRefused{"Too fast"}, "ÖNToo fast");
    addRoundTrip(MemberJoined{"Bob", ReadyState::Ready}, "ÖTBob|2");
    addRoundTrip(MemberLeft{"Bob"}, "ÖBBob");
    addRoundTrip("ÖM to server, D6 4D", RoomChat{"go"}, "\xD6Mgo\x0F", S);
    addRoundTrip(RoomChat{"Bob: go"}, "ÖMBob: go", C);
    addRoundTrip(MemberReadyToServer{ReadyState::Ready}, "ÖR2");
    addRoundTrip(MemberReadyToClient{"Bob", ReadyState::NotReady}, "ÖRBob|1");
    addRoundTrip(RoomStatusToServer{RoomStatus::InGame}, "ÖSIn game");
    addRoundTrip(RoomStatusToClient{"Ann", "In game"}, "ÖSAnn|In game");
    addRoundTrip(LeaveRoom{}, "ÖL");

    // One more separator after the records; numbers keep the form they were read in.
    const StatsRecord record{NumberText::of(-3),
                             "Ann",
                             NumberText::read("02"),
                             NumberText::read("1.50"),
                             "4",
                             "5",
                             "6",
                             "8",
                             "Bob"};
    addRoundTrip(StatsUpload{1, "A", "Survival", "B", {record, record}},
                 "DS1|A|Survival|B|-3|Ann|02|1.50|4|5|6|8|Bob|-3|Ann|02|1.50|4|5|6|8|Bob|");
    addRoundTrip(StatsReset{}, "RS");

    QByteArray missing;
    for (std::size_t i = 0; i < kCodeCount; ++i) {
        for (Direction d : {C, S}) {
            if (fieldCount(Code(i), d) && !g_covered.contains({int(i), int(d)}))
                missing += codeText(Code(i)).toUtf8() + (d == C ? " to client " : " to server ");
        }
    }
    QTest::newRow("every message in both directions is above") << missing << QByteArray();
}

// Fields in odd or broken form, read the way the receiver tolerates them.
void TestMessages::readsOddFields_data()
{
    addColumns();
    addRead<AddPlayer>("too few fields", {"Bob", "1", "3", "", "0", "False"},
                       "refused: AN has 6 fields instead of 7");
    addRead<RemovePlayer>("another code", {"Bob"}, "refused: PS is not RN", Code::PlayerStatus);
    addRead<AddPlayer>("AN: no numbers; flags only exactly 1 and True",
                       {"Bob", "abc", "three", "", "1 ", "true", ""}, "ANBob|0|||0|False|");
    addRead<AddPlayer>("AN: fractions down", {"Bob", "-1.5", "2.7", "g", "1", "True", "h"},
                       "ANBob|-2|2|g|1|True|h");
    addRead<PlayerStatusToClient>("PS: unknown state", {"Bob", "0", "1.2.3.4"}, "PSBob||1.2.3.4");
    addRead<PlayerStatusToServer>("PS to server: state 33", {"33", ""},
                                  "refused: PS: state \"33\" is not 1, 2 or 3");
    addRead<BuddyAdd>("BA: not a number", {"twelve"}, "refused: BA: id \"twelve\" is not a number");
    addRead<ChatLineToClient>("MD: colour not a number", {"Ann", "red", "x"}, "MDAnn||x");
    addRead<ChatLineToClient>("MD: colour below 0", {"Ann", "-1", "x"}, "MDAnn||x");
    addRead<ChatLineToClient>("MD: colour past 32 bits", {"Ann", "4294967296", "x"}, "MDAnn||x");
    addRead<PrivateMessageToClient>("PM: echo neither 0 nor 1", {"Bob", "t", "2"}, "PMBob|t|");
    addRead<AddRoomToClient>("AR: lock flag only exactly 1; any count as it came",
                             {"Ann", "Fun", "a", "b", "N/A", "1.0"}, "ARAnn|Fun|a|b|N/A|0");
    addRead<RoomCount>("ÖC: count as it came", {"Ann", " 007"}, "ÖCAnn| 007");
    addRead<RemoveRoomToClient>("RR: game flag only exactly 1", {"Ann", " 1"}, "RRAnn|0");
    addRead<LockRoomToClient>("LR: the value 1 locks", {"Ann", " 1.0"}, "LRAnn|1");
    addRead<LockRoomToClient>("LR: 1.5 is not 1", {"Ann", "1.5"}, "LRAnn|0");
    addRead<MemberReadyToClient>("ÖR: fraction down", {"Bob", "2.5"}, "ÖRBob|2");
    addRead<MemberReadyToServer>("ÖR to server: state 3", {"3"},
                                 "refused: ÖR: state \"3\" is not 1 or 2");
    addRead<RoomStatusToServer>(
        "ÖS to server: other case", {"in game"},
        "refused: ÖS: status \"in game\" is not \"In chat\" or \"In game\"");

    // "DS" arrives cut into its four header fields, the records left in the last one.
    const QString records = QString("B|3|Ann|2|1|4|5|6|8|Bob|").replace('|', QChar(kSeparator));
    const char *upload = "DS1|A|Survival|B|3|Ann|2|1|4|5|6|8|Bob|";
    addRead<StatsUpload>("DS: as the receiver cuts it", {"1", "A", "Survival", records}, upload);
    addRead<StatsUpload>("DS: no separator at the end", {"1", "A", "Survival", records.chopped(1)},
                         upload);
    addRead<StatsUpload>("DS: no records", {"0", "A", "Survival", records.left(2)},
                         "DS0|A|Survival|B|");
    addRead<StatsUpload>("DS: part of a record", {"1", "A", "Survival", records.left(7)},
                         "refused: DS: 2 record fields are not records of 9");
    for (const auto &[at, field] : {std::pair{0, "P1"}, {2, "P2"}, {3, "P3"}}) {
        QStringList fields = QString(records).split(QChar(kSeparator));
        fields[at + 1] = "x";
        const QByteArray name = "DS: " + QByteArray(field) + " not a number";
        const QByteArray reason =
            "refused: DS: record 1: " + QByteArray(field) + " \"x\" is not a number";
        addRead<StatsUpload>(name.constData(),
                             {"1", "A", "Survival", fields.join(QChar(kSeparator))},
                             reason.constData());
    }
    addRead<StatsUpload>("DS: own index not a number", {"me", "A", "Survival", "B"},
                         "refused: DS: own index \"me\" is not a number");
    addRead<StatsUpload>("DS: header cut short", {"1", "A", "Survival"},
                         "refused: DS has 3 fields instead of at least 4");

    // Every number field is read by the same two functions.
    QTest::newRow("number: blanks, sign, fraction") << readAs(" +12.9\t") << QByteArray("12");
    QTest::newRow("number: negative fraction down") << readAs("-1.5") << QByteArray("-2");
    QTest::newRow("number: 2^63") << readAs("9223372036854775808") << QByteArray("no whole number");
    QTest::newRow("number: group separator") << readAs("1,000") << QByteArray("not a number");
    QTest::newRow("number: infinity") << readAs("inf") << QByteArray("not a number");
}

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
