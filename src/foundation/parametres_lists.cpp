#include <algorithm>

#include "foundation/Uparametres.h"
#include "platform/text/numbers.h"

namespace vyn {

const ClassInfo& TParametresChild::StaticClass() {
    static const ClassInfo info = DefineClass<TParametresChild, TComponent>("TParametresChild")
                                      .Published("Params", &TParametresChild::Params, &TParametresChild::SetParams)
                                      .Stored(&TParametresChild::DoSaveParams)
                                      .Event("OnGetValorPRM", &TParametresChild::OnGetValorPRM)
                                      .Event("OnSetValorPRM", &TParametresChild::OnSetValorPRM)
                                      .Event("OnChangeValorPRM", &TParametresChild::OnChangeValorPRM);
    return info;
}

TParametresChild::~TParametresChild() {
    // The names are told off while they are there.
    if (params_) params_->DontNotifyChanges(this);
}

void TParametresChild::FollowName(const AnsiString& name) {
    names_.push_back(name);
    if (params_) params_->namedFollowers_.Add(name, place_, this);
}

void TParametresChild::ForgetNames() {
    if (params_)
        for (const AnsiString& name : names_) params_->namedFollowers_.Remove(name, place_);
    names_.clear();
}

void TParametresChild::SetParams(TParametres* value) {
    if (value == params_) return;
    if (params_) params_->DontNotifyChanges(this);
    params_ = value;
    if (value) value->NotifyChanges(this);
}

bool TParametresChild::DoSaveParams() const { return params_ && params_ != Parametres(); }

void TParametresChild::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == params_) params_ = nullptr;
}

const ClassInfo& TParametresList::StaticClass() {
    static const ClassInfo info = DefineClass<TParametresList, TComponent>("TParametresList");
    return info;
}

TParametresList::~TParametresList() {
    TParametres::ChangeBindings();
    BeginDestruction();
}

void TParametresList::Error(const AnsiString& message) { throw EParametresError(message); }

void TParametresList::Add(TParametres* params) {
    if (IndexOfParametre(params) >= 0) {
        // The address as the 32-bit platforms of old print it: its low eight digits.
        const auto address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(params));
        Error("Params with ID: " + params->Name() + " (" + IntToHex(address, 8) + ")");
    }
    list_.push_back(params);
    TParametres::ChangeBindings();
    params->FreeNotification(this);
}

TParametres* TParametresList::GetParams(int index) const {
    if (index < 0 || index >= Count()) Error("Index: " + IntToStr(index) + " not found in TParametresList to Get");
    return list_[static_cast<size_t>(index)];
}

void TParametresList::Delete(int index) {
    if (index < 0 || index >= Count()) Error("Index: " + IntToStr(index) + " not found in TParametresList for Delete");
    list_.erase(list_.begin() + index);
    TParametres::ChangeBindings();
}

int TParametresList::IndexOfParametre(const TParametres* params) const {
    const auto found = std::find(list_.begin(), list_.end(), params);
    return found == list_.end() ? -1 : static_cast<int>(found - list_.begin());
}

TParametres* TParametresList::ParamByName(std::string_view name, int& index) const {
    for (TParametres* params : list_)
        if (index = params->FindParam(name); index >= 0) return params;
    return nullptr;
}

TParametres* TParametresList::ParamByName(std::string_view name) const {
    int index = -1;
    return ParamByName(name, index);
}

AnsiString TParametresList::FormatText(const AnsiString& text) const {
    AnsiString result = text;
    for (TParametres* params : list_) result = params->FormatText(result);
    return result;
}

void TParametresList::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove) return;
    std::erase_if(list_, [&](TParametres* params) { return static_cast<TComponent*>(params) == component; });
    TParametres::ChangeBindings();
}

}  // namespace vyn
