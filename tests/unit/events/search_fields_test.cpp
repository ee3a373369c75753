// Search fields: the list, how entries find their controls, and the three stored formats.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "events/Ucampsbuscar.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/controls/edits.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/streams/writer.h"
#include "support/errors.h"

using namespace vyn;
using namespace std::string_literals;

namespace {

class SearchFields : public testing::Test {
  protected:
    void SetUp() override {
        InitializePackage();
        form = std::make_unique<TForm>(nullptr);
        form->SetName("Search");
        fields = new TCampsBuscar(form.get());
        fields->SetName("Fields");
    }
    void TearDown() override {
        form.reset();
        FinalizePackage();
    }
    TEdit* MakeEdit(const AnsiString& name) {
        auto* edit = new TEdit(form.get());
        edit->SetName(name);
        edit->SetParent(form.get());
        return edit;
    }
    static TCampBuscar Of(TComponent* component) {
        TCampBuscar entry;
        entry.Component = component;
        return entry;
    }
    // An entry that waits for its control.
    static TCampBuscar Named(const AnsiString& name) {
        TCampBuscar entry;
        entry.ComponentName = name;
        return entry;
    }
    AnsiString Names() {
        AnsiString names;
        for (int i = 0; i < fields->Count(); ++i) {
            const TCampBuscar entry = fields->GetCampsBuscarComponent(i);
            names += (i ? " " : "") + entry.ComponentName + (entry.Component ? "" : "?");
        }
        return names;
    }
    void Read(std::string_view bytes) {
        TViewStream stream(bytes);
        TReader reader(stream);
        fields->ReadData(reader);
        EXPECT_EQ(reader.BytesLeft(), 0);
    }
    AnsiString Stored() {
        TMemoryStream stream;
        {
            TWriter writer(stream);
            fields->WriteData(writer);
        }
        return AnsiString(stream.Bytes());
    }
    // An entry as the first format has it: the name and six values.
    static AnsiString FirstFormat(const AnsiString& name) {
        return "\x07" + AnsiString(1, static_cast<char>(name.size())) + name +
               "\x02\x05\x03\xE8\x03\x06\x01"
               "a\x02\xFF\x06\x01"
               "b\x06\x01"
               "c";
    }
    static AnsiString List(const AnsiString& entries) { return "\x01" + entries + AnsiString(1, '\0'); }

    std::unique_ptr<TForm> form;
    TCampsBuscar* fields = nullptr;
};

}  // namespace

TEST_F(SearchFields, TheKindsOfInputAreNumberedFromZero) {
    EXPECT_EQ(static_cast<int>(tfcbObreFill), 0);
    EXPECT_EQ(static_cast<int>(tfcbTexte), 1);
    EXPECT_EQ(static_cast<int>(tfcbNumeric), 2);
    EXPECT_EQ(static_cast<int>(tfcbSiNo), 3);
    EXPECT_EQ(static_cast<int>(tfcbData), 4);
    EXPECT_EQ(static_cast<int>(tfcbHora), 5);
    EXPECT_EQ(static_cast<int>(tfcbDataHora), 6);
}

TEST_F(SearchFields, TheEmptyEntryIsEmpty) {
    const TCampBuscar& nul = TCampBuscar_NUL();
    EXPECT_EQ(nul.Component, nullptr);
    EXPECT_EQ(nul.ComponentName + nul.Text1 + nul.Text2 + nul.Text3 + nul.Text4, "");
    EXPECT_EQ(nul.IntValue1 | nul.IntValue2 | nul.IntValue3 | nul.IntValue4, 0);
    EXPECT_FALSE(nul.Flag);
    EXPECT_FALSE(nul.Items.has_value());
}

TEST_F(SearchFields, EntriesAreKeptInOrder) {
    TEdit* name = MakeEdit("EName");
    TEdit* code = MakeEdit("ECode");
    fields->Afegeix(Of(name));
    fields->Afegeix(Of(code));
    EXPECT_EQ(Names(), "EName ECode");
    EXPECT_EQ(fields->PosicioIndex(code), 1);
    EXPECT_EQ(fields->PosicioIndex(nullptr), -1);
    EXPECT_EQ(fields->PosicioIndex(form.get()), -1);
    fields->Exchange(0, 1);
    EXPECT_EQ(Names(), "ECode EName");
    fields->Elimina(0);
    EXPECT_EQ(Names(), "EName");
}

