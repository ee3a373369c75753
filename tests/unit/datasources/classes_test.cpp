// The registry of data-source classes: names, methods, pictures; and the component that answers lookups.
#include <gtest/gtest.h>

#include <functional>

#include "datasources/Uvyndatasources.h"
#include "package/package.h"
#include "platform/system/clipboard.h"

using namespace vyn;

namespace classes_fixtures {

void CreateOne(TVynApp*, const AnsiString&, TComponent*, TComponent*&, HWND&) {}
void CreateTwo(TVynApp*, const AnsiString&, TComponent*, TComponent*&, HWND&) {}

AnsiString Names() {
    TStringList names;
    names.Add("stale");
    VynDataSource_GetRegisteredClasses(names);
    AnsiString text;
    for (int i = 0; i < names.Count(); ++i) text += names[i] + " ";
    return text;
}

AnsiString ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Exception& error) {
        return error.Message();
    }
    return "no error";
}

class DataSourceClasses : public testing::Test {
  protected:
    void SetUp() override { InitializePackage(); }
    void TearDown() override { FinalizePackage(); }
};

TEST_F(DataSourceClasses, SearchIsThereFromTheStartWithALens) {
    EXPECT_EQ(Names(), "SEARCH ");
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("SEARCH"), nullptr);
    const TImageList* images = VynDataSource_FindImageList("search");
    ASSERT_NE(images, nullptr);
    EXPECT_EQ(images->Count(), 1);
    EXPECT_EQ(images->Width(), 16);
    EXPECT_EQ(images->Height(), 16);
    EXPECT_EQ(images->Image(0).At(0, 15) >> 24, 0u) << "what is around the drawing is see-through";
    EXPECT_EQ(images->Image(0).At(6, 1) >> 24, 0xFFu) << "the rim is not";
}

TEST_F(DataSourceClasses, AreListedInTheOrderOfTheirRegistration) {
    VynDataSource_RegisterClassName("Zones", &CreateOne);
    VynDataSource_RegisterClassName("Articles", &CreateTwo);
    EXPECT_EQ(Names(), "SEARCH Zones Articles ");
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("ZONES"), &CreateOne);
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("none"), nullptr);
    ASSERT_NE(VynDataSource_FindImageList("Zones"), nullptr);
    EXPECT_EQ(VynDataSource_FindImageList("none"), nullptr);
}

TEST_F(DataSourceClasses, RegisteringAgainKeepsThePlaceAndTakesTheMethodAndANewPicture) {
    VynDataSource_RegisterClassName("Zones", &CreateOne);
    VynDataSource_RegisterClassName("Articles", &CreateOne);
    VynDataSource_AddImageBitmapFromOtherClass("Zones", "SEARCH");
    EXPECT_EQ(VynDataSource_FindImageList("Zones")->Count(), 2) << "the other class's pictures are added";
    VynDataSource_RegisterClassName("ZONES", &CreateTwo);
    EXPECT_EQ(Names(), "SEARCH Zones Articles ");
    EXPECT_EQ(VynDataSource_GetCreateClassMethod("Zones"), &CreateTwo);
    EXPECT_EQ(VynDataSource_FindImageList("Zones")->Count(), 1);
}

TEST_F(DataSourceClasses, AreTakenOutByNameOrByMethod) {
    for (const char* name : {"A", "B", "C"}) VynDataSource_RegisterClassName(name, &CreateOne);
    VynDataSource_RegisterClassName("D", &CreateTwo);
    VynDataSource_UnRegisterClassName("b");
    VynDataSource_UnRegisterClassName("never there");
    EXPECT_EQ(Names(), "SEARCH A C D ");
    VynDataSource_UnRegisterCreateClass(&CreateOne);
    EXPECT_EQ(Names(), "SEARCH D ");
}

TEST_F(DataSourceClasses, AnUnknownClassTakesNoPicture) {
    const AnsiString error = "VynDataSource -> Classe no registrada: Zones";
    TBitmap bitmap;
    bitmap.SetSize(2, 2);
    EXPECT_EQ(ErrorOf([&] { VynDataSource_AddImageBitmap("Zones", bitmap); }), error);
    EXPECT_EQ(ErrorOf([] { VynDataSource_AddImageBitmapFromResName("Zones", 0, CT_BitmapSearch); }), error);
    EXPECT_EQ(ErrorOf([] { VynDataSource_AddImageBitmapFromResID("Zones", 0, 7); }), error);
    EXPECT_EQ(ErrorOf([] { VynDataSource_AddImageBitmapFromOtherClass("Zones", "SEARCH"); }), error);
}

TEST_F(DataSourceClasses, APictureComesFromAModuleByNameAndByNumber) {
    const HMODULE module = LoadSharedLibrary(PICTURES_LIBRARY);
    ASSERT_NE(module, 0u) << LastLibraryError();
    VynDataSource_RegisterClassName("Zones", &CreateOne);
    VynDataSource_AddImageBitmapFromResName("Zones", module, "red");
    TImageList* images = VynDataSource_FindImageList("Zones");
    // Twice as wide as high: two square pictures.
    ASSERT_EQ(images->Count(), 2);
    EXPECT_EQ(images->Width(), 1);
    EXPECT_EQ(images->Image(0).At(0, 0) >> 24, 0u) << "the lower left pixel's colour is see-through";
    EXPECT_EQ(images->Image(1).At(0, 0), 0xFFFF0000u);
    VynDataSource_RegisterClassName("Zones", &CreateOne);
    VynDataSource_AddImageBitmapFromResID("Zones", module, 7);
    EXPECT_EQ(VynDataSource_FindImageList("Zones")->Count(), 2);
    EXPECT_EQ(ErrorOf([&] { VynDataSource_AddImageBitmapFromResName("Zones", module, "blue"); }),
              "The module has no bitmap blue for the data-source class Zones");
    FreeSharedLibrary(module);
}

