// What the pages of docs/formats show is what the code reads and writes.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "database/dictionaries.h"
#include "events/Ucampsbuscar.h"
#include "events/Ueventsvyn.h"
#include "foundation/Uparametres.h"
#include "legacy/files.h"
#include "page.h"
#include "platform/streams/reader.h"
#include "platform/streams/stream.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/system/version_resource.h"
#include "providers/legacy/pages.h"
#include "query/Uquerysql.h"

using namespace vyn;
using format_pages::Page;

namespace {

// The example of a page that shows a form both as bytes and as text.
void ExpectFormAndTextAgree(const Page& page) {
    const std::string bytes = page.ExampleBytes();
    const std::string text = page.ExampleText("object ");
    TViewStream binary(bytes);
    EXPECT_EQ(BinaryToText(binary), text);
    TMemoryStream made;
    TextToBinary(text, made);
    EXPECT_EQ(made.Bytes(), bytes);
}

}  // namespace

TEST(FormatPages, EveryPageHasItsGrammarLimitsAndExample) {
    const auto pages = Page::All();
    ASSERT_FALSE(pages.empty());
    for (const auto& name : pages) {
        const Page page(name);
        EXPECT_TRUE(page.HasHeading("Limits")) << name;
        EXPECT_TRUE(page.HasHeading("Example")) << name;
        if (name != "source-folder.md") {
            EXPECT_TRUE(page.HasHeading("Grammar")) << name;
        }
    }
}

TEST(FormatPages, TheIndexNamesEveryPage) {
    const std::string index = Page::Text("README.md");
    for (const auto& name : Page::All()) EXPECT_THAT(index, testing::HasSubstr("(" + name + ")"));
}

TEST(FormatPages, ExamplesOfStreamsAreWholeValues) {
    for (const char* name : {"values.md", "parameters.md", "resources.md", "tree.md", "components.md", "application.md",
                             "user-values.md"}) {
        const std::string bytes = Page(name).ExampleBytes();
        TViewStream stream(bytes);
        TReader reader(stream);
        int values = 0;
        for (; reader.BytesLeft() > 0; ++values) ASSERT_NO_THROW(reader.SkipValue()) << name;
        EXPECT_GT(values, 1) << name;
    }
}

TEST(FormatPages, TheValuesAreReadAsThePageSays) {
    const std::string bytes = Page("values.md").ExampleBytes();
    TViewStream stream(bytes);
    TReader reader(stream);
    EXPECT_EQ(reader.ReadInteger(), 5);
    EXPECT_EQ(reader.ReadInteger(), -1);
    EXPECT_EQ(reader.ReadInteger(), 200);
    EXPECT_EQ(reader.ReadInteger(), 70000);
    EXPECT_EQ(reader.ReadInt64(), 1099511627776);
    EXPECT_EQ(reader.ReadFloat(), 1.5L);
    EXPECT_EQ(static_cast<double>(reader.ReadFloat()), -0.1);
    EXPECT_EQ(reader.ReadString(), "A\xF1o");
    EXPECT_EQ(reader.ReadIdent(), "alClient");
    EXPECT_FALSE(reader.ReadBoolean());
    EXPECT_TRUE(reader.ReadBoolean());
    EXPECT_EQ(reader.ReadBinaryView(), "\x01\x02\xFF");
    EXPECT_EQ(reader.ReadValue(), vaSet);
    EXPECT_EQ(reader.ReadNameView(), "akLeft");
    EXPECT_EQ(reader.ReadNameView(), "akTop");
    EXPECT_EQ(reader.ReadNameView(), "");
    EXPECT_EQ(reader.ReadValue(), vaNil);
    EXPECT_EQ(reader.ReadSingle(), 0.25f);
    EXPECT_EQ(reader.ReadCurrency().Val, 125000);
    EXPECT_EQ(reader.ReadDate().Val, 46347.5);
    EXPECT_EQ(reader.ReadWideString(), u"A\u00F1o");
    reader.ReadListBegin();
    EXPECT_EQ(reader.ReadInteger(), 1);
    EXPECT_EQ(reader.ReadString(), "b");
    reader.ReadListEnd();
    EXPECT_EQ(reader.NextValue(), vaCollection);
    reader.SkipValue();
    EXPECT_EQ(reader.BytesLeft(), 0);
}

