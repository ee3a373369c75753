#include "database/Uvyndb.h"
#include "platform/objects/filer.h"
#include "unit/app/fixtures.h"

namespace app_fixtures {

namespace application_tests {

// A file's bytes with another header; the stores are those of the application.
std::string FileOf(TVynApp& app, const AnsiString& tag, int version, double date, bool withInfo) {
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteIdent(tag);
        writer.WriteInteger(version);
        writer.WriteDate(TDateTime(date));
        if (withInfo) app.SaveVynAppSavedInfo(writer);
        writer.Flush();
    }
    app.Components().SaveToStream(stream);
    app.Tree().SaveToStream(&stream);
    app.Recursos().SaveToStream(stream, 0, LastApplicationRecursos);
    return std::string(stream.Bytes());
}

void LoadBytes(TVynApp& app, std::string_view bytes) {
    TViewStream stream(bytes);
    app.LoadAppFromStream(stream);
}

std::string SaveBytes(TVynApp& app) {
    TMemoryStream stream;
    app.SaveAppToStream(stream);
    return std::string(stream.Bytes());
}

}  // namespace application_tests

using namespace application_tests;

class Application_ : public AppTest {};

TEST_F(Application_, TellsTheHostThatItIsThereAndThatItGoes) {
    EXPECT_EQ(Log(), Heard{"host 1535"});
    Log().clear();
    intptr_t sender = 0;
    OnWindowMessage() = [&](TMessage& message) { sender = message.WParam; };
    TVynApp* gone = app.get();
    app.reset();
    EXPECT_EQ(Log(), Heard{"host 1536"});
    EXPECT_EQ(sender, reinterpret_cast<intptr_t>(gone));
}

TEST_F(Application_, SavesTagFormatDateAndInfoBeforeItsStores) {
    const std::string bytes = SaveBytes(*app);
    TViewStream stream(bytes);
    TReader reader(stream);
    EXPECT_EQ(reader.ReadIdent(), "VYN");
    EXPECT_EQ(reader.ReadInteger(), 54);
    EXPECT_EQ(reader.ReadDate().Val, kTen);
    reader.ReadListBegin();
    EXPECT_EQ(reader.ReadInteger(), 5401);
    EXPECT_EQ(reader.ReadDate().Val, kTen);
    EXPECT_EQ(reader.ReadString(), "");
    EXPECT_EQ(reader.ReadInteger(), 1);
    EXPECT_EQ(reader.ReadDate().Val, 0.0);
    reader.ReadListEnd();
    EXPECT_EQ(reader.ReadString(), CT_TComponentVyn);
}

TEST_F(Application_, ALowerCaseTagIsAccepted) {
    LoadBytes(*app, FileOf(*app, "vyn", 54, kTen, true));
    EXPECT_EQ(app->SavedInfo().Version, 5401);
}

TEST_F(Application_, Formats51To54AreAcceptedAndNoOthers) {
    for (const int version : {51, 54}) LoadBytes(*app, FileOf(*app, "VYN", version, kTen, true));
    for (const int version : {50, 55})
        EXPECT_EQ(MessageOf([&] { LoadBytes(*app, FileOf(*app, "VYN", version, kTen, true)); }),
                  "EVynError: TVynApp ERROR:\nNot a valid VYN Stream:\nVYN\n" + IntToStr(version));
}

TEST_F(Application_, AnotherTagIsNamed) {
    EXPECT_EQ(MessageOf([&] { LoadBytes(*app, FileOf(*app, "VAN", 54, kTen, true)); }),
              "EVynError: TVynApp ERROR:\nNot a valid VYN Stream:\nVAN\n54");
}

TEST_F(Application_, ADateOf36500IsCorruptedAndAnyLaterOneIsNot) {
    EXPECT_EQ(MessageOf([&] { LoadBytes(*app, FileOf(*app, "VYN", 54, 36500.0, true)); }),
              "EVynError: TVynApp ERROR:\nNot a valid VYN Stream (Corrupted DateTime)");
    LoadBytes(*app, FileOf(*app, "VYN", 54, 36500.001, true));
}

