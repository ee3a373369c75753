#include "package/package.h"

#include "app/Utvynapp.h"
#include "controls/Uvyneditbox.h"
#include "database/Udb_ado.h"
#include "datasources/Uvyndatasources.h"
#include "events/Ucampsbuscar.h"
#include "events/Ueventsvyn.h"
#include "events/Utvynsubcons.h"
#include "foundation/Uparametres.h"
#include "parser/Uparservyn.h"
#include "persistence/Uvynclss.h"
#include "platform/access/ado.h"
#include "platform/controls/control_classes.h"
#include "platform/controls/db_grids.h"
#include "platform/data/fields.h"
#include "platform/objects/class_table.h"
#include "platform/system/application.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace package_detail {

bool& Running() {
    static bool running = false;
    return running;
}

// The framework's own component classes.
constexpr const ClassInfo& (*kFrameworkClasses[])() = {
    &TVynApp::StaticClass,         &TParametres::StaticClass,     &TParametresChild::StaticClass,
    &TParametresList::StaticClass, &TTreeVynLink::StaticClass,    &TQuerySQL::StaticClass,
    &TParserVyn::StaticClass,      &TDataBaseVynADO::StaticClass, &TEventsVyn::StaticClass,
    &TCampsBuscar::StaticClass,    &TSubConsultes::StaticClass,   &TVynDataSource::StaticClass,
    &TBaseVynEditBox::StaticClass, &TVynEditBox::StaticClass,
};

void LinkFrameworkClasses() {
    for (const auto& classOf : kFrameworkClasses) AddLinkedClass(&classOf());
}

// Classes that forms need and no palette lists: what stands between data and controls, lookup boxes, popup menus.
void RegisterUnlistedClasses() {
    for (TClass each : LinkedClasses()) {
        const bool isData =
            each->InheritsFrom(&TField::StaticClass()) || each->InheritsFrom(&TDataSource::StaticClass()) ||
            each->InheritsFrom(&TADOConnection::StaticClass()) || each->InheritsFrom(&TDataBaseVyn::StaticClass());
        if (isData || each->InheritsFrom(&TBaseVynEditBox::StaticClass()) || each->Name() == "TPopupMenu")
            RegisterClass(each);
    }
}

// The framework's components for forms, in the order of the palette.
constexpr const ClassInfo& (*kComponentUnit[])() = {
    &TCampsBuscar::StaticClass, &TParserVyn::StaticClass,    &TQuerySQL::StaticClass,
    &TEventsVyn::StaticClass,   &TSubConsultes::StaticClass,
};

void RegisterComponentUnit() {
    for (const auto& classOf : kComponentUnit) RegistraClasse(TTipusClasse::VynComp, &classOf(), false, TNotifyEvent());
}

void UnregisterComponentUnit() {
    TVynClassesRegistrades& registry = *VynRegisteredClasses();
    for (const auto& classOf : kComponentUnit)
        if (const int at = registry.IndexOfClasse(&classOf()); at >= 0) registry.DelClasse(at);
}

// At the end nothing is linked and nothing registered: the package may start again.
void UnlinkAllClasses() {
    for (TClass each : RegisteredClasses()) UnRegisterClass(each);
    for (TClass each : LinkedClasses()) RemoveLinkedClass(each);
}

}  // namespace package_detail

void InitializePackage() {
    if (package_detail::Running()) return;
    package_detail::Running() = true;
    InitializeApplication();
    RegisterDataClasses();
    RegisterControlClasses();
    RegisterDataControlClasses();
    RegisterAccessClasses();
    package_detail::LinkFrameworkClasses();
    package_detail::RegisterUnlistedClasses();
    InitializeParametres();
    InitializeVynRegisteredClasses();
    package_detail::RegisterComponentUnit();
    InitializeDb_ado();
    InitializeVynDataSources();
}

void FinalizePackage() {
    if (!package_detail::Running()) return;
    package_detail::Running() = false;
    FinalizeVynDataSources();
    FinalizeDb_ado();
    package_detail::UnregisterComponentUnit();
    FinalizeVynRegisteredClasses();
    FinalizeParametres();
    package_detail::UnlinkAllClasses();
    FinalizeApplication();
}

}  // namespace vyn