TEST(FormatPages, TheWriterWritesTheValuesOfThePage) {
    TMemoryStream stream;
    TWriter writer(stream);
    for (const int64_t value : {int64_t{5}, int64_t{-1}, int64_t{200}, int64_t{70000}, int64_t{1099511627776}}) {
        writer.WriteInteger(value);
    }
    writer.WriteFloat(1.5L);
    writer.WriteFloat(-0.1);
    writer.WriteString("A\xF1o");
    writer.WriteIdent("alClient");
    writer.WriteBoolean(false);
    writer.WriteBoolean(true);
    writer.WriteBinary("\x01\x02\xFF");
    writer.WriteValue(vaSet);
    for (const char* name : {"akLeft", "akTop", ""}) writer.WriteName(name);
    writer.WriteNil();
    writer.WriteSingle(0.25f);
    writer.WriteCurrency(Currency::FromScaled(125000));
    writer.WriteDate(TDateTime(46347.5));
    writer.WriteWideString(u"A\u00F1o");
    writer.WriteListBegin();
    writer.WriteInteger(1);
    writer.WriteString("b");
    writer.WriteListEnd();
    writer.Flush();
    // What is left is the collection, which only a form writes.
    const std::string bytes = Page("values.md").ExampleBytes();
    EXPECT_EQ(stream.Bytes(), bytes.substr(0, stream.Bytes().size()));
    EXPECT_EQ(bytes[stream.Bytes().size()], static_cast<char>(vaCollection));
}

TEST(FormatPages, TheFormIsItsText) { ExpectFormAndTextAgree(Page("form.md")); }

TEST(FormatPages, TheTextFormIsItsBytes) { ExpectFormAndTextAgree(Page("form-text.md")); }

TEST(FormatPages, TheParameterSetIsReadAndWrittenBack) {
    const std::string bytes = Page("parameters.md").ExampleBytes();
    TViewStream stream(bytes);
    TParametres set(nullptr);
    set.LoadFromStream(&stream);
    EXPECT_EQ(set.Count(false), 7);
    EXPECT_EQ(set.GetParametreValue("empresa").AsString(), "Comer\xE7 Mar");
    EXPECT_EQ(set.GetParametreValue("Any").AsInteger(), 2026);
    EXPECT_TRUE(set.GetParametreValue("Nota").IsNull());
    TMemoryStream written;
    set.SaveToStream(&written);
    EXPECT_EQ(written.Bytes(), bytes);
}

TEST(FormatPages, TheTableDictionaryIsReadAndWrittenBack) {
    const std::string bytes = Page("table-dictionary.md").ExampleBytes();
    TViewStream stream(bytes);
    TDataBaseVynDict dict(nullptr);
    dict.LoadFromStream(&stream);
    EXPECT_EQ(stream.Position(), stream.Size());
    ASSERT_EQ(dict.IndexOfTable("clients"), 0);
    EXPECT_EQ(dict.GetDataSetDictItem(0)->TableDisplayString, "Els clients.");
    EXPECT_EQ(dict.GetDataSetDictItem(0)->DataSetDict()->GetSQLField(0),
              (TSQLField{"ID", "Codi", "", "", "", "", 5, "", 300}));
    TMemoryStream written;
    dict.SaveToStream(&written);
    EXPECT_EQ(written.Bytes(), bytes);
}

TEST(FormatPages, TheQueryDictionaryIsReadAndWrittenBack) {
    const std::string bytes = Page("query-dictionary.md").ExampleBytes();
    TViewStream stream(bytes);
    TQuerySQLDict dict(nullptr);
    EXPECT_THROW(dict.LoadFromStream(&stream), EReadError);
    ASSERT_EQ(dict.Count(), 3);
    EXPECT_EQ(dict.IndexOfQuery("vendes"), 0);
    EXPECT_EQ(dict.GetQuerySQLItem(0)->QuerySQLStream().Bytes(), "\x01\x02\x03");
    dict.Delete(2);
    TMemoryStream written;
    dict.SaveToStream(&written);
    EXPECT_EQ(written.Bytes(), bytes);
}