TEST_F(Application_, AFileWithoutInfoLoadsWithAnEmptyRecord) {
    const std::string bytes = FileOf(*app, "VYN", 54, kTen, false);
    LoadBytes(*app, bytes);
    EXPECT_EQ(app->SavedInfo().Version, 0);
    EXPECT_EQ(app->SavedInfo().SaveDate.Val, 0.0);
    EXPECT_EQ(app->SavedInfo().SaveCount, 0);
    EXPECT_EQ(app->SavedInfo().OpenTime.Val, kTen);
}

TEST_F(Application_, TwoSavesAfterOneLoadWriteTheSameCountAndTheTimeSinceTheLoad) {
    LoadBytes(*app, SaveBytes(*app));
    EXPECT_EQ(app->SavedInfo().SaveCount, 1);
    for (const int hours : {2, 5}) {
        SetClockForTests([hours] { return kTen + hours * kHour; });
        const std::string bytes = SaveBytes(*app);
        TVynApp other(nullptr);
        LoadBytes(other, bytes);
        EXPECT_EQ(other.SavedInfo().SaveCount, 2);
        EXPECT_NEAR(other.SavedInfo().EditTime.Val, hours * kHour, 1e-9);
    }
}

TEST_F(Application_, AFailedLoadKeepsTheInfo) {
    LoadBytes(*app, SaveBytes(*app));
    EXPECT_ANY_THROW(LoadBytes(*app, FileOf(*app, "VYN", 50, kTen, true)));
    EXPECT_EQ(app->SavedInfo().SaveCount, 1);
}

TEST_F(Application_, LoadingTwiceWithoutClearingMeetsTheComponentsThatAreThere) {
    Store(7, "object A: TCustomFRM\nend\n");
    const std::string bytes = SaveBytes(*app);
    EXPECT_EQ(MessageOf([&] { LoadBytes(*app, bytes); }).substr(0, 40),
              AnsiString("EComponentsVyn: Duplicate IDComponents: 7").substr(0, 40));
    app->ClearApp();
    LoadBytes(*app, bytes);
    EXPECT_TRUE(app->Components().FindIDComponent(7));
}

TEST_F(Application_, LoadingComesBackToTheTreesRootAndSavesNoUserResources) {
    Node(1, 0, 4, 0);
    TMemoryStream stream("x");
    app->Recursos().InsertTRecursos({89999, 0, "last", 1}, stream);
    app->Recursos().InsertTRecursos({90000, 0, "user", 1}, stream);
    const std::string bytes = SaveBytes(*app);
    app->ClearApp();
    LoadBytes(*app, bytes);
    EXPECT_EQ(app->Tree().FirstIdNode(), 1);
    EXPECT_TRUE(app->Tree().FindIDNode(1));
    EXPECT_TRUE(app->Recursos().FindIDRecursos(89999));
    EXPECT_FALSE(app->Recursos().FindIDRecursos(90000));
}

TEST_F(Application_, UserValuesHoldTheParametersAndComeBack) {
    Parametres()->SetParametreValue("Colour", Variant(7));
    Parametres()->SetWritable("Colour", true);
    TMemoryStream stream;
    app->SaveAppRecToStream(stream);
    const TRecursos record = app->Recursos().RetornaRecursos(100001);
    EXPECT_EQ(record.IDParent, 0);
    EXPECT_EQ(record.Name, "VYNAPPLICATION");
    EXPECT_EQ(record.RecType, 9);
    Parametres()->Clear();
    app->Recursos().Clear();
    stream.SetPosition(0);
    app->LoadAppRecFromStream(stream);
    EXPECT_EQ(Parametres()->AsInteger("Colour", 0), 7);
}

