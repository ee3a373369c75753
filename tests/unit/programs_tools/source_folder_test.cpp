#include "programs/tools/source_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "foundation/Uparametres.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "platform/text/exceptions.h"
#include "programs/tools/application_model.h"
#include "programs/tools/dump.h"

using namespace vyn;
namespace fs = std::filesystem;

class SourceFolder : public testing::Test {
  protected:
    void SetUp() override {
        folder_ =
            testing::TempDir() + "vyn-source-" + testing::UnitTest::GetInstance()->current_test_info()->name() + "/";
        fs::remove_all(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    static std::string Form(const std::string& text) {
        TMemoryStream stream;
        TextToBinary(text, stream);
        return std::string(stream.Bytes());
    }

    // A small application with every kind of entry.
    static ApplicationModel Sample() {
        ApplicationModel model;
        model.Saved = TDateTime(46347.5);
        TVynAppSavedInfo info;
        info.Version = 5401;
        info.SaveDate = TDateTime(46347.123456789);
        info.SavedBy = "Anna \"A\"";
        info.SaveCount = 3;
        info.EditTime = TDateTime(0.25);
        model.Info = info;
        TMemoryStream form(
            Form("object FRMMenu: TFRMMenu\n  Caption = 'Men\xC3\xBA'\n  object L: TLabel\n  end\nend\n"));
        model.App->Components().InsertComponent({1, 4, "Main menu"}, form);
        TMemoryStream bytes(std::string_view("\x00\x01no form", 9));
        model.App->Components().InsertComponent({7, 2, "Bytes \xE9"}, bytes);
        model.App->Tree().Add({1, -1, 1, 1, 0, "Sales"});
        model.App->Tree().Add({2, 1, 2, 0, 4, "Files"});
        model.App->Tree().Add({3, 1, 1, 7, 4, "Comandes\xE0"});
        model.App->Tree().Add({4, 2, 1, 1, 4, "Inner"});
        model.App->Recursos().InsertTRecursos({7, 1, "", 3}, bytes);
        model.App->Recursos().InsertTRecursos({0, 0, "zero", -1}, form);
        return model;
    }
    static std::string Saved(ApplicationModel& model) {
        TMemoryStream stream;
        SaveApplication(model, stream);
        return std::string(stream.Bytes());
    }
    SourceRemarks Export(const std::string& bytes) {
        TMemoryStream stream(bytes);
        return ExportSourceFolder(stream, folder_);
    }
    std::string Build(SourceRemarks* errors = nullptr) {
        TMemoryStream stream;
        const SourceRemarks found = BuildSourceFolder(folder_, stream);
        if (errors)
            *errors = found;
        else
            EXPECT_TRUE(found.empty()) << found.front().Sentence();
        return std::string(stream.Bytes());
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(folder_ + name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(folder_ + name, std::ios::binary) << text;
    }
    // Every file of the folder with its bytes.
    std::map<std::string, std::string> Contents() const {
        std::map<std::string, std::string> contents;
        for (const auto& entry : fs::recursive_directory_iterator(folder_))
            if (entry.is_regular_file()) {
                const std::string name = fs::relative(entry.path(), folder_).string();
                contents[name] = Read(name);
            }
        return contents;
    }
    void Replace(const std::string& name, const std::string& from, const std::string& to) {
        std::string text = Read(name);
        const size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        Write(name, text.replace(at, from.size(), to));
    }
    std::vector<std::string> Errors() {
        SourceRemarks errors;
        const std::string bytes = Build(&errors);
        if (!errors.empty()) EXPECT_EQ(bytes, "");
        std::vector<std::string> sentences;
        for (const SourceRemark& error : errors) sentences.push_back(error.Sentence().substr(folder_.size()));
        return sentences;
    }

    std::string folder_;
};

TEST_F(SourceFolder, IsWrittenAsDocumented) {
    ApplicationModel model = Sample();
    EXPECT_TRUE(Export(Saved(model)).empty());
    EXPECT_EQ(Read("application.json"), R"({
  "format": 54,
  "saved": "2026-11-21T12:00:00",
  "info": {"version": 5401, "saveDate": 46347.123456789, "savedBy": "Anna \"A\"", "saveCount": 3, "editTime": 0.25},
  "components": [
    {"id": 1, "type": 4, "name": "Main menu", "file": "components/1.form"},
    {"id": 7, "type": 2, "name": "Bytes é", "file": "components/7.bin"}
  ],
  "tree": [
    {"id": 1, "child": 1, "component": 1, "type": 0, "name": "Sales", "nodes": [
      {"id": 3, "child": 1, "component": 7, "type": 4, "name": "Comandesà", "nodes": []},
      {"id": 2, "child": 2, "component": 0, "type": 4, "name": "Files", "nodes": [
        {"id": 4, "child": 1, "component": 1, "type": 4, "name": "Inner", "nodes": []}
      ]}
    ]}
  ],
  "resources": [
    {"id": 7, "parent": 1, "name": "", "type": 3, "file": "resources/7.bin"},
    {"id": 0, "parent": 0, "name": "zero", "type": -1, "file": "resources/0.form"}
  ]
}
)");
    EXPECT_EQ(Read("components/1.form"),
              "object FRMMenu: TFRMMenu\n  Caption = 'Menú'\n  object L: TLabel\n  end\nend\n");
}

TEST_F(SourceFolder, ExportThenBuildGivesTheFilesBytes) {
    ApplicationModel model = Sample();
    const std::string bytes = Saved(model);
    Export(bytes);
    EXPECT_EQ(Build(), bytes);
}

TEST_F(SourceFolder, BuildThenExportGivesTheSameFolder) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    const auto first = Contents();
    Export(Build());
    EXPECT_EQ(Contents(), first);
}

TEST_F(SourceFolder, AnEmptyApplicationWithoutInfoComesBack) {
    ApplicationModel model;
    model.Saved = TDateTime(46000.000001);
    const std::string bytes = Saved(model);
    Export(bytes);
    EXPECT_EQ(Read("application.json"),
              "{\n  \"format\": 54,\n  \"saved\": 46000.000001,\n  \"components\": [],\n  \"tree\": [],\n  "
              "\"resources\": []\n}\n");
    EXPECT_EQ(Build(), bytes);
}

TEST_F(SourceFolder, AFileWrittenOtherwiseIsKeptWhole) {
    ApplicationModel model = Sample();
    std::string bytes = Saved(model);
    bytes.replace(bytes.find("VYN"), 3, "vyn");
    const SourceRemarks remarks = Export(bytes + "tail");
    ASSERT_EQ(remarks.size(), 1u);
    EXPECT_EQ(
        remarks[0].Sentence(),
        folder_ + "original.bin: the file's own bytes are kept: it was not written as this system writes applications");
    EXPECT_EQ(Build(), bytes + "tail");
    const auto first = Contents();
    Export(Build());
    EXPECT_EQ(Contents(), first);
    // A change in the folder wins over the kept bytes.
    Replace("application.json", "Main menu", "Main MENU");
    EXPECT_NE(Build().find("Main MENU"), std::string::npos);
}

TEST_F(SourceFolder, AFormThatTextCannotGiveBackIsKeptAsBytes) {
    ApplicationModel model = Sample();
    TMemoryStream odd(Form("object A: T\nend") + "x");
    model.App->Components().InsertComponent({9, 2, "odd"}, odd);
    const std::string bytes = Saved(model);
    const SourceRemarks remarks = Export(bytes);
    ASSERT_EQ(remarks.size(), 1u);
    EXPECT_EQ(remarks[0].Sentence(),
              folder_ + "components/9.bin: kept as bytes: its bytes are not what the text would give");
    EXPECT_EQ(Build(), bytes);
}

TEST_F(SourceFolder, ASecondExportRemovesWhatIsNoLongerThere) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    model.App->Components().DeleteComponent(7);
    Write("components/notes.txt", "mine");
    Export(Saved(model));
    EXPECT_FALSE(fs::exists(folder_ + "components/7.bin"));
    EXPECT_TRUE(fs::exists(folder_ + "components/notes.txt"));
}

