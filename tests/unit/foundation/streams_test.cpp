#include "unit/foundation/fixtures.h"

using namespace foundation_fixtures;

namespace foundation_fixtures {

class TParametresStreamTest : public WithGlobal {
  protected:
    // What one writable parameter "A" is stored as, after its name.
    std::string ValueHex(const Variant& value) {
        TParametres one(nullptr);
        one.AddParam("A", 0);
        TParametresData data = one.GetParamsProps(0);
        data.Value = value;
        data.Writable = true;
        one.SetParamsProps(0, data);
        const std::string hex = Hex(Stored(one));
        const std::string head = std::string(kTag) + "01070141";
        EXPECT_EQ(hex.substr(0, head.size()), head);
        EXPECT_EQ(hex.substr(hex.size() - 2), "00");
        return hex.substr(head.size(), hex.size() - head.size() - 2);
    }
    Variant Read(const std::string& valueHex) {
        TParametres one(nullptr);
        Load(one, Unhex(std::string(kTag) + "01070141" + valueHex + "00"));
        EXPECT_TRUE(one.GetWritable("A"));
        return one.GetParamsProps(0).Value;
    }
};

}  // namespace foundation_fixtures

TEST_F(TParametresStreamTest, ASetWithoutWritableParametersIsTheTagAndAnEmptyList) {
    set.AddParam("A", 1);
    EXPECT_EQ(Hex(Stored(set)), std::string(kTag) + "0100");
    TParametres other(nullptr);
    other.AddParam("B", 2);
    Load(other, Stored(set));
    EXPECT_EQ(Names(other), "B ");
}

TEST_F(TParametresStreamTest, BytesOfEveryType) {
    EXPECT_EQ(ValueHex(Variant()), "07044E554C4C");
    EXPECT_EQ(ValueHex(Variant::Null()), "07044E554C4C");
    EXPECT_EQ(ValueHex(Variant(127)), "027F");
    EXPECT_EQ(ValueHex(Variant(-128)), "0280");
    EXPECT_EQ(ValueHex(Variant(128)), "038000");
    EXPECT_EQ(ValueHex(Variant(-32768)), "030080");
    EXPECT_EQ(ValueHex(Variant(32768)), "0400800000");
    EXPECT_EQ(ValueHex(Variant(uint8_t{200})), "03C800");
    EXPECT_EQ(ValueHex(Variant(1.5f)), "0F0000C03F");
    EXPECT_EQ(ValueHex(Variant(1.0)), "050000000000000080FF3F");
    EXPECT_EQ(ValueHex(Variant(Currency(1.5))), "10983A000000000000");
    EXPECT_EQ(ValueHex(Variant(TDateTime{1.0})), "11000000000000F03F");
    EXPECT_EQ(ValueHex(Variant(false)), "08");
    EXPECT_EQ(ValueHex(Variant(true)), "09");
    EXPECT_EQ(ValueHex(Variant("ab")), "06026162");
    EXPECT_EQ(ValueHex(Variant(u"ab")), "06026162");
    EXPECT_EQ(ValueHex(Variant(AnsiString(255, 'x'))).substr(0, 4), "06FF");
    EXPECT_EQ(ValueHex(Variant(AnsiString(256, 'x'))).substr(0, 12), "0C0001000078");
}

TEST_F(TParametresStreamTest, ReadingNarrowsSomeTypes) {
    EXPECT_EQ(Read("027F").Type(), varInteger);
    EXPECT_EQ(Read("0400800000").AsInteger(), 32768);
    EXPECT_EQ(Read("0F0000C03F").Type(), varDouble);
    EXPECT_EQ(Read("0F0000C03F").AsDouble(), 1.5);
    EXPECT_EQ(Read("050000000000000080FF3F").Type(), varDouble);
    EXPECT_EQ(Read("10983A000000000000").Type(), varCurrency);
    EXPECT_EQ(Read("11000000000000F03F").Type(), varDate);
    EXPECT_EQ(Read("06026162").Type(), varString);
    EXPECT_EQ(Read("0C02000000"
                   "6162")
                  .AsString(),
              "ab");
    EXPECT_EQ(Read("1202000000"
                   "61006200")
                  .AsString(),
              "ab");
    EXPECT_EQ(Read("1202000000"
                   "61006200")
                  .Type(),
              varString);
    EXPECT_TRUE(Read("07044E554C4C").IsNull());
    EXPECT_TRUE(Read("0703616263").IsNull());
    EXPECT_EQ(Read("08").Type(), varBoolean);
    EXPECT_TRUE(Read("09").AsBoolean());
}

