#include <cstdio>
#include <cstdlib>
#include <limits>

#include "conformance/engines.h"
#include "platform/text/exceptions.h"
#include "platform/text/windows1252.h"
#include "platform/values/date_time.h"

using namespace conformance;

namespace {

double Instant(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int millisecond = 0) {
    return JoinDateTime(EncodeDate(year, month, day), EncodeTime(hour, minute, second, millisecond));
}

// The same to the thousandth of a second.
AnsiString Shown(TDateTime value) { return FormatDateTime("yyyy-mm-dd hh:nn:ss.zzz", value); }

}  // namespace

TEST_P(Conformance, DatesAtTheEdgesComeBackTheSame) {
    mine.Execute("CREATE TABLE moments (id INTEGER PRIMARY KEY, moment " + GetParam().DateTime + ", dia DATE)");
    const auto table = Table(mine, "moments");
    const double moments[] = {Instant(1753, 1, 1),
                              Instant(1753, 1, 1, 6, 30, 0, 1),
                              Instant(1899, 12, 29),
                              Instant(1899, 12, 29, 23, 59, 59, 999),
                              Instant(1899, 12, 30),
                              Instant(1899, 12, 30, 0, 0, 0, 1),
                              Instant(1899, 12, 31, 12, 0, 0),
                              Instant(1900, 2, 28, 23, 59, 59, 999),
                              Instant(1970, 1, 1),
                              Instant(1999, 12, 31, 23, 59, 59, 999),
                              Instant(2000, 2, 29, 10, 20, 30, 250),
                              Instant(2400, 2, 29, 0, 0, 0, 7),
                              Instant(1, 1, 1),
                              Instant(9999, 12, 31, 23, 59, 59, 999)};
    int id = 0;
    for (const double moment : moments) {
        table->Append();
        table->FieldByName("id")->SetAsInteger(++id);
        table->FieldByName("moment")->SetAsDateTime(TDateTime(moment));
        table->FieldByName("dia")->SetAsDateTime(TDateTime(moment));
        table->Post();
    }
    const auto again = Query(theirs, "SELECT * FROM moments ORDER BY id");
    for (const double moment : moments) {
        SCOPED_TRACE(Shown(TDateTime(moment)));
        EXPECT_EQ(Shown(again->FieldByName("moment")->AsDateTime()), Shown(TDateTime(moment)));
        EXPECT_EQ(FormatDateTime("yyyy-mm-dd", again->FieldByName("dia")->AsDateTime()),
                  FormatDateTime("yyyy-mm-dd", TDateTime(moment)));
        again->Next();
    }
    // And they are found by what they are.
    EXPECT_EQ(Value("SELECT id FROM moments WHERE moment = #02/29/2000 10:20:30.250#"), "11");
    EXPECT_EQ(Value("SELECT id FROM moments WHERE moment = #12/30/1899#"), "5");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM moments WHERE moment < #12/30/1899#"), "5");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM moments WHERE dia = #12/29/1899#"), "2");
    EXPECT_TRUE(again->Locate("moment", Variant(TDateTime(Instant(1899, 12, 29, 23, 59, 59, 999)))));
    EXPECT_EQ(again->FieldByName("id")->AsInteger(), 4);
}

TEST_P(Conformance, MomentsAreChangedAndComparedToTheMillisecond) {
    mine.Execute("CREATE TABLE moments (id INTEGER PRIMARY KEY, moment " + GetParam().DateTime + ")");
    mine.Execute("INSERT INTO moments VALUES (1, #01/01/1753 06:30:00.001#)");
    const auto table = Table(mine, "moments");
    table->Edit();
    table->FieldByName("moment")->SetAsDateTime(TDateTime(Instant(1899, 12, 29, 12, 0, 0, 500)));
    table->Post();
    table->Edit();
    table->FieldByName("moment")->SetAsDateTime(TDateTime(Instant(2400, 1, 1, 0, 0, 0, 1)));
    table->Post();
    EXPECT_EQ(Shown(Query(theirs, "SELECT moment FROM moments")->Fields(0)->AsDateTime()), "2400-01-01 00:00:00.001");
    table->Delete();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM moments"), "0");
}

