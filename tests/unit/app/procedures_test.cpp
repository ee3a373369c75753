#include "unit/app/fixtures.h"

namespace app_fixtures {

namespace procedure_tests {

constexpr char kFolder[] = APP_LIBRARIES;

TObject* given = nullptr;
int calls = 0;
void Take(TObject* object) {
    given = object;
    ++calls;
}
void Other(TObject*) {}

AnsiString Names(const TProcedureVyn& registry, const AnsiString& library = "") {
    TStringList names;
    names.Add("an old line");
    registry.ProceduresNames(library, names);
    AnsiString text;
    for (int i = 0; i < names.Count(); ++i) text += (i ? "," : "") + names[i];
    return text;
}

}  // namespace procedure_tests

using namespace procedure_tests;

class ProcedureRegistry : public AppTest {
  protected:
    TProcedureVyn& registry = app->Procedures();
};

TEST_F(ProcedureRegistry, BelongsToItsApplicationAndBeginsEmpty) {
    EXPECT_EQ(registry.OwnerApp(), app.get());
    EXPECT_EQ(registry.ProceduresCount(), 0);
    EXPECT_EQ(registry.GetDLLCount(), 0);
    EXPECT_EQ(TProcedureVyn::GetVynDllVersion(), 54);
}

TEST_F(ProcedureRegistry, NamesABlankAtItsPosition) {
    EXPECT_EQ(MessageOf([&] { registry.RegisterProcedure("my proc", Take); }),
              "EProcedureVyn: TProcedureVyn ERROR\nmy proc is not a valid Procedure name.\nInvalid char:   Pos 3");
    EXPECT_TRUE(registry.RegisterProcedure("my_proc1", Take));
}

TEST_F(ProcedureRegistry, RefusesAnEmptyName) {
    EXPECT_EQ(MessageOf([&] { registry.CheckName(""); }), "EProcedureVyn: TProcedureVyn ERROR\nName can't be ''");
}

TEST_F(ProcedureRegistry, RefusesAccentedLettersAndTakesDigitsInFront) {
    EXPECT_EQ(MessageOf([&] { registry.CheckName("caf\xE9"); }),
              "EProcedureVyn: TProcedureVyn ERROR\ncaf\xE9 is not a valid Procedure name.\nInvalid char: \xE9 Pos 4");
    registry.CheckName("1AZaz09_");
}

TEST_F(ProcedureRegistry, DuplicatesAreFoundWithoutRegardToCase) {
    registry.RegisterProcedure("PRINT", Take);
    EXPECT_EQ(MessageOf([&] { registry.RegisterProcedure("Print", Take); }),
              "EProcedureVyn: TProcedureVyn ERROR\nDuplicate Procedure names : Print");
    EXPECT_EQ(registry.ProceduresCount(), 1);
}

TEST_F(ProcedureRegistry, KeepsWhatWasRegistered) {
    registry.RegisterProcedure("One", "help of one", Take);
    const TRegisteredProcedureVyn record = registry.GetProcedures(0);
    EXPECT_EQ(record.Name, "One");
    EXPECT_EQ(record.Library, HMODULE{0});
    EXPECT_EQ(record.Proc, &Take);
    EXPECT_EQ(record.Help, "help of one");
    EXPECT_EQ(registry.GetProcedureVynPointer("ONE"), &Take);
    EXPECT_EQ(registry.GetProcedureVynName(0), "One");
    EXPECT_EQ(registry.GetProcedureVynLibrary(0), "");
    EXPECT_EQ(registry.ProcedureVynIndex("one"), 0);
    EXPECT_EQ(registry.ProcedureVynIndex("two"), -1);
}

TEST_F(ProcedureRegistry, LaterProceduresMoveDownWhenOneGoes) {
    for (const char* name : {"A", "B", "C"}) registry.RegisterProcedure(name, Take);
    registry.UnRegisterProcedure("a");
    EXPECT_EQ(Names(registry), "B,C");
    EXPECT_EQ(registry.ProcedureVynIndex("C"), 1);
    registry.RegisterProcedure("A", Take);
    EXPECT_EQ(Names(registry), "B,C,A");
}

TEST_F(ProcedureRegistry, EachOperationNamesItselfWhenThereIsNoSuchProcedure) {
    const AnsiString start = "EProcedureVyn: TProcedureVyn ERROR\nProcedure No not found in ";
    EXPECT_EQ(MessageOf([&] { registry.UnRegisterProcedure("No"); }), start + "\"UnRegisterProcedure\"");
    EXPECT_EQ(MessageOf([&] { registry.ExecuteProcedure("No", nullptr); }), start + "\"ExecuteProcedure\"");
    EXPECT_EQ(MessageOf([&] { registry.GetProcedureVynPointer("No"); }), start + "\"GetProcedureVynPointer\"");
    EXPECT_EQ(MessageOf([&] { registry.GetProcedureVynHelp("No"); }), start + "\"GetProcedureVynHelp\"");
}

TEST_F(ProcedureRegistry, IndexesAreChecked) {
    registry.RegisterProcedure("A", Take);
    const AnsiString expected = "EProcedureVyn: TProcedureVyn ERROR\nIndex out of Bounds";
    for (const int index : {-1, 1}) {
        EXPECT_EQ(MessageOf([&] { registry.GetProcedureVynName(index); }), expected);
        EXPECT_EQ(MessageOf([&] { registry.GetProcedures(index); }), expected);
        EXPECT_EQ(MessageOf([&] { registry.GetProcedureVynLibrary(index); }), expected);
        EXPECT_EQ(MessageOf([&] { registry.GetDLLName(index); }), expected);
        EXPECT_EQ(MessageOf([&] { registry.GetDlls(index); }), expected);
    }
}

TEST_F(ProcedureRegistry, TheEventComesFirstAndMayExchangeTheObject) {
    registry.RegisterProcedure("Take", Take);
    calls = 0;
    int callsBefore = -1;
    registry.OnExecuteProcedure = [&](TProcedureVyn* sender, const AnsiString& name, TObject*& object) {
        EXPECT_EQ(sender, &registry);
        EXPECT_EQ(name, "TAKE");
        EXPECT_EQ(object, nullptr);
        callsBefore = calls;
        object = app.get();
    };
    registry.ExecuteProcedure("TAKE", nullptr);
    EXPECT_EQ(callsBefore, 0);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(given, app.get());
}

TEST_F(ProcedureRegistry, AProcedureWithoutCodeOnlyFiresTheEvent) {
    registry.RegisterProcedure("Nothing", nullptr);
    int fired = 0;
    registry.OnExecuteProcedure = [&](TProcedureVyn*, const AnsiString&, TObject*&) { ++fired; };
    registry.ExecuteProcedure("Nothing", nullptr);
    EXPECT_EQ(fired, 1);
}

TEST_F(ProcedureRegistry, HelpPassesTheEvent) {
    registry.RegisterProcedure("A", "given", Take);
    EXPECT_EQ(registry.GetProcedureVynHelp("a"), "given");
    registry.OnHelpCalled = [](const AnsiString& name, AnsiString& help) { help = name + ":" + help; };
    EXPECT_EQ(registry.GetProcedureVynHelp("a"), "a:given");
}

TEST_F(ProcedureRegistry, ALibrarysFileNameCarriesTheVersion) {
    EXPECT_EQ(TProcedureVyn::FileNameToDllName("", "util.dll"), "util54.dll");
    EXPECT_EQ(TProcedureVyn::FileNameToDllName("", "util"), "util54");
    EXPECT_EQ(TProcedureVyn::FileNameToDllName("", "C:\\a\\util.x.dll"), "C:\\a\\util54.x.dll");
    EXPECT_EQ(TProcedureVyn::FileNameToDllName("", "a\\util.dll"), "a\\util54.dll");
}

TEST_F(ProcedureRegistry, TheBaseFolderCountsWhereAFileStandsThere) {
    EXPECT_EQ(TProcedureVyn::FileNameToDllName(kFolder, "util.dll"), AnsiString(kFolder) + "\\util54.dll");
    EXPECT_EQ(TProcedureVyn::FileNameToDllName(kFolder, "missing.dll"), "missing54.dll");
}

TEST_F(ProcedureRegistry, ALibraryRegistersItsProcedures) {
    Heard operations;
    registry.OnDllOperation = [&](const AnsiString& name, TOperation operation) {
        operations.push_back(name + (operation == opInsert ? " in " : " out ") + IntToStr(registry.GetDLLCount()) +
                             " " + IntToStr(registry.ProceduresCount()));
    };
    registry.RegisterProcedure("Host", Take);
    ASSERT_TRUE(registry.RegisterDLL(kFolder, "util.dll"));
    EXPECT_EQ(registry.GetDLLCount(), 1);
    EXPECT_EQ(registry.GetDLLName(0), "util.dll");
    EXPECT_EQ(registry.GetDlls(0).FileName, AnsiString(kFolder) + "\\util54.dll");
    EXPECT_NE(registry.GetDlls(0).Handle, HMODULE{0});
    EXPECT_EQ(registry.FindDll("UTIL.DLL"), 0);
    EXPECT_EQ(registry.FindDll(registry.GetDlls(0).Handle), 0);
    EXPECT_EQ(registry.FindDll("other"), -1);
    EXPECT_EQ(Names(registry), "Host,UtilRename,UtilNothing");
    EXPECT_EQ(Names(registry, "Util.dll"), "UtilRename,UtilNothing");
    EXPECT_EQ(registry.GetProcedures(1).Library, registry.GetDlls(0).Handle);
    EXPECT_EQ(registry.GetProcedureVynLibrary(1), "util.dll");
    registry.ExecuteProcedure("utilrename", app.get());
    EXPECT_EQ(app->AppName(), "renamed by util");
    EXPECT_TRUE(registry.UnRegisterDLL("UTIL.dll"));
    EXPECT_EQ(Names(registry), "Host");
    EXPECT_EQ(registry.GetDLLCount(), 0);
    EXPECT_EQ(operations, (Heard{"util.dll in 0 1", "util.dll out 1 3"}));
}

TEST_F(ProcedureRegistry, NamesOfALibraryThatIsGoneAreFree) {
    registry.RegisterDLL(kFolder, "util.dll");
    registry.UnRegisterDLL("util.dll");
    EXPECT_TRUE(registry.RegisterProcedure("UtilRename", Other));
    EXPECT_EQ(registry.GetProcedures(0).Library, HMODULE{0});
}

TEST_F(ProcedureRegistry, TheHelpOfALibraryIsAskedWhereNoneWasGiven) {
    registry.RegisterDLL(kFolder, "util.dll");
    EXPECT_EQ(registry.GetProcedureVynHelp("UTILRENAME"), "renames the application");
    EXPECT_EQ(registry.GetProcedureVynHelp("UtilNothing"), "told at registration");
}

TEST_F(ProcedureRegistry, CountingANamedLibraryComparesWithItsPlace) {
    registry.RegisterProcedure("Host", Take);
    registry.RegisterDLL(kFolder, "silent.dll");
    registry.RegisterDLL(kFolder, "util.dll");
    EXPECT_EQ(registry.ProceduresCount(), 3);
    EXPECT_EQ(registry.ProceduresCount(""), 1);
    EXPECT_EQ(registry.ProceduresCount("util.dll"), 0);
    // The first library's place is 0, as the host's handle is.
    EXPECT_EQ(registry.ProceduresCount("silent.dll"), 1);
}

TEST_F(ProcedureRegistry, LibrariesThatAreNotThereAreNamed) {
    EXPECT_EQ(MessageOf([&] { registry.ProceduresCount("x.dll"); }),
              "EProcedureVyn: TProcedureVyn ERROR\nDLL not found:\nx.dll");
    EXPECT_EQ(MessageOf([&] { Names(registry, "x.dll"); }),
              "EProcedureVyn: TProcedureVyn ERROR\nLibrary x.dll not found");
    EXPECT_EQ(MessageOf([&] { registry.UnRegisterDLL("x.dll"); }),
              "EProcedureVyn: TProcedureVyn ERROR\nLibrary x.dll not found");
}

TEST_F(ProcedureRegistry, ALibraryIsRegisteredOnce) {
    registry.RegisterDLL(kFolder, "util.dll");
    EXPECT_EQ(MessageOf([&] { registry.RegisterDLL(kFolder, "UTIL.dll"); }),
              "EProcedureVyn: TProcedureVyn ERROR\nLibrary UTIL.dll allready Registered");
}

TEST_F(ProcedureRegistry, ALibraryThatDoesNotLoadIsFalseWithoutAnError) {
    Heard operations;
    registry.OnDllOperation = [&](const AnsiString& name, TOperation) { operations.push_back(name); };
    EXPECT_FALSE(registry.RegisterDLL(kFolder, "missing.dll"));
    EXPECT_EQ(registry.GetDLLCount(), 0);
    EXPECT_EQ(operations, Heard{"missing.dll"});
}

TEST_F(ProcedureRegistry, ALibraryWithoutAnEntryStaysLoadedWithoutProcedures) {
    EXPECT_TRUE(registry.RegisterDLL(kFolder, "silent.dll"));
    EXPECT_EQ(registry.GetDLLCount(), 1);
    EXPECT_EQ(registry.ProceduresCount(), 0);
}

TEST_F(ProcedureRegistry, NoLibraryIsLoadedWhileAnotherRegisters) {
    EXPECT_TRUE(registry.RegisterDLL(kFolder, "nested.dll"));
    EXPECT_EQ(registry.GetDLLCount(), 1);
    EXPECT_EQ(Names(registry), "NestedWasRefused");
    EXPECT_TRUE(registry.RegisterDLL(kFolder, "util.dll"));
}

TEST_F(ProcedureRegistry, ClosingTheApplicationKeepsTheHostsProceduresOnly) {
    Heard operations;
    registry.OnDllOperation = [&](const AnsiString& name, TOperation operation) {
        if (operation == opRemove) operations.push_back(name);
    };
    registry.RegisterProcedure("Host", Take);
    registry.RegisterDLL(kFolder, "util.dll");
    registry.RegisterDLL(kFolder, "silent.dll");
    app->CloseApp();
    EXPECT_EQ(Names(registry), "Host");
    EXPECT_EQ(operations, (Heard{"silent.dll", "util.dll"}));
}

TEST(FileNameValues, TheFirstDotSplitsTheName) {
    AnsiString dir = "x", name = "x", ext = "x";
    EXPECT_TRUE(ExtractFileNameValues("C:\\a\\b.tar.gz", dir, name, ext));
    EXPECT_EQ(dir, "C:\\a");
    EXPECT_EQ(name, "b");
    EXPECT_EQ(ext, ".tar.gz");
}

TEST(FileNameValues, ANameWithoutADotHasNoExtension) {
    AnsiString dir = "x", name = "x", ext = "x";
    EXPECT_TRUE(ExtractFileNameValues("util", dir, name, ext));
    EXPECT_EQ(dir + "|" + name + "|" + ext, "|util|");
    EXPECT_FALSE(ExtractFileNameValues("", dir, name, ext));
    EXPECT_EQ(dir + "|" + name + "|" + ext, "||");
    EXPECT_FALSE(ExtractFileNameValues(".dll", dir, name, ext));
    EXPECT_EQ(ext, ".dll");
}

}  // namespace app_fixtures