TEST_F(SourceFolder, AFolderWithOtherThingsIsNotWrittenInto) {
    fs::create_directories(folder_);
    Write("letter.txt", "dear");
    ApplicationModel model = Sample();
    EXPECT_THROW(Export(Saved(model)), Exception);
}

TEST_F(SourceFolder, EveryErrorIsReportedWithItsFileAndLine) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("components/1.form", "Caption = ", "Caption 9 ");
    Replace("application.json", "\"type\": 2, \"name\": \"Bytes é\"", "\"type\": \"x\", \"name\": \"Bytes \u03A9\"");
    Replace("application.json", "\"id\": 4,", "\"id\": 3,");
    Replace("application.json", "resources/7.bin", "resources/8.bin");
    const auto errors = Errors();
    ASSERT_EQ(errors.size(), 5u);
    EXPECT_EQ(errors[0], "components/1.form:2: a property, an object or \"end\" was expected, \"Caption\" was found");
    EXPECT_EQ(errors[1], "application.json:7: \"type\": an integer was expected");
    EXPECT_THAT(errors[2], testing::StartsWith("application.json:7: \"name\": "));
    EXPECT_EQ(errors[3], "application.json:13: the node 3 is there already");
    EXPECT_THAT(errors[4], testing::StartsWith("resources/8.bin: Cannot open file "));
}

TEST_F(SourceFolder, ACharacterThatTheFrameworkCannotHoldIsNamed) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("components/1.form", "Menú", "Men\u03A9");
    const auto errors = Errors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_THAT(errors[0], testing::AllOf(testing::StartsWith("components/1.form:2: "), testing::HasSubstr("U+03A9")));
}

TEST_F(SourceFolder, BrokenJsonIsReportedWithItsLine) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("application.json", "\"format\": 54,", "\"format\": 54");
    const auto errors = Errors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_THAT(errors[0], testing::StartsWith("application.json:3: "));
}

