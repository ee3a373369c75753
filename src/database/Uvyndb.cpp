#include "database/Uvyndb.h"

#include <algorithm>

#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace database_detail {

constexpr char kDefaultName[] = "DBDades";

std::vector<TDataBaseVyn*>& Live() {
    static std::vector<TDataBaseVyn*> live;
    return live;
}

}  // namespace database_detail

const ClassInfo& TDataBaseVyn::StaticClass() {
    static const ClassInfo info = DefineClass<TDataBaseVyn, TComponent>("TDataBaseVyn")
                                      .Published("DBFileName", &TDataBaseVyn::DBFileName, &TDataBaseVyn::DBFileName)
                                      .Published("VynDBName", &TDataBaseVyn::VynDBName, &TDataBaseVyn::SetVynDBName);
    return info;
}

TDataBaseVyn::TDataBaseVyn(TComponent* owner) : TComponent(owner) {
    database_detail::Live().push_back(this);
    MakeNameUnique();
}

TDataBaseVyn::~TDataBaseVyn() { std::erase(database_detail::Live(), this); }

void TDataBaseVyn::SetVynDBName(const AnsiString& name) {
    if (name == vynDBName_) return;
    if (Trim(name).empty()) throw Exception("VynDBName required");
    vynDBName_ = name;
    MakeNameUnique();
}

void TDataBaseVyn::MakeNameUnique() {
    const AnsiString base = Trim(vynDBName_).empty() ? AnsiString(database_detail::kDefaultName) : vynDBName_;
    AnsiString candidate = base;
    const auto taken = [&](const TDataBaseVyn* other) {
        return other != this && SameText(other->vynDBName_, candidate);
    };
    const auto& live = database_detail::Live();
    for (int number = 1; std::any_of(live.begin(), live.end(), taken); ++number) candidate = base + IntToStr(number);
    vynDBName_ = candidate;
}

TDataBaseVyn* FindDatabaseVyn(const AnsiString& name) {
    for (TDataBaseVyn* database : database_detail::Live())
        if (SameText(database->VynDBName(), name)) return database;
    return nullptr;
}

TDataBaseVyn* GetDataBaseVyn(const AnsiString& name) {
    if (TDataBaseVyn* database = FindDatabaseVyn(name)) return database;
    throw Exception("Database Vyn not found (" + name + ")");
}

}  // namespace vyn