TEST_F(SearchFields, AControlIsListedOnce) {
    TEdit* name = MakeEdit("EName");
    fields->Afegeix(Of(name));
    EXPECT_EQ(MessageOf([&] { fields->Afegeix(Of(name)); }),
              "ECampsBuscar: ERROR CAMPS BUSCAR\nAquest component ja existeix!");
    EXPECT_EQ(fields->Count(), 1);
}

TEST_F(SearchFields, AControlThatAnEntryWaitsForIsListed) {
    fields->Afegeix(Named("ename"));
    EXPECT_EQ(MessageOf([&] { fields->Afegeix(Of(MakeEdit("EName"))); }),
              "ECampsBuscar: ERROR CAMPS BUSCAR\nAquest component ja existeix!");
    EXPECT_EQ(Names(), "EName") << "and the entry is bound to it now";
}

TEST_F(SearchFields, AnEntryIsReplacedWhereItsControlIsNotListedElsewhere) {
    TEdit* name = MakeEdit("EName");
    TEdit* code = MakeEdit("ECode");
    fields->Afegeix(Of(name));
    fields->Afegeix(Of(code));
    TCampBuscar changed = Of(code);
    changed.Text1 = "Codi";
    changed.Items = {"a", "b"};
    fields->SetCampsBuscarComponent(1, changed);
    EXPECT_EQ(fields->GetCampsBuscarComponent(1).Text1, "Codi");
    EXPECT_EQ(fields->GetCampsBuscarComponent(1).Items->size(), 2u);
    EXPECT_EQ(MessageOf([&] { fields->SetCampsBuscarComponent(0, changed); }),
              "ECampsBuscar: ERROR CAMPS BUSCAR\n" + AnsiString("La posició a colocar: 0 incorrecta, actual: 1"_w));
    EXPECT_EQ(Names(), "EName ECode");
    fields->SetCampsBuscarComponent(0, Of(MakeEdit("EPrice")));
    EXPECT_EQ(Names(), "EPrice ECode");
}

TEST_F(SearchFields, APositionThatIsNoneIsAnError) {
    fields->Afegeix(Of(MakeEdit("EName")));
    const AnsiString prefix = "ECampsBuscar: ERROR CAMPS BUSCAR\n";
    const AnsiString over = prefix + "Índex 1 fora de rang"_w;
    const AnsiString under = prefix + "Índex -1 fora de rang"_w;
    EXPECT_EQ(MessageOf([&] { fields->Elimina(1); }), over);
    EXPECT_EQ(MessageOf([&] { fields->Elimina(-1); }), under);
    EXPECT_EQ(MessageOf([&] { fields->GetCampsBuscarComponent(1); }), over);
    EXPECT_EQ(MessageOf([&] { fields->GetCampsBuscarComponent(-1); }), under);
    EXPECT_EQ(MessageOf([&] { fields->SetCampsBuscarComponent(1, {}); }), over);
    EXPECT_EQ(MessageOf([&] { fields->SetCampsBuscarComponent(-1, {}); }), under);
    EXPECT_EQ(MessageOf([&] { fields->Exchange(1, 7); }), prefix + "Índex 1 1 fora de rang"_w);
    EXPECT_EQ(MessageOf([&] { fields->Exchange(0, 7); }), prefix + "Índex 2 7 fora de rang"_w);
    EXPECT_EQ(MessageOf([&] { fields->Exchange(-1, 0); }), prefix + "Índex 1 -1 fora de rang"_w);
    EXPECT_EQ(fields->Count(), 1);
}

TEST_F(SearchFields, FreeingAListedControlRemovesItsEntry) {
    TEdit* name = MakeEdit("EName");
    fields->Afegeix(Of(name));
    fields->Afegeix(Of(MakeEdit("ECode")));
    delete name;
    EXPECT_EQ(Names(), "ECode");
}

TEST_F(SearchFields, FreeingAControlOfAnotherOwnerRemovesItsEntry) {
    auto other = std::make_unique<TForm>(nullptr);
    auto* edit = new TEdit(other.get());
    edit->SetName("EName");
    fields->Afegeix(Of(edit));
    other.reset();
    EXPECT_EQ(fields->Count(), 0);
}

TEST_F(SearchFields, FreeingAControlThatIsListedByNameAloneRemovesItsEntry) {
    Read(List(List(FirstFormat("EName")) + List(FirstFormat("ECode"))));
    TEdit* name = MakeEdit("EName");
    auto other = std::make_unique<TForm>(nullptr);
    auto* elsewhere = new TEdit(other.get());
    elsewhere->SetName("ECode");
    elsewhere->FreeNotification(fields);
    delete name;
    EXPECT_EQ(Names(), "ECode?");
    other.reset();
    EXPECT_EQ(Names(), "ECode?") << "another form's control of that name is another control";
}