TEST_F(SourceFolder, ATreeThatIsNoneIsReported) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("application.json", "\"id\": 3, \"child\": 1, \"component\": 7, \"type\": 4",
            "\"id\": 0, \"child\": 1, \"component\": 7, \"type\": 4");
    const auto errors = Errors();
    ASSERT_EQ(errors.size(), 1u);
    EXPECT_THAT(errors[0], testing::StartsWith("application.json:11: Error in TTreeVyn:"));
}

TEST_F(SourceFolder, ADateThatNoApplicationOpensWithIsReported) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("application.json", "\"saved\": \"2026-11-21T12:00:00\"", "\"saved\": 36500.0");
    EXPECT_THAT(Errors(),
                testing::ElementsAre("application.json:2: \"saved\": a date after 1999-12-06T00:00:00 was expected"));
    Replace("application.json", "\"saved\": 36500.0", "\"saved\": 36500.5");
    EXPECT_THAT(Errors(), testing::IsEmpty());
}

TEST_F(SourceFolder, AFileOutsideTheFolderIsRefused) {
    ApplicationModel model = Sample();
    Export(Saved(model));
    Replace("application.json", "components/7.bin", "../secret.bin");
    EXPECT_THAT(Errors(), testing::ElementsAre(
                              "application.json:7: \"file\": a .form or .bin file inside the folder was expected"));
}

TEST_F(SourceFolder, AMissingFolderIsAnError) {
    EXPECT_THAT(Errors(), testing::ElementsAre(testing::StartsWith("application.json: Cannot open file ")));
}

TEST(Dump, NamesEveryPartOfAForm) {
    TMemoryStream stream;
    TextToBinary(
        "inherited A: T [2]\n N = 1\n S = 'x'\n L = (1 'a')\n C = <item [1]\n P = [a]\n end>\n B = {0A}\n object C: "
        "U\n end\nend",
        stream);
    stream.SetPosition(0);
    EXPECT_EQ(
        DumpStream(stream).dump(),
        R"({"kind":"form","form":{"class":"T","name":"A","flags":3,"position":2,"properties":[)"
        R"({"name":"N","type":"int8","value":1},{"name":"S","type":"string","value":"x"},)"
        R"({"name":"L","type":"list","value":[1,"a"]},)"
        R"({"name":"C","type":"collection","value":[{"index":1,"properties":[{"name":"P","type":"set","value":["a"]}]}]},)"
        R"({"name":"B","type":"binary","value":"0A"}],)"
        R"("children":[{"class":"U","name":"C","flags":0,"position":null,"properties":[],"children":[]}]}})");
}

TEST(Dump, NamesEveryPartOfAnApplication) {
    ApplicationModel model;
    model.Saved = TDateTime(46000.5);
    TMemoryStream form;
    TextToBinary("object A: TFRMMenu\nend", form);
    model.App->Components().InsertComponent({1, 4, "M"}, form);
    model.App->Tree().Add({1, -1, 1, 1, 0, "Root"});
    TMemoryStream bytes("abc");
    model.App->Recursos().InsertTRecursos({5, 1, "R", 2}, bytes);
    TMemoryStream stream;
    SaveApplication(model, stream);
    stream.SetPosition(0);
    EXPECT_EQ(
        DumpStream(stream).dump(),
        R"({"kind":"application","format":54,"date":46000.5,"info":null,"components":[{"id":1,"name":"M","type":4,)"
        R"("size":17,"sha256":"a2fb05df5cd02e13bc1f057185e960db2f058ce0f70b6a70e477590b088d6e4c","class":"TFRMMenu"}],)"
        R"("tree":[{"id":1,"parent":-1,"child":1,"component":1,"type":0,"name":"Root"}],)"
        R"("resources":[{"id":5,"parent":1,"name":"R","type":2,"size":3,)"
        R"("sha256":"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"}]})");
}

TEST(Dump, ShowsTheValuesOfAUserFile) {
    TParametres values(nullptr);
    values.AddParam("A", 1);
    values.AddParam("B", Variant::Null());
    values.AddParam("C", "t\xE9xt");
    values.AddParam("D", TDateTime(2.5));
    values.Writables({"A", "B", "C", "D"}, true);
    TMemoryStream saved;
    values.SaveToStream(&saved);
    TRecursosVyn store;
    store.InsertTRecursos({ParametresRecursos, 0, ParametresRecursosName, ParametresRecType}, saved);
    TMemoryStream stream;
    store.SaveToStream(stream, FirstUserRecursos, -1);
    stream.SetPosition(0);
    const Json dump = DumpStream(stream);
    EXPECT_EQ(dump["kind"], "resources");
    EXPECT_EQ(dump["values"].dump(),
              R"([{"name":"A","type":"integer","value":1},{"name":"B","type":"null","value":null},)"
              R"({"name":"C","type":"string","value":"téxt"},{"name":"D","type":"date","value":2.5}])");
}

TEST(Dump, SaysWhenAFileIsNoneOfTheFrameworks) {
    TMemoryStream stream("PK\x03\x04");
    EXPECT_THROW(DumpStream(stream), Exception);
}