TEST_P(Conformance, TimesOfTheDayHaveNoDate) {
    mine.Execute("CREATE TABLE hores (id INTEGER PRIMARY KEY, hora TIME)");
    const auto table = Table(mine, "hores");
    int id = 0;
    for (const double time : {EncodeTime(0, 0, 0), EncodeTime(10, 20, 30, 1), EncodeTime(23, 59, 59, 999)}) {
        table->Append();
        table->FieldByName("id")->SetAsInteger(++id);
        table->FieldByName("hora")->SetAsDateTime(TDateTime(time));
        table->Post();
    }
    const auto again = Query(theirs, "SELECT hora FROM hores ORDER BY id");
    EXPECT_EQ(again->Fields(0)->DataType(), ftTime);
    EXPECT_EQ(Shown(again->Fields(0)->AsDateTime()), "1899-12-30 00:00:00.000");
    again->Next();
    EXPECT_EQ(Shown(again->Fields(0)->AsDateTime()), "1899-12-30 10:20:30.001");
    EXPECT_EQ(again->Fields(0)->DisplayText(), "10:20:30");
    again->Next();
    EXPECT_EQ(Shown(again->Fields(0)->AsDateTime()), "1899-12-30 23:59:59.999");
}

TEST_P(Conformance, DecimalsAreNeverRounded) {
    mine.Execute("CREATE TABLE imports (id INTEGER PRIMARY KEY, import DECIMAL(18,4))");
    const auto table = Table(mine, "imports");
    EXPECT_EQ(table->FieldByName("import")->DataType(), ftCurrency);
    int id = 0;
    const int64_t amounts[] = {1, -1, 3, 10000, 123456789, -12345678912345, 999999999999999, 900000000000000000};
    for (const int64_t amount : amounts) {
        table->Append();
        table->FieldByName("id")->SetAsInteger(++id);
        table->FieldByName("import")->SetAsCurrency(Currency::FromScaled(amount));
        table->Post();
        EXPECT_EQ(table->FieldByName("import")->AsCurrency().Val, amount);
    }
    const auto again = Query(theirs, "SELECT import FROM imports ORDER BY id");
    for (const int64_t amount : amounts) {
        EXPECT_EQ(again->Fields(0)->AsCurrency().Val, amount);
        again->Next();
    }
    // What the engine cannot keep to the last digit it refuses; nothing is rounded in silence.
    table->Append();
    table->FieldByName("id")->SetAsInteger(100);
    table->FieldByName("import")->SetAsCurrency(Currency::FromScaled(999999999999999999));
    const AnsiString message = MessageOf([&] { table->Post(); });
    if (message == "no error")
        EXPECT_EQ(Query(theirs, "SELECT import FROM imports WHERE id = 100")->Fields(0)->AsCurrency().Val,
                  999999999999999999);
    else
        EXPECT_EQ(message, "EDatabaseError: This database keeps 15 digits of a number: 99999999999999.9999 has more");
}

TEST_P(Conformance, DecimalsAreComparedAndSummedExactly) {
    mine.Execute("CREATE TABLE imports (id INTEGER PRIMARY KEY, import DECIMAL(12,2))");
    mine.Execute("INSERT INTO imports VALUES (1, 0.1)");
    mine.Execute("INSERT INTO imports VALUES (2, 0.2)");
    const auto sum = Query(theirs, "SELECT SUM(import) AS total FROM imports");
    EXPECT_EQ(sum->FieldByName("total")->AsCurrency().Val, 3000);
    const auto table = Table(mine, "imports");
    theirs.Execute("UPDATE imports SET import = 0.3 WHERE id = 1");
    table->Edit();
    table->FieldByName("import")->SetAsString("0.15");
    EXPECT_NE(MessageOf([&] { table->Post(); }), "no error");
    table->Cancel();
    table->Next();
    table->Edit();
    table->FieldByName("import")->SetAsString("0.25");
    table->Post();
    EXPECT_EQ(Value("SELECT id FROM imports WHERE import = 0.25"), "2");
}