TEST_F(SearchFields, WhileTheFormIsLoadedOrDesignedAnEntryOutlivesItsControl) {
    for (const TComponentStateFlag state : {csLoading, csDesigning}) {
        fields->Afegeix(Of(MakeEdit("EName")));
        form->ComponentState.Include(state);
        delete form->FindComponent("EName");
        form->ComponentState.Exclude(state);
        EXPECT_EQ(Names(), "EName?");
        TEdit* again = MakeEdit("EName");
        EXPECT_EQ(Names(), "EName");
        EXPECT_EQ(fields->GetCampsBuscarComponent(0).Component, again);
        delete again;
        EXPECT_EQ(fields->Count(), 0);
    }
}

TEST_F(SearchFields, WhileTheFormGoesEntriesOnlyLetGo) {
    // Controls made later go first.
    TEdit* name = MakeEdit("EName");
    name->FreeNotification(form.get());
    fields->Afegeix(Of(name));
    form->Destroying();
    delete name;
    EXPECT_EQ(Names(), "EName?");
    form.reset();
}

TEST_F(SearchFields, EntriesFindTheirControlsWhenTheseCome) {
    Read(List(List(FirstFormat("EName")) + List(FirstFormat("ECode"))));
    EXPECT_FALSE(fields->NamesResolved());
    EXPECT_EQ(Names(), "EName? ECode?");
    TEdit* code = MakeEdit("ECode");
    EXPECT_EQ(Names(), "EName? ECode");
    EXPECT_FALSE(fields->NamesResolved()) << "one is missing yet";
    TEdit* name = MakeEdit("EName");
    EXPECT_EQ(fields->PosicioIndex(name), 0);
    EXPECT_EQ(fields->PosicioIndex(code), 1);
    EXPECT_TRUE(fields->NamesResolved());
}

TEST_F(SearchFields, EveryOperationLooksForMissingControlsFirst) {
    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"Count", [&] { fields->Count(); }},
        {"Get", [&] { fields->GetCampsBuscarComponent(0); }},
        {"Set", [&] { fields->SetCampsBuscarComponent(1, {}); }},
        {"PosicioIndex", [&] { fields->PosicioIndex(nullptr); }},
        {"Exchange", [&] { fields->Exchange(1, 1); }},
        {"Elimina", [&] { fields->Elimina(1); }},
        {"Afegeix", [&] { fields->Afegeix({}); }},
        {"Check", [&] { fields->CheckComponentNames(); }},
        {"Write", [&] { Stored(); }},
    };
    for (const auto& [name, operation] : operations) {
        SCOPED_TRACE(name);
        fields->Afegeix(Named("EName"));
        fields->Afegeix({});
        TEdit* edit = MakeEdit("EName");
        operation();
        // What waits for its control would stay when the control goes while the form is designed; what is bound lets go
        // of it and keeps the letters of its name.
        edit->SetName("ERenamed");
        EXPECT_EQ(fields->GetCampsBuscarComponent(0).Component, edit);
        delete edit;
        while (fields->Count()) fields->Elimina(0);
    }
}

TEST_F(SearchFields, AControlFromElsewhereIsBoundByItsName) {
    fields->Afegeix(Named("ENAME"));
    auto other = std::make_unique<TForm>(nullptr);
    auto* edit = new TEdit(other.get());
    edit->SetName("EName");
    EXPECT_EQ(fields->PosicioIndex(edit), 0);
    EXPECT_EQ(fields->GetCampsBuscarComponent(0).Component, edit);
    EXPECT_TRUE(fields->NamesResolved() || fields->Count() == 1);
    other.reset();
    EXPECT_EQ(fields->Count(), 0);
}

TEST_F(SearchFields, TheEntryOfAControlComesBeforeOneThatWaitsForItsName) {
    auto other = std::make_unique<TForm>(nullptr);
    auto* edit = new TEdit(other.get());
    edit->SetName("EName");
    fields->Afegeix(Named("Nobody"));
    fields->Afegeix(Of(edit));
    TCampBuscar waiting = Named("EName");
    fields->SetCampsBuscarComponent(0, waiting);
    EXPECT_EQ(fields->PosicioIndex(edit), 1);
    EXPECT_EQ(Names(), "EName? EName");
}