TEST_F(TParametresStreamTest, ParametersStandInOrderAndLeaveNoTraceWhenNotWritable) {
    set.AddParam("A", 1);
    set.AddParam("B", 2);
    set.AddParam("C", 3);
    set.Writables({"A", "C"}, true);
    EXPECT_EQ(Hex(Stored(set)), std::string(kTag) +
                                    "01"
                                    "0701410201"
                                    "0701430203"
                                    "00");
}

TEST_F(TParametresStreamTest, TheSaveHandlerDecides) {
    set.AddParam("A", 1);
    set.AddParam("B", 2);
    set.SetWritable("A", true);
    AnsiString log;
    set.OnSavePRM = [&](TParametres* from, const AnsiString& name, const Variant& value, bool& proceed) {
        EXPECT_EQ(from, &set);
        log += name + VarToStr(value) + (proceed ? "+" : "-");
        proceed = !proceed;
    };
    EXPECT_EQ(Hex(Stored(set)), std::string(kTag) +
                                    "01"
                                    "0701420202"
                                    "00");
    EXPECT_EQ(log, "A1+B2-");
}

TEST_F(TParametresStreamTest, LoadingMergesAndFiresTheEvents) {
    set.AddParam("A", 1);
    set.AddParam("Z", 9);
    AnsiString log;
    set.OnSetValorPRM = [&](TParametres*, const AnsiString& name, const Variant& value) {
        log += name + VarToStr(value);
    };
    Load(set, Unhex(std::string(kTag) + "01"
                                        "0701610205"
                                        "0701420206"
                                        "00"));
    EXPECT_EQ(Names(set), "A Z B ");
    EXPECT_EQ(log, "A5B6");
    EXPECT_TRUE(set.GetWritable("A"));
    EXPECT_FALSE(set.GetWritable("Z"));
}

TEST_F(TParametresStreamTest, TheTagAloneChangesNothing) {
    set.AddParam("A", 1);
    Load(set, Unhex(kTag));
    EXPECT_EQ(Names(set), "A ");
}

TEST_F(TParametresStreamTest, AnotherValueAfterTheTagIsLeftThere) {
    TMemoryStream stream(Unhex(std::string(kTag) + "06026162"));
    set.LoadFromStream(&stream);
    EXPECT_EQ(TReader(stream).ReadString(), "ab");
}

TEST_F(TParametresStreamTest, NoStreamDoesNothing) {
    set.SaveToStream(nullptr);
    set.LoadFromStream(nullptr);
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresStreamTest, AnUnreadableTagIsExplained) {
    const AnsiString message = MessageOf([&] { Load(set, Unhex("0201")); });
    const AnsiString head =
        "Exception: Invalid Stream Format Error. Can't Load a TParametres from a Stream\nError Class: "
        "EReadError\nError message: ";
    EXPECT_EQ(message.substr(0, head.size()), head);
    EXPECT_GT(message.size(), head.size());
    EXPECT_EQ(MessageOf([&] { Load(set, ""); }).substr(0, head.size()), head);
}

TEST_F(TParametresStreamTest, AnotherTagIsRefusedWithItsCase) {
    EXPECT_EQ(
        MessageOf([&] { Load(set, Unhex("0603") + "abc"); }),
        "Exception: Invalid Stream Format.This Stream doesn't contain a valid TParametres(Const : VynParamStream not "
        "found, found abc");
    EXPECT_EQ(
        MessageOf([&] { Load(set, Unhex("060E") + "vynparamstream"); }),
        "Exception: Invalid Stream Format.This Stream doesn't contain a valid TParametres(Const : VynParamStream not "
        "found, found vynparamstream");
}