TEST_P(Conformance, WholeNumbersReachTheirLimits) {
    mine.Execute("CREATE TABLE nombres (id INTEGER PRIMARY KEY, petit SMALLINT, gran BIGINT)");
    const auto table = Table(mine, "nombres");
    EXPECT_EQ(table->FieldByName("petit")->DataType(), ftSmallint);
    EXPECT_EQ(table->FieldByName("gran")->DataType(), ftLargeint);
    for (const int64_t big : {INT64_MIN, int64_t{-1}, INT64_MAX}) {
        table->Append();
        table->FieldByName("id")->SetAsInteger(big < 0 ? (big == -1 ? 0 : INT32_MIN) : INT32_MAX);
        table->FieldByName("petit")->SetAsInteger(big < 0 ? INT16_MIN : INT16_MAX);
        table->FieldByName("gran")->SetAsInteger(big);
        table->Post();
    }
    const auto again = Query(theirs, "SELECT * FROM nombres ORDER BY id");
    EXPECT_EQ(again->FieldByName("id")->AsInteger(), INT32_MIN);
    EXPECT_EQ(again->FieldByName("gran")->AsInteger(), INT64_MIN);
    again->Last();
    EXPECT_EQ(again->FieldByName("id")->AsInteger(), INT32_MAX);
    EXPECT_EQ(again->FieldByName("petit")->AsInteger(), INT16_MAX);
    EXPECT_EQ(again->FieldByName("gran")->AsInteger(), INT64_MAX);
    table->Edit();
    EXPECT_EQ(MessageOf([&] { table->FieldByName("petit")->SetAsInteger(INT16_MAX + 1); }),
              "EDatabaseError: 32768 is not a valid value for field 'petit'. The allowed range is -32768 to 32767");
}

TEST_P(Conformance, RealNumbersComeBackToTheLastBit) {
    mine.Execute("CREATE TABLE reals (id INTEGER PRIMARY KEY, r DOUBLE PRECISION)");
    const auto table = Table(mine, "reals");
    const double reals[] = {0.1,
                            1.0 / 3,
                            -2.5,
                            0,
                            1e300,
                            -1e-300,
                            123456789012345678.0,
                            std::numeric_limits<double>::max(),
                            std::numeric_limits<double>::denorm_min()};
    int id = 0;
    for (const double real : reals) {
        table->Append();
        table->FieldByName("id")->SetAsInteger(++id);
        table->FieldByName("r")->SetAsFloat(real);
        table->Post();
    }
    const auto again = Query(theirs, "SELECT r FROM reals ORDER BY id");
    for (const double real : reals) {
        char text[40];
        std::snprintf(text, sizeof text, "%.*g", GetParam().RealDigits, real);
        EXPECT_EQ(again->Fields(0)->AsFloat(), std::strtod(text, nullptr));
        again->Next();
    }
    // As a condition of the next change, too.
    table->First();
    table->Edit();
    table->FieldByName("r")->SetAsFloat(0.2);
    table->Post();
    table->Edit();
    table->FieldByName("r")->SetAsFloat(0.3);
    table->Post();
    EXPECT_EQ(Query(theirs, "SELECT r FROM reals WHERE id = 1")->Fields(0)->AsFloat(), 0.3);
}

TEST_P(Conformance, EveryCharacterOfWindows1252IsKept) {
    AnsiString all;
    for (int c = 1; c < 256; ++c)
        if (c != 0x81 && c != 0x8D && c != 0x8F && c != 0x90 && c != 0x9D) all += static_cast<char>(c);
    mine.Execute("CREATE TABLE textos (id INTEGER PRIMARY KEY, t VARCHAR(300))");
    const auto table = Table(mine, "textos");
    table->Append();
    table->FieldByName("id")->SetAsInteger(1);
    table->FieldByName("t")->SetAsString(all);
    table->Post();
    EXPECT_EQ(Value("SELECT t FROM textos"), all);
    EXPECT_TRUE(table->Locate("t", Variant(all)));
}