TEST_F(SearchFields, AnEntryWithoutANameIsBoundToNothing) {
    fields->Afegeix({});
    TEdit unnamed(form.get());
    EXPECT_EQ(fields->PosicioIndex(&unnamed), -1);
    EXPECT_EQ(Names(), "?");
}

TEST_F(SearchFields, AListWithoutAnOwnerKeepsItsNames) {
    TCampsBuscar alone(nullptr);
    alone.Afegeix(Named("EName"));
    EXPECT_EQ(alone.Count(), 1);
    EXPECT_EQ(alone.GetCampsBuscarComponent(0).Component, nullptr);
}

TEST_F(SearchFields, AreStoredByteForByte) {
    TCampBuscar entry = Of(MakeEdit("EName"));
    entry.IntValue1 = 5;
    entry.IntValue2 = 1000;
    entry.Text1 = "a";
    entry.IntValue3 = -1;
    entry.Text2 = "b";
    entry.Text3 = "c";
    entry.IntValue4 = 7;
    entry.Flag = true;
    entry.Text4 = "d";
    entry.Items = {"e", "f"};
    fields->Afegeix(entry);
    const AnsiString expected = List(List(FirstFormat("EName") + "\x02\x07\x09\x06\x01"
                                                                 "d\x06\x01"
                                                                 "e\x06\x01"
                                                                 "f"));
    EXPECT_EQ(Stored(), expected);
    fields->Elimina(0);
    Read(expected);
    entry.ComponentName = "EName";
    EXPECT_EQ(fields->GetCampsBuscarComponent(0), entry);
    EXPECT_TRUE(fields->NamesResolved());
}

TEST_F(SearchFields, TheFirstFormatLoads) {
    Read(List(List(FirstFormat("EName"))));
    TCampBuscar entry = Named("EName");
    entry.IntValue1 = 5;
    entry.IntValue2 = 1000;
    entry.Text1 = "a";
    entry.IntValue3 = -1;
    entry.Text2 = "b";
    entry.Text3 = "c";
    EXPECT_EQ(fields->GetCampsBuscarComponent(0), entry) << "IntValue4 0, Flag false, no Text4, no Items";
}

TEST_F(SearchFields, TheSecondFormatLoads) {
    Read(List(List(FirstFormat("EName") + "\x02\x07")));
    const TCampBuscar entry = fields->GetCampsBuscarComponent(0);
    EXPECT_EQ(entry.IntValue4, 7);
    EXPECT_FALSE(entry.Flag);
    EXPECT_EQ(entry.Text4, "");
    EXPECT_FALSE(entry.Items.has_value());
}

TEST_F(SearchFields, TheThirdFormatLoadsWithAndWithoutLines) {
    Read(List(List(FirstFormat("EName") + "\x04\x01\x02\x03\x04\x08\x06\x01"
                                          "d") +
              List(FirstFormat("ECode") + "\x03\x01\x02\x09\x06\x01"
                                          "d\x06\x01"
                                          "e\x0C\x01\0\0\0"
                                          "f"s) +
              List(FirstFormat("EDate"))));
    ASSERT_EQ(fields->Count(), 3);
    EXPECT_EQ(fields->GetCampsBuscarComponent(0).IntValue4, 0x04030201);
    EXPECT_FALSE(fields->GetCampsBuscarComponent(0).Flag);
    EXPECT_EQ(fields->GetCampsBuscarComponent(0).Text4, "d");
    EXPECT_FALSE(fields->GetCampsBuscarComponent(0).Items.has_value());
    EXPECT_EQ(fields->GetCampsBuscarComponent(1).IntValue4, 0x0201);
    EXPECT_TRUE(fields->GetCampsBuscarComponent(1).Flag);
    EXPECT_EQ(fields->GetCampsBuscarComponent(1).Items, (std::vector<AnsiString>{"e", "f"}));
    EXPECT_EQ(fields->GetCampsBuscarComponent(2).Text3, "c");
}

TEST_F(SearchFields, EachLaterValueIsReadByItsTypeAlone) {
    Read(List(List(FirstFormat("EName") + "\x09\x06\x01"
                                          "d") +
              List(FirstFormat("ECode") + "\x06\x01"
                                          "e")));
    EXPECT_TRUE(fields->GetCampsBuscarComponent(0).Flag);
    EXPECT_EQ(fields->GetCampsBuscarComponent(0).Text4, "d");
    EXPECT_EQ(fields->GetCampsBuscarComponent(1).Items, (std::vector<AnsiString>{"e"}));
}