TEST_F(DataSourceClasses, AListWithoutPicturesGivesNone) {
    TImageList list(nullptr);
    list.AddImage({1, 1, {0xFF112233}});
    TBitmap bitmap;
    bitmap.SetSize(5, 3);
    AddBitmapToImageList(list, bitmap);
    EXPECT_EQ(list.Width(), 5);
    EXPECT_EQ(list.Height(), 3);
    EXPECT_EQ(list.Count(), 1) << "what was there is replaced";
}

// A component over one list of names.
class TNames : public TCustomVynDataSourceAbstract {
  public:
    explicit TNames(TComponent* owner = nullptr) : TCustomVynDataSourceAbstract(owner) {}
    int ModalSearch(const AnsiString& fieldName, const Variant& value) override {
        Log += "modal " + fieldName + "=" + VarToStr(value) + ";";
        return Result;
    }
    void LoadParams() override {
        Log += "load;";
        Params().AddParam("Code", 7);
    }
    void ParamsSetValor(const AnsiString& name, const Variant& value) override {
        Log += "set " + name + "=" + VarToStr(value) + ";";
        if (SameText(name, "Code") && Inner) Params().AddParam("Name", "of " + VarToStr(value));
    }
    void ParamsGetValor(const AnsiString& name, Variant& value) override {
        if (SameText(name, "Answer")) value = 42;
    }
    AnsiString GetParamMask(const AnsiString& name) override { return "mask of " + name; }
    intptr_t Ask(uint32_t message, intptr_t wParam, void* what) {
        return SendMessage(WindowHandle(), message, wParam, reinterpret_cast<intptr_t>(what));
    }
    AnsiString Log;
    int Result = 0;
    bool Inner = false;
};

TEST_F(DataSourceClasses, AComponentAnswersTheThreeRequestsAndNoOther) {
    TNames names;
    TParametres given(nullptr);
    EXPECT_EQ(names.Ask(VYN_MESSAGE_TPARAMETRESLIST, VynParamsRead, &given), -1);
    EXPECT_EQ(VarToStr(given.GetParametreValue("Code")), "7");
    EXPECT_EQ(names.Log, "load;set Code=7;") << "its values are loaded before each reading";
    given.AddParam("Code", 9);
    EXPECT_EQ(names.Ask(VYN_MESSAGE_TPARAMETRESLIST, VynParamsWrite, &given), -1);
    EXPECT_EQ(VarToStr(names.Params().GetParametreValue("Code")), "9");
    given.AddParam("Other", 1);
    EXPECT_EQ(names.Ask(VYN_MESSAGE_TPARAMETRESLIST, VynParamsMasks, &given), -1);
    EXPECT_EQ(VarToStr(given.GetParametreValue("Code")), "mask of Code");
    EXPECT_EQ(VarToStr(given.GetParametreValue("Other")), "mask of Other");
    for (const intptr_t unknown : {0, 4, -1}) EXPECT_EQ(names.Ask(VYN_MESSAGE_TPARAMETRESLIST, unknown, &given), 0);
    EXPECT_EQ(names.Ask(VYN_MESSAGE_LOCATE, 4, &given), 0) << "locating is for descendants";
}

TEST_F(DataSourceClasses, AComponentsModalSearchIsAcceptedByOneOnly) {
    TNames names;
    TLocateStruct locate{"Name", "gar", false, false, true};
    for (const int result : {0, 1, 2, -1}) {
        names.Result = result;
        EXPECT_EQ(names.Ask(VYN_MESSAGE_SHOWMODALSEARCH, 4, &locate), result == 1 ? -1 : 0) << result;
    }
    EXPECT_EQ(names.Log, "modal Name=gar;modal Name=gar;modal Name=gar;modal Name=gar;");
}

TEST_F(DataSourceClasses, ReadingAValueAsksTheComponent) {
    TNames names;
    names.Params().AddParam("Answer", 0);
    EXPECT_EQ(VarToStr(names.Params().GetParametreValue("Answer")), "42");
}

TEST_F(DataSourceClasses, WhatASetSetsDoesNotRecurseWhileTheGuardIsOn) {
    TNames names;
    names.Inner = true;
    names.Params().AddParam("Code", 3);
    EXPECT_EQ(names.Log, "set Code=3;");
    EXPECT_EQ(VarToStr(names.Params().GetParametreValue("Name")), "of 3");
    names.GuardSets = false;
    names.Log.clear();
    names.Params().AddParam("Code", 4);
    EXPECT_EQ(names.Log, "set Code=4;set Name=of 4;");
}

TEST_F(DataSourceClasses, ATracingLineIsAppendedToTheClipboardsText) {
    Clipboard()->Clear();
    AddClipboardLine("first");
    const AnsiString once = Clipboard()->AsText();
    ASSERT_EQ(once.size(), AnsiString("00:00:00: first").size());
    EXPECT_EQ(once.substr(8), ": first");
    EXPECT_EQ(once[2], ':');
    AddClipboardLine("second");
    const AnsiString twice = Clipboard()->AsText();
    EXPECT_EQ(twice.substr(0, once.size() + 2), once + "\r\n");
    EXPECT_EQ(twice.substr(twice.size() - 8), ": second");
}

}  // namespace classes_fixtures
