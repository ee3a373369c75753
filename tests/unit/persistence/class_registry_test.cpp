#include <gtest/gtest.h>

#include "persistence/Uvynclss.h"
#include "platform/objects/class_table.h"
#include "platform/objects/component.h"

using namespace vyn;

namespace class_registry_tests {

class TRegistered : public TComponent {
    VYN_OBJECT
  public:
    using TComponent::TComponent;
};
const ClassInfo& TRegistered::StaticClass() {
    static const ClassInfo info = DefineClass<TRegistered, TComponent>("TRegistered");
    return info;
}
class TRegisteredChild : public TRegistered {
    VYN_OBJECT
  public:
    using TRegistered::TRegistered;
};
const ClassInfo& TRegisteredChild::StaticClass() {
    static const ClassInfo info = DefineClass<TRegisteredChild, TRegistered>("TRegisteredChild");
    return info;
}
TClasseRegistrada Entry(TClass classInfo, TTipusClasse type = TTipusClasse::Standard) {
    TClasseRegistrada entry = ClasseRegistrada_Nul();
    entry.Classe = classInfo;
    entry.Tipus = type;
    return entry;
}

}  // namespace class_registry_tests

using namespace class_registry_tests;

TEST(ClassRegistry, CategoriesHaveTheirNumbersAndNames) {
    const char* const names[] = {"Desconegut", "Standard", "Additional", "Win32",        "System",
                                 "VynComp",    "Internet", "DataAccess", "DataControls", "QReport",
                                 "Dialogs",    "Win31",    "Samples",    "ActiveX",      "Vyn"};
    for (int i = 0; i < TipusClasseCount; ++i) EXPECT_STREQ(NomTipusClasseRegistrada[i], names[i]);
    EXPECT_EQ(static_cast<int>(TTipusClasse::Systema), 4);
    EXPECT_EQ(static_cast<int>(TTipusClasse::Dialegs), 10);
    EXPECT_EQ(static_cast<int>(TTipusClasse::Vyn), 14);
}

TEST(ClassRegistry, TheEmptyRegistration) {
    EXPECT_EQ(ClasseRegistrada_Nul().Tipus, TTipusClasse::Desconegut);
    EXPECT_EQ(ClasseRegistrada_Nul().Classe, nullptr);
    EXPECT_FALSE(ClasseRegistrada_Nul().Flag);
    EXPECT_FALSE(static_cast<bool>(ClasseRegistrada_Nul().Notify));
}

TEST(ClassRegistry, RegisteringMakesTheStreamingTableKnowTheClass) {
    TVynClassesRegistrades registry;
    registry.DoRegisterClass(Entry(&TRegistered::StaticClass()));
    EXPECT_EQ(GetClass("TRegistered"), &TRegistered::StaticClass());
    EXPECT_TRUE(registry.IsRegistered(&TRegistered::StaticClass()));
    registry.DelClasse(0);
    EXPECT_EQ(GetClass("TRegistered"), nullptr);
    EXPECT_EQ(registry.Count(), 0);
}

TEST(ClassRegistry, AClassThatOthersRegisteredStaysInTheTable) {
    RegisterClass(&TRegistered::StaticClass());
    {
        TVynClassesRegistrades registry;
        registry.DoRegisterClass(Entry(&TRegistered::StaticClass()));
        registry.DelClasse(0);
        EXPECT_EQ(GetClass("TRegistered"), &TRegistered::StaticClass());
    }
    UnRegisterClass(&TRegistered::StaticClass());
}

TEST(ClassRegistry, DestroyingItTakesBackItsOwnRegistrations) {
    {
        TVynClassesRegistrades registry;
        registry.DoRegisterClass(Entry(&TRegistered::StaticClass()));
        registry.DoRegisterClass(Entry(&TRegisteredChild::StaticClass()));
    }
    EXPECT_EQ(GetClass("TRegistered"), nullptr);
    EXPECT_EQ(GetClass("TRegisteredChild"), nullptr);
}

TEST(ClassRegistry, ASubclassIsNotRegisteredWithItsParent) {
    TVynClassesRegistrades registry;
    registry.DoRegisterClass(Entry(&TRegistered::StaticClass()));
    EXPECT_FALSE(registry.IsRegistered(&TRegisteredChild::StaticClass()));
    EXPECT_EQ(registry.IndexOfClasse(&TRegisteredChild::StaticClass()), -1);
}

TEST(ClassRegistry, RegisteringAgainUpdatesInPlace) {
    TVynClassesRegistrades registry;
    registry.DoRegisterClass(Entry(&TRegistered::StaticClass()));
    registry.DoRegisterClass(Entry(&TRegisteredChild::StaticClass()));
    TClasseRegistrada changed = Entry(&TRegistered::StaticClass(), TTipusClasse::Vyn);
    changed.Flag = true;
    changed.Notify = [](TObject*) {};
    registry.DoRegisterClass(changed);
    EXPECT_EQ(registry.Count(), 2);
    EXPECT_EQ(registry.IndexOfClasse(&TRegistered::StaticClass()), 0);
    EXPECT_EQ(registry.GetClasse(0).Tipus, TTipusClasse::Vyn);
    EXPECT_TRUE(registry.GetClasse(0).Flag);
    EXPECT_TRUE(static_cast<bool>(registry.GetClasse(0).Notify));
    registry.DelClasse(0);
    EXPECT_EQ(GetClass("TRegistered"), nullptr);
}

TEST(ClassRegistry, ThePackagesRegistryIsMadeOnceAndGoes) {
    InitializeVynRegisteredClasses();
    TVynClassesRegistrades* registry = VynRegisteredClasses();
    InitializeVynRegisteredClasses();
    EXPECT_EQ(VynRegisteredClasses(), registry);
    RegistraClasse(TTipusClasse::VynComp, &TRegistered::StaticClass(), false, TNotifyEvent());
    EXPECT_EQ(registry->GetClasse(0).Tipus, TTipusClasse::VynComp);
    EXPECT_EQ(registry->FindByName("tregistered"), &TRegistered::StaticClass());
    FinalizeVynRegisteredClasses();
    EXPECT_EQ(VynRegisteredClasses(), nullptr);
    EXPECT_EQ(GetClass("TRegistered"), nullptr);
}

TEST(ClassRegistry, ThePaletteListsTheClassesInOrder) {
    const std::vector<PaletteClass>& palette = VynPalette();
    ASSERT_EQ(palette.size(), 82u);
    EXPECT_STREQ(palette.front().name, "TMainMenu");
    EXPECT_STREQ(palette[11].name, "TCheckBox");
    EXPECT_STREQ(palette.back().name, "TReplaceDialog");
    EXPECT_EQ(palette.back().tipus, TTipusClasse::Dialegs);
}