TEST_F(SearchFields, TheNameOfAControlThatIsNotThereIsNotStored) {
    fields->Afegeix(Named("EName"));
    EXPECT_EQ(Stored(), List(List(AnsiString("\x02\0\x02\0\x06\0\x02\0\x06\0\x06\0\x02\0\x08\x06\0", 17))));
    Read(Stored());
    EXPECT_EQ(Names(), "EName? ?") << "and what was stored so can be read";
}

TEST_F(SearchFields, AListMayNotNameAControlTwice) {
    MakeEdit("EName");
    EXPECT_EQ(MessageOf([&] { Read(List(List(FirstFormat("EName")) + List(FirstFormat("EName")))); }),
              "ECampsBuscar: ERROR CAMPS BUSCAR\nAquest component ja existeix!");
    EXPECT_EQ(fields->Count(), 1) << "what came before is kept";
    MakeEdit("ECode");
    fields->Afegeix(Named("ECode"));
    EXPECT_EQ(Names(), "EName ECode") << "after the error controls are looked for as before";
}

TEST_F(SearchFields, TravelWithTheirForm) {
    RegistraClassesVyn();
    const auto stored = [this] {
        TMemoryStream stream;
        WriteComponentToStream(stream, *form);
        return AnsiString(stream.Bytes());
    };
    const auto text = [](const AnsiString& bytes) {
        TViewStream stream(bytes);
        return BinaryToText(stream);
    };
    EXPECT_EQ(text(stored()).find("CampsBuscar ="), std::string::npos) << "an empty list is not stored";
    // The control comes after the list in the form.
    TCampBuscar entry = Of(MakeEdit("EName"));
    entry.Items = {"one"};
    fields->Afegeix(entry);
    const AnsiString bytes = stored();
    EXPECT_NE(text(bytes).find("CampsBuscar = ("), std::string::npos) << text(bytes);
    TMemoryStream fromText;
    TextToBinary(text(bytes), fromText);
    EXPECT_EQ(fromText.Bytes(), bytes);
    TForm again(nullptr);
    TViewStream stream(bytes);
    ReadComponentFromStream(stream, &again);
    auto* read = ObjectCast<TCampsBuscar>(again.FindComponent("Fields"));
    ASSERT_NE(read, nullptr);
    ASSERT_EQ(read->Count(), 1);
    EXPECT_EQ(read->GetCampsBuscarComponent(0).Component, again.FindComponent("EName"));
    EXPECT_EQ(read->GetCampsBuscarComponent(0).Items, (std::vector<AnsiString>{"one"}));
}

TEST_F(SearchFields, AnEmptyListIsStoredAgainstAnAncestor) {
    TForm ancestor(nullptr);
    ancestor.SetName("Search");
    auto* inherited = new TCampsBuscar(&ancestor);
    inherited->SetName("Fields");
    inherited->Afegeix(Named("EName"));
    TMemoryStream stream;
    {
        TWriter writer(stream);
        writer.WriteDescendent(*form, &ancestor);
    }
    stream.SetPosition(0);
    EXPECT_NE(BinaryToText(stream).find("CampsBuscar = ("), std::string::npos);
}

TEST_F(SearchFields, ATruncatedListIsAReadError) {
    const AnsiString whole = List(List(FirstFormat("EName") + "\x02\x07\x09\x06\x01"
                                                              "d\x06\x01"
                                                              "e"));
    for (size_t size = 0; size < whole.size(); ++size) {
        TViewStream cut(std::string_view(whole).substr(0, size));
        TReader reader(cut);
        EXPECT_EQ(MessageOf([&] { fields->ReadData(reader); }).substr(0, 10), "EReadError") << size;
        EXPECT_EQ(fields->Count(), 0) << size << ": half an entry is none";
        // The last byte closes the list: by then the entry is whole.
        if (size + 2 == whole.size()) break;
    }
}

TEST_F(SearchFields, AValueOfAnotherTypeIsAReadError) {
    EXPECT_EQ(MessageOf([&] { Read(List("\x06\x01"s + "a")); }).substr(0, 10), "EReadError");
    EXPECT_EQ(MessageOf([&] { Read(List(List("\x06\x01"s + "a"))); }).substr(0, 10), "EReadError");
    EXPECT_EQ(MessageOf([&] { Read(List(List(FirstFormat("EName") + "\x0D"))); }).substr(0, 10), "EReadError");
}