TEST_F(Application_, AClearedApplicationIsModified) {
    app->SetModified(false);
    EXPECT_FALSE(app->GetModified());
    app->ClearApp();
    EXPECT_TRUE(app->GetModified());
}

TEST_F(Application_, EachStoreAloneMakesItModified) {
    app->SetModified(false);
    app->Components().Modified = true;
    EXPECT_TRUE(app->GetModified());
    app->SetModified(false);
    app->Tree().SetModified(true);
    EXPECT_TRUE(app->GetModified());
    app->SetModified(false);
    app->Recursos().AppModified = true;
    EXPECT_TRUE(app->GetModified());
}

TEST_F(Application_, ADatabaseWithoutANameIsNoDefault) {
    TDataBaseVyn database(nullptr);
    const AnsiString error = MessageOf([&] { app->SetDefaultDB(&database); });
    if (database.VynDBName().empty())
        EXPECT_EQ(error, "EVynError: TVynApp ERROR:\nTDataBaseVyn - VynDBName cannot be empty!");
}

TEST_F(Application_, NoDefaultKeepsTheNameThatFindsItAgain) {
    TDataBaseVyn database(nullptr);
    database.SetVynDBName("Sales");
    app->SetDefaultDB(&database);
    EXPECT_EQ(app->DefaultDBName(), "Sales");
    EXPECT_EQ(app->DataBaseVynCount(), 1);
    app->SetDefaultDB(nullptr);
    EXPECT_EQ(app->DefaultDBName(), "Sales");
    EXPECT_EQ(app->GetDefaultDB(), &database);
}

TEST_F(Application_, ADatabaseThatIsAddedTwiceStandsTwiceAndGoesOnce) {
    TDataBaseVyn one(nullptr), two(nullptr);
    one.SetVynDBName("One");
    two.SetVynDBName("Two");
    app->AddDB(nullptr, true);
    app->AddDB(&one, true);
    app->AddDB(&two, false);
    app->AddDB(&one, false);
    TStringList names;
    names.Add("an old line");
    app->GetDataBaseVynNames(names);
    ASSERT_EQ(names.Count(), 3);
    EXPECT_EQ(names[0] + names[1] + names[2], "OneTwoOne");
    EXPECT_EQ(names.GetObject(1), &two);
    app->DeleteDB(&one);
    EXPECT_EQ(app->DataBaseVynCount(), 2);
    EXPECT_EQ(app->GetDataBaseVyn(0), &two);
    EXPECT_EQ(app->GetDefaultDB(), &two);
}

TEST_F(Application_, ADatabaseThatIsFreedLeavesTheList) {
    auto database = std::make_unique<TDataBaseVyn>(nullptr);
    database->SetVynDBName("Short");
    app->AddDB(database.get(), true);
    database.reset();
    EXPECT_EQ(app->DataBaseVynCount(), 0);
    EXPECT_EQ(app->GetDefaultDB(), nullptr);
}

TEST_F(Application_, ANameFindsItsDatabase) {
    TDataBaseVyn database(nullptr);
    database.SetVynDBName("ByName");
    app->SetDefaultDBName("byname");
    EXPECT_EQ(app->GetDefaultDB(), &database);
    EXPECT_EQ(app->DefaultDBName(), "ByName");
}

TEST_F(Application_, ChangedNamesAreToldOnce) {
    int told = 0;
    app->OnAppValuesChanged = [&](TObject*) { ++told; };
    app->SetAppName("Sales");
    app->SetAppName("Sales");
    app->SetAppFile("sales.vyn");
    EXPECT_EQ(told, 2);
}

TEST_F(Application_, DesignTimeIsToldWhenItChanges) {
    Log().clear();
    app->SetDesignTime(false);
    app->SetDesignTime(true);
    app->SetDesignTime(true);
    app->SetDesignTime(false);
    EXPECT_EQ(Log(), (Heard{"host 1545", "host 1546"}));
}