TEST_F(TParametresStreamTest, OtherValueTypesAreRefused) {
    for (const char* value : {"00", "0100", "0A00000000", "0B00", "0D", "0E00", "130100000000000000", "14", "FF"})
        EXPECT_EQ(MessageOf([&] { Load(set, Unhex(std::string(kTag) + "01070141" + value + "00")); }),
                  "EParametresError: ERROR Reading Properties of Component :\nInvalid Value of Parametre A")
            << value;
    EXPECT_EQ(set.Count(false), 0);
}

TEST_F(TParametresStreamTest, AStoredNameHasToBeValid) {
    EXPECT_EQ(MessageOf([&] {
                  Load(set, Unhex(std::string(kTag) + "01"
                                                      "070139"
                                                      "0201"
                                                      "00"));
              }),
              "EParametresError: Parametre 9 can't start with 9");
}

TEST_F(TParametresStreamTest, LongTextsComeBack) {
    const AnsiString text(100000, '\xE7');
    set.AddParam("A", text);
    set.SetWritable("A", true);
    TParametres other(nullptr);
    Load(other, Stored(set));
    EXPECT_EQ(other.GetParametreValue("A").AsString(), text);
}

TEST_F(TParametresStreamTest, TruncatedOrDamagedAnywhereItRaisesOrReadsAndNeverCrashes) {
    set.AddParam("Int", 70000);
    set.AddParam("Text", "some text");
    set.AddParam("Real", 2.5);
    set.AddParam("Date", TDateTime{36526.0});
    set.AddParam("Wide", AnsiString(300, 'w'));
    set.AddParam("Flag", true);
    set.Writables({"Int", "Text", "Real", "Date", "Wide", "Flag"}, true);
    const std::string bytes = Stored(set);
    int refused = 0;
    for (size_t length = 0; length < bytes.size(); ++length) {
        TParametres other(nullptr);
        try {
            Load(other, bytes.substr(0, length));
        } catch (const Exception&) {
            ++refused;
        }
    }
    // All but the tag alone and the tag with the list's first byte, which is taken for the end of the stream.
    EXPECT_EQ(refused, static_cast<int>(bytes.size()) - 2);
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        TParametres other(nullptr);
        try {
            Load(other, damaged);
            Stored(other);
        } catch (const Exception&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, static_cast<int>(bytes.size()));
}

TEST_F(TParametresStreamTest, TheFormHoldsTheListAsEventsVyn) {
    set.AddParam("A", 1);
    set.SetWritable("A", true);
    TMemoryStream stream;
    WriteComponentToStream(stream, set);
    EXPECT_EQ(stream.Bytes().find("EventsVyn"), std::string_view::npos);
    set.SaveParametres = true;
    stream.Clear();
    WriteComponentToStream(stream, set);
    EXPECT_NE(Hex(stream.Bytes()).find(Hex("EventsVyn") + "01070141020100"), std::string::npos);
    stream.SetPosition(0);
    TParametres other(nullptr);
    ReadComponentFromStream(stream, &other);
    EXPECT_EQ(other.GetParametreValue("A").AsInteger(), 1);
    EXPECT_TRUE(other.SaveParametres);
}

TEST_F(TParametresStreamTest, AnEmptySetIsNotInTheFormUnlessTheFormIsInherited) {
    set.SaveParametres = true;
    TMemoryStream plain, inherited;
    WriteComponentToStream(plain, set);
    EXPECT_EQ(plain.Bytes().find("EventsVyn"), std::string_view::npos);
    TParametres ancestor(nullptr);
    TWriter writer(inherited);
    writer.WriteDescendent(set, &ancestor);
    writer.Flush();
    EXPECT_NE(inherited.Bytes().find("EventsVyn"), std::string_view::npos);
}