TEST_P(Conformance, AnEmptyTextIsNoNull) {
    const auto table = Table(mine, "clients");
    table->Append();
    table->FieldByName("nom")->SetAsString("");
    table->FieldByName("nota")->SetAsString("");
    table->Post();
    const auto again = Query(theirs, "SELECT nota FROM clients WHERE id = 4");
    EXPECT_FALSE(again->Fields(0)->IsNull());
    EXPECT_EQ(again->Fields(0)->AsString(), "");
    EXPECT_EQ(Value("SELECT COUNT(*) FROM clients WHERE nota IS NULL"), "1");
}

TEST_P(Conformance, BlanksAndBreaksInTextsStay) {
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("nota")->SetAsString("  a\t\r\n\\ \" ' % _ ; -- /* ");
    table->Post();
    EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 1"), "  a\t\r\n\\ \" ' % _ ; -- /* ");
}

TEST_P(Conformance, ATextThatIsTooLongIsRefusedByItsField) {
    const auto table = Table(mine, "clients");
    table->Edit();
    EXPECT_EQ(table->FieldByName("nom")->Size(), 20);
    EXPECT_EQ(MessageOf([&] { table->FieldByName("nom")->SetAsString("123456789012345678901"); }),
              "EDatabaseError: Field 'nom' takes at most 20 characters, not 21");
    // Characters, not bytes.
    table->FieldByName("nom")->SetAsString(AnsiString(20, '\xE9'));
    table->Post();
    EXPECT_EQ(Value("SELECT nom FROM clients WHERE id = 1"), AnsiString(20, '\xE9'));
}

TEST_P(Conformance, ATextWithANulIsKeptWholeOrRefused) {
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("nota")->SetAsString(AnsiString("a\0b", 3));
    const AnsiString message = MessageOf([&] { table->Post(); });
    if (message == "no error") {
        EXPECT_EQ(Query(theirs, "SELECT nota FROM clients WHERE id = 1")->Fields(0)->AsString(), AnsiString("a\0b", 3));
    } else {
        EXPECT_EQ(message, "EDatabaseError: The database cannot hold a NUL character in a text or name");
        EXPECT_EQ(Value("SELECT nota FROM clients WHERE id = 1"), "a");
    }
}