TEST_F(Application_, APackageBringsItsClassesAndTakesThemAlong) {
    int told = 0;
    app->OnChangedBPLState = [&](TObject* sender) {
        EXPECT_EQ(sender, app.get());
        ++told;
    };
    EXPECT_EQ(app->VynBPLName(), "VYNB5400.BPL");
    EXPECT_EQ(MessageOf([&] { app->UnLoadBPL(); }), "EVynError: TVynApp ERROR:\nBPL not loaded");
    app->SetVynBPLName(AnsiString(APP_LIBRARIES) + "\\pack.bpl");
    app->LoadBPL();
    ASSERT_TRUE(app->VynBPLLoaded());
    EXPECT_EQ(app->AppName(), "initialized");
    EXPECT_NE(GetClass("TPackPart"), nullptr);
    EXPECT_NE(Application()->FindComponent("PackPart1"), nullptr);
    EXPECT_EQ(MessageOf([&] { app->LoadBPL(); }),
              "EVynError: TVynApp ERROR:\n" + AnsiString(APP_LIBRARIES) + "\\pack.bpl file loaded");
    app->UnLoadBPL();
    EXPECT_FALSE(app->VynBPLLoaded());
    EXPECT_EQ(app->AppName(), "finalized");
    EXPECT_EQ(GetClass("TPackPart"), nullptr);
    EXPECT_EQ(Application()->FindComponent("PackPart1"), nullptr);
    EXPECT_EQ(told, 2);
}

TEST_F(Application_, AnotherPackageNameUnloadsTheOldOne) {
    app->SetVynBPLName(AnsiString(APP_LIBRARIES) + "\\pack.bpl");
    app->LoadBPL();
    app->SetVynBPLName("other.bpl");
    EXPECT_FALSE(app->VynBPLLoaded());
    EXPECT_EQ(app->VynBPLName(), "other.bpl");
}

TEST_F(Application_, APackageThatIsNotThereIsTriedAndTold) {
    int told = 0;
    app->OnChangedBPLState = [&](TObject*) { ++told; };
    app->SetVynBPLName("no_such_package.bpl");
    app->LoadBPL();
    EXPECT_FALSE(app->VynBPLLoaded());
    EXPECT_EQ(told, 1);
    app->SetVynBPLName("  ");
    EXPECT_EQ(MessageOf([&] { app->LoadBPL(); }), "EVynError: TVynApp ERROR:\nBPL File not initialized");
    EXPECT_TRUE(app->StoreBPLName());
    app->SetVynBPLName("NO FILE");
    EXPECT_FALSE(app->StoreBPLName());
}

TEST_F(Application_, IsReadAsAPropertyAndWrittenOnlyThen) {
    Store(7, "object A: TCustomFRM\nend\n");
    Node(1, 0, 4, 7);
    TMemoryStream plain;
    WriteComponentToStream(plain, *app);
    EXPECT_EQ(plain.Bytes().find("VynStruct"), std::string_view::npos);
    TMemoryStream body;
    {
        TWriter writer(body);
        app->VynSaveToWriter(writer);
        writer.Flush();
    }
    EXPECT_FALSE(app->GetModified());
    TVynApp other(nullptr);
    body.SetPosition(0);
    TReader reader(body);
    other.VynLoadFromReader(reader);
    EXPECT_TRUE(other.Components().FindIDComponent(7));
    EXPECT_TRUE(other.Tree().FindIDNode(1));
    EXPECT_EQ(other.Tree().FirstIdNode(), 1);
    EXPECT_FALSE(other.GetModified());
    TMemoryStream whole;
    WriteComponentToStream(whole, other);
    for (const char* part : {"VynStruct", "VYNCOMPONENTS", "TREEVYN", "VYNRECURSOS"})
        EXPECT_NE(whole.Bytes().find(part), std::string_view::npos) << part;
}

}  // namespace app_fixtures