TEST(FormatPages, TheFieldsOfAQueryAreReadAndWrittenBack) {
    const std::string bytes = Page("query-fields.md").ExampleBytes();
    TViewStream stream(bytes);
    TReader reader(stream);
    TQuerySQL query(nullptr);
    query.FieldsSQL()->LoadFromReader(&reader);
    EXPECT_EQ(reader.BytesLeft(), 0);
    ASSERT_EQ(query.Count(), 2);
    EXPECT_EQ(query.GetFieldSQL(0), (TFieldsSQLRec{"ID", "C.ID", "", "C.ID", "#,0", "", 1, "Codi", false}));
    EXPECT_EQ(query.GetFieldSQL(1), (TFieldsSQLRec{"TOTAL", "SUM(X, 1)", "", "TOTAL", "", "", 0, "", false}));
    TMemoryStream written;
    {
        TWriter writer(written);
        query.FieldsSQL()->WriteToWriter(&writer);
    }
    EXPECT_EQ(written.Bytes(), bytes);
}

TEST(FormatPages, TheSearchFieldsAreRead) {
    const std::string bytes = Page("search-fields.md").ExampleBytes();
    TViewStream stream(bytes);
    TReader reader(stream);
    TCampsBuscar fields(nullptr);
    fields.ReadData(reader);
    EXPECT_EQ(reader.BytesLeft(), 0);
    ASSERT_EQ(fields.Count(), 2);
    EXPECT_EQ(fields.GetCampsBuscarComponent(0),
              (TCampBuscar{nullptr, "EName", 1, 0, "Client", -1, "", "", 7, true, "*", {{"A"}}}));
    EXPECT_EQ(fields.GetCampsBuscarComponent(1),
              (TCampBuscar{nullptr, "ECode", 2, 0, "", 0, "", "", 0, false, "", {}}));
}

TEST(FormatPages, TheEventScriptsAreReadAndWrittenBack) {
    const std::string bytes = Page("event-scripts.md").ExampleBytes();
    TViewStream stream(bytes);
    TReader reader(stream);
    TEventsVyn events(nullptr);
    events.ReadData(reader);
    EXPECT_EQ(reader.BytesLeft(), 0);
    ASSERT_EQ(events.Count(), 2);
    EXPECT_EQ(events.GetEvent(0), (TEventVyn{"Sum",
                                             {{{tdcParametre, "TOTAL"}, {tdcExpresion, "PRICE*QTY"}},
                                              {{tdcPropietat, "ETotal.Text"}, {tdcParametre, "TOTAL"}}}}));
    EXPECT_EQ(events.GetEvent(1), (TEventVyn{"Rest", {}}));
    TMemoryStream written;
    {
        TWriter writer(written);
        events.WriteData(writer);
    }
    EXPECT_EQ(written.Bytes(), bytes);
}

TEST(FormatPages, TheVersionResourceIsRead) {
    const VersionResource resource{Page("version-resource.md").ExampleBytes()};
    EXPECT_EQ(resource.Query("\\VarFileInfo\\Translation"), std::string_view("\x03\x04\xB0\x04", 4));
    EXPECT_EQ(resource.QueryText("\\StringFileInfo\\040304B0\\FileVersion"), "7.0");
    const auto fixed = resource.Query("\\");
    ASSERT_TRUE(fixed.has_value());
    EXPECT_EQ(fixed->size(), 52u);
    EXPECT_EQ(fixed->substr(28, 4), std::string_view("\2\0\0\0", 4));
}

TEST(FormatPages, TheDesignOfALegacyTableIsRead) {
    const std::string file = legacy_files::Bytes(legacy_files::Path("trade97.mdb"));
    const legacy::Pages pages(file, "", {});
    legacy::Table table;
    table.Columns.resize(1);
    table.Columns[0].Name = "Nom";
    const std::string bytes = Page("legacy-database.md").ExampleBytes();
    legacy::ReadProperties(pages, bytes, table);
    EXPECT_TRUE(table.Columns[0].Required);
    EXPECT_EQ(table.Columns[0].Default, "\"x\"");
}