TEST_P(Conformance, BytesOfTenMegabytesComeBackTheSame) {
    std::string large(10 * 1024 * 1024, '\0');
    for (size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>((i * 2654435761u) >> 13);
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("foto")->SetRawBytes(large);
    table->Post();
    EXPECT_TRUE(table->FieldByName("foto")->RawBytes() == large);
    const auto again = Query(theirs, "SELECT foto FROM clients WHERE id = 1");
    EXPECT_TRUE(again->Fields(0)->RawBytes() == large);
    // And another change of the same record, with the bytes as they are.
    table->Edit();
    table->FieldByName("nom")->SetAsString("with a picture");
    table->FieldByName("foto")->SetRawBytes("");
    table->Post();
    EXPECT_FALSE(Query(theirs, "SELECT foto FROM clients WHERE id = 1")->Fields(0)->IsNull());
    EXPECT_EQ(Query(theirs, "SELECT foto FROM clients WHERE id = 1")->Fields(0)->RawBytes(), "");
}

TEST_P(Conformance, TextsOfTenMegabytesComeBackTheSame) {
    AnsiString large;
    while (large.size() < 10 * 1024 * 1024) large += "l\xEDnia " + std::to_string(large.size()) + "\r\n";
    const auto table = Table(mine, "clients");
    table->Edit();
    table->FieldByName("text")->SetAsString(large);
    table->Post();
    EXPECT_TRUE(Value("SELECT text FROM clients WHERE id = 1") == large);
}

TEST_P(Conformance, TablesOfThreeHundredColumnsAreReadAndWritten) {
    AnsiString columns = "c000 INTEGER PRIMARY KEY";
    for (int i = 1; i < 300; ++i)
        columns += ", c" +
                   std::string(i < 10    ? "00"
                               : i < 100 ? "0"
                                         : "") +
                   std::to_string(i) + (i % 3 == 0 ? " INTEGER" : " VARCHAR(10)");
    mine.Execute("CREATE TABLE ample (" + columns + ")");
    const auto table = Table(mine, "ample");
    ASSERT_EQ(table->FieldCount(), 300);
    table->Append();
    for (int i = 0; i < 300; i += 2) table->Fields(i)->SetAsString(std::to_string(i));
    table->Post();
    table->Edit();
    table->Fields(299)->SetAsString("the last");
    table->Post();
    const auto again = Query(theirs, "SELECT * FROM ample");
    for (int i = 0; i < 299; ++i)
        EXPECT_EQ(again->Fields(i)->AsString(), i % 2 == 0 ? AnsiString(std::to_string(i)) : AnsiString());
    EXPECT_EQ(again->Fields(299)->AsString(), "the last");
    table->Delete();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM ample"), "0");
}

TEST_P(Conformance, NamesMayBeAnythingThatStandsBetweenBrackets) {
    mine.Execute(
        "CREATE TABLE [order lines] ([select] INTEGER PRIMARY KEY, [from x] VARCHAR(10), [a\"b] INTEGER, "
        "[pre\xE7o %] INTEGER, [MixedCase] INTEGER)");
    const auto table = Table(mine, "order lines");
    table->Append();
    table->FieldByName("select")->SetAsInteger(1);
    table->FieldByName("from x")->SetAsString("x");
    table->FieldByName("a\"b")->SetAsInteger(2);
    table->FieldByName("pre\xE7o %")->SetAsInteger(3);
    table->FieldByName("mixedcase")->SetAsInteger(4);
    table->Post();
    table->Edit();
    table->FieldByName("a\"b")->SetAsInteger(5);
    table->FieldByName("MixedCase")->SetAsInteger(6);
    table->Post();
    const auto query =
        Query(theirs, "SELECT [select], [from x] AS [as], [a\"b], [pre\xE7o %] FROM [order lines] WHERE [select] = 1");
    EXPECT_EQ(query->FieldByName("as")->AsString(), "x");
    EXPECT_EQ(query->FieldByName("a\"b")->AsInteger(), 5);
    EXPECT_EQ(query->FieldByName("pre\xE7o %")->AsInteger(), 3);
    query->Edit();
    query->FieldByName("as")->SetAsString("y");
    query->Post();
    EXPECT_EQ(Value("SELECT [from x] FROM [order lines]"), "y");
    table->Close();
    table->SetIndexFieldNames("from x;select");
    table->Open();
    table->Delete();
    EXPECT_EQ(Value("SELECT COUNT(*) FROM [order lines]"), "0");
}

TEST_P(Conformance, NamesAreFoundWhateverTheirCase) {
    mine.Execute("CREATE TABLE [Comandes] ([Numero] INTEGER PRIMARY KEY, [NomClient] VARCHAR(10))");
    mine.Execute("INSERT INTO [Comandes] VALUES (1, 'Soler')");
    EXPECT_EQ(Value("SELECT nomclient FROM comandes WHERE NUMERO = 1"), "Soler");
    EXPECT_EQ(Value("SELECT [NOMCLIENT] FROM [COMANDES]"), "Soler");
    const auto table = Table(mine, "CLIENTS");
    EXPECT_EQ(table->RecordCount(), 3);
    table->Edit();
    table->FieldByName("NOM")->SetAsString("Mine");
    table->Post();
    EXPECT_EQ(Value("SELECT [NOM] FROM [Clients] WHERE [Id] = 1"), "Mine");
}
