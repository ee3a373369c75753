#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <map>
#include <set>

#include "app/Utvynapp.h"
#include "events/Ueventsvyn.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/objects/component_handle.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "registry/walk.h"

namespace vyn::registry {

namespace {

// Starts the package, and an application object, whose making registers the palette.
class Registry : public testing::Test {
  protected:
    Registry() {
        InitializePackage();
        RegistraClassesVyn();
    }
    ~Registry() override { FinalizePackage(); }

    // Calls `check` with every class; what it raises is that class's failure.
    static void ForEach(const std::function<void(TClass)>& check) {
        const std::vector<TClass> classes = ComponentClasses();
        ASSERT_GT(classes.size(), 50u);
        for (TClass each : classes) {
            SCOPED_TRACE(each->Name());
            try {
                check(each);
            } catch (const Exception& error) {
                ADD_FAILURE() << error.ClassName() << ": " << error.Message();
            }
        }
    }
};

// Exceptions to a rule: a property of every class ("Index") or of one ("TForm.Visible"), or a class, each with the
// reason.
using Reasons = std::map<AnsiString, const char*>;

// Whether the property is excepted; what was looked up and found is noted.
bool Excepted(const Reasons& reasons, TClass classInfo, const AnsiString& path, std::set<AnsiString>& used) {
    for (const AnsiString& name : {path, classInfo->Name() + (path.empty() ? "" : "." + path)})
        if (reasons.count(name)) {
            used.insert(name);
            return true;
        }
    return false;
}

// No exception outlives its reason.
void ExpectAllUsed(const Reasons& reasons, const std::set<AnsiString>& used) {
    for (const auto& [name, reason] : reasons) EXPECT_TRUE(used.count(name)) << name << " needs no exception any more";
}

// Setters that rightly keep no other value on a component that stands alone.
const Reasons kKeepNothing = {
    {"Active", "there is no database to open"},
    {"Connected", "there is no database to open"},
    {"Index", "a place among fields, and there is no other"},
    {"ItemIndex", "there are no items"},
    {"TabOrder", "a place among controls, and there is no other"},
    {"TTabSheet.PageIndex", "a place among pages, and there is no page control"},
    {"HorzScrollBar.Position", "there is nothing to scroll to"},
    {"VertScrollBar.Position", "there is nothing to scroll to"},
    {"TParserVyn.Expression", "a word is no expression without a variable of that name"},
    {"TSpeedButton.Down", "without a group a button does not stay down"},
    {"TListBox.ItemHeight", "the font decides until the owner draws"},
    {"TDBListBox.ItemHeight", "the font decides until the owner draws"},
    {"TEdit.Height", "its size follows its font"},
    {"TMaskEdit.Height", "its size follows its font"},
    {"TDBEdit.Height", "its size follows its font"},
    {"TBaseVynEditBox.Height", "its size follows its font"},
    {"TVynEditBox.Height", "its size follows its font"},
    {"TStaticText.Width", "its size follows its text"},
    {"TStaticText.Height", "its size follows its text"},
    {"TSplitter.Left", "its alignment decides"},
    {"TSplitter.Top", "its alignment decides"},
    {"TSplitter.Height", "its alignment decides"},
    {"TStatusBar.Left", "its alignment decides"},
    {"TStatusBar.Top", "its alignment decides"},
    {"TStatusBar.Width", "its alignment decides"},
    {"TToolBar.Left", "its alignment decides"},
    {"TToolBar.Top", "its alignment decides"},
    {"TToolBar.Width", "its alignment decides"},
};

// Classes that cannot stand alone.
const Reasons kOnlyOnForms = {{"TSubConsultes", "its owner must be a form"}};

// What a new component stores although nobody has set it.
const Reasons kStoredWhenNew = {
    {"TForm.Font.Name", "a form keeps its font for machines that have another one"},
    {"TDataBaseVynADO.SQLFormatDate", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLFormatTime", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLFormatDateTime", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLUndefinedChar", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLUndefinedChars", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLDateTimeStart", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.SQLDateTimeEnd", "literals are the engine's, whatever a later version begins with"},
    {"TDataBaseVynADO.VynDBName", "a database always has a name"},
    {"TDBCheckBox.ValueChecked", "words in the database, whatever a later version begins with"},
    {"TDBCheckBox.ValueUnchecked", "words in the database, whatever a later version begins with"},
    {"TVynApp.VynBPLName", "only an application without a package stores no name"},
};

// Values that reading rightly turns into others.
const Reasons kReadAsOthers = {
    {"TForm.PixelsPerInch", "a form of another screen is scaled to this one"},
    {"TForm.Visible", "a form that is read shows when it is complete, which is not asked for here"},
    {"TLabel.Width", "its size follows its text"},
    {"TLabel.Height", "its size follows its text"},
    {"TSplitter.Constraints.MaxHeight", "alignment and limit contend for the size"},
    {"TStatusBar.Constraints.MaxWidth", "alignment and limit contend for the size"},
    {"TToolBar.Constraints.MaxWidth", "alignment and limit contend for the size"},
};

}  // namespace

TEST_F(Registry, EveryComponentCanBeMadeWithoutAnOwner) {
    std::set<AnsiString> used;
    ForEach([&](TClass each) {
        if (Excepted(kOnlyOnForms, each, {}, used)) {
            EXPECT_THROW(each->Create(nullptr), Exception);
            return;
        }
        const std::unique_ptr<TObject> made(each->Create(nullptr));
        ASSERT_NE(made, nullptr);
        EXPECT_EQ(made->ClassType(), each);
        EXPECT_EQ(static_cast<TComponent&>(*made).Owner(), nullptr);
    });
    ExpectAllUsed(kOnlyOnForms, used);
}

TEST_F(Registry, EveryComponentCanBeMadeWithAnOwnerThatFreesIt) {
    ForEach([](TClass each) {
        auto owner = std::make_unique<TForm>(nullptr);
        const int before = owner->ComponentCount();
        auto* made = static_cast<TComponent*>(each->Create(owner.get()));
        EXPECT_EQ(made->Owner(), owner.get());
        EXPECT_EQ(owner->ComponentCount(), before + 1);
        const int handle = made->Handle();
        EXPECT_EQ(ComponentFromHandle(handle), made);
        owner.reset();
        EXPECT_EQ(ComponentFromHandle(handle), nullptr);
    });
}

TEST_F(Registry, PropertyNamesAreUniqueWithoutRegardToCase) {
    ForEach([](TClass each) {
        for (TClass at = each; at; at = at->Parent()) {
            std::set<AnsiString> names;
            for (const PropertyInfo& property : at->Properties()) {
                EXPECT_NE(property.Name, "");
                EXPECT_TRUE(names.insert(UpperCase(property.Name)).second)
                    << property.Name << " twice in " << at->Name();
                EXPECT_EQ(at->FindProperty(LowerCase(property.Name)), &property);
            }
        }
    });
}

// Stored forms hold properties in the order in which they are published: what changes here changes every stored form.
TEST_F(Registry, WhatIsPublishedAndItsOrderStand) {
    std::map<AnsiString, AnsiString> expected;
    std::ifstream golden(VYN_SOURCE_DIR "/tests/golden/published.txt");
    for (std::string line; std::getline(golden, line);)
        if (!line.empty() && line.front() != '#') expected[line.substr(0, line.find(' '))] = line;
    ForEach([&](TClass each) {
        for (TClass at = each; at; at = at->Parent()) {
            if (at->Properties().empty()) continue;
            AnsiString line = at->Name() + " (" + (at->Parent() ? at->Parent()->Name() : AnsiString()) + "):";
            for (const PropertyInfo& property : at->Properties()) line += " " + property.Name;
            EXPECT_TRUE(expected[at->Name()] == line) << "what is published now:\n" << line;
        }
    });
}

TEST_F(Registry, ANewComponentStoresNothingThatHasADefault) {
    std::set<AnsiString> used;
    ForEach([&](TClass each) {
        TForm form(nullptr);
        const std::unique_ptr<TObject> made(each->Create(kOnlyOnForms.count(each->Name()) ? &form : nullptr));
        for (const Published& published : PropertiesOf(static_cast<TPersistent&>(*made))) {
            const PropertyInfo& property = *published.Property;
            if (!published.Stored || property.ReadOnly) continue;
            switch (property.Kind) {
                case PropertyKind::Integer:
                case PropertyKind::Character:
                case PropertyKind::Enumeration:
                case PropertyKind::Set:
                    if (property.HasDefault)
                        EXPECT_EQ(property->GetOrdinal(*published.Instance), property.Default) << published.Path;
                    break;
                case PropertyKind::Int64:
                    EXPECT_EQ(property->GetOrdinal(*published.Instance), property.Default) << published.Path;
                    break;
                case PropertyKind::Float:
                    EXPECT_EQ(property->GetFloat(*published.Instance), 0.0L) << published.Path;
                    break;
                case PropertyKind::Class:
                    EXPECT_EQ(ObjectCast<TComponent>(property->GetObject(*published.Instance)), nullptr)
                        << published.Path;
                    break;
                case PropertyKind::String:
                case PropertyKind::WideText:
                case PropertyKind::Variant:
                case PropertyKind::Method:
                    if (const AnsiString value = ValueText(published); !value.empty())
                        EXPECT_TRUE(Excepted(kStoredWhenNew, each, published.Path, used))
                            << published.Path << " is \"" << value << "\"";
            }
        }
    });
    ExpectAllUsed(kStoredWhenNew, used);
}

TEST_F(Registry, GettersAndSettersAgree) {
    std::set<AnsiString> used;
    ForEach([&](TClass each) {
        for (const AnsiString& path : SettablePaths(each)) {
            OnForm place(each);
            const Published published = PropertyAt(place.Component(), path);
            const AnsiString before = ValueText(published);
            if (!SetAnother(published))
                EXPECT_TRUE(Excepted(kKeepNothing, each, path, used))
                    << path << " keeps \"" << ValueText(published) << "\", before \"" << before << "\"";
        }
    });
    ExpectAllUsed(kKeepNothing, used);
}

TEST_F(Registry, ChangedComponentsSurviveWriteReadWrite) {
    std::set<AnsiString> used;
    ForEach([&](TClass each) {
        std::vector<AnsiString> paths = SettablePaths(each);
        paths.push_back({});  // none changed
        for (const AnsiString& path : paths) {
            AnsiString first;
            TClass rootClass = nullptr;
            {
                // Gone before it is read again: databases have names that no other has.
                OnForm place(each);
                if (!path.empty()) SetAnother(PropertyAt(place.Component(), path));
                first = Written(place.Root());
                rootClass = place.Root().ClassType();
            }
            TViewStream view(first);
            const std::unique_ptr<TObject> root(rootClass->Create(nullptr));
            ReadComponentFromStream(view, static_cast<TComponent*>(root.get()));
            const AnsiString second = Written(static_cast<TComponent&>(*root));
            if (first == second || Excepted(kReadAsOthers, each, path, used)) continue;
            TViewStream one(first), two(second);
            ADD_FAILURE() << each->Name() << "." << path << "\n" << BinaryToText(one) << "---\n" << BinaryToText(two);
        }
    });
    ExpectAllUsed(kReadAsOthers, used);
}

// Rules are stored data, and set any property of any component.
TEST_F(Registry, NoPropertyIsHarmedByWhatARuleSets) {
    const Variant values[] = {Variant(0),
                              Variant(-1),
                              Variant(1),
                              Variant(1000000),
                              Variant(INT_MAX),
                              Variant(INT_MIN),
                              Variant(""),
                              Variant(AnsiString(70000, '9')),
                              Variant("\xFF\x01'\"\r\n"),
                              Variant::Null()};
    int taken = 0;
    ForEach([&](TClass each) {
        for (const AnsiString& path : SettablePaths(each)) {
            if (path.find('.') != AnsiString::npos) continue;  // rules set what a component itself publishes
            for (const Variant& value : values) {
                OnForm place(each);
                TEventsVyn rules(&place.Root());
                try {
                    rules.ExecutaCodiDesti(nullptr, {tdcPropietat, place.Component().Name() + "." + path}, value);
                    ++taken;
                    Variant now;
                    rules.CapturaValorOrigen(nullptr, {tdcPropietat, place.Component().Name() + "." + path}, now);
                    Written(place.Root());
                } catch (const Exception&) {
                    // Refused: fine.
                }
            }
        }
    });
    EXPECT_GT(taken, 1000);
}

TEST_F(Registry, ThePaletteRegistersEveryLinkedClassInItsOrder) {
    FinalizePackage();
    InitializePackage();
    TVynClassesRegistrades& registry = *VynRegisteredClasses();
    const int before = registry.Count();
    RegistraClassesVyn();
    std::vector<AnsiString> wanted;
    for (const PaletteClass& line : VynPalette()) {
        if (!FindLinkedClass(line.name)) continue;
        if (std::find(wanted.begin(), wanted.end(), line.name) == wanted.end()) wanted.push_back(line.name);
    }
    std::vector<AnsiString> found;
    for (int i = before; i < registry.Count(); ++i) found.push_back(registry.GetClasse(i).Classe->Name());
    EXPECT_EQ(found, wanted);
    EXPECT_GT(wanted.size(), 30u);
    for (const PaletteClass& line : VynPalette())
        if (TClass linked = FindLinkedClass(line.name)) {
            EXPECT_EQ(GetClass(line.name), linked) << line.name;
            EXPECT_EQ(registry.GetClasse(registry.IndexOfClasse(linked)).Tipus, line.tipus) << line.name;
        }
}

TEST_F(Registry, TheFrameworksComponentsComeInTheirOrder) {
    FinalizePackage();
    InitializePackage();
    std::vector<AnsiString> wanted;
    for (const char* name : {"TCampsBuscar", "TParserVyn", "TQuerySQL", "TAjudaFormulariVyn", "TRichEditVyn",
                             "TCmpStringList", "TEventsVyn", "TSubConsultes", "TDBPanel"})
        if (FindLinkedClass(name)) wanted.push_back(name);
    EXPECT_GE(wanted.size(), 5u);
    std::vector<AnsiString> found;
    TVynClassesRegistrades& registry = *VynRegisteredClasses();
    for (int i = 0; i < registry.Count(); ++i) {
        const TClasseRegistrada classe = registry.GetClasse(i);
        if (classe.Tipus != TTipusClasse::VynComp) continue;
        found.push_back(classe.Classe->Name());
        EXPECT_FALSE(classe.Flag);
        EXPECT_FALSE(classe.Notify);
        EXPECT_EQ(GetClass(classe.Classe->Name()), classe.Classe);
    }
    EXPECT_EQ(found, wanted);
    RegistraClassesVyn();
    EXPECT_EQ(registry.IndexOfClasse(FindLinkedClass("TCampsBuscar")), 0) << "the palette comes behind them";
}

TEST_F(Registry, CheckBoxStandsOnceAtItsFirstPlace) {
    TVynClassesRegistrades& registry = *VynRegisteredClasses();
    std::vector<int> places;
    for (int i = 0; i < registry.Count(); ++i)
        if (registry.GetClasse(i).Classe->Name() == "TCheckBox") places.push_back(i);
    ASSERT_EQ(places.size(), 1u);
    EXPECT_EQ(registry.GetClasse(places[0] - 1).Classe->Name(), "TButton");
    EXPECT_EQ(registry.GetClasse(places[0] + 1).Classe->Name(), "TRadioButton");
    EXPECT_EQ(registry.GetClasse(places[0]).Tipus, TTipusClasse::Standard);
}

TEST_F(Registry, RegisteringTwiceChangesNothing) {
    const int count = VynRegisteredClasses()->Count();
    RegistraClassesVyn();
    EXPECT_EQ(VynRegisteredClasses()->Count(), count);
}

}  // namespace vyn::registry
