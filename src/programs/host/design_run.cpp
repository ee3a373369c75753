#include "programs/host/design_run.h"

#include <algorithm>

#include "controls/Ufrmeditvyneditbox.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/shortcuts.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"
#include "platform/objects/component_handle.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace design_run_detail {

// What the dialog edits.
constexpr const char* kSettings[] = {
    "DataField",    "VynDataSource",    "ReadOnly",         "DataLinkType", "NChild",
    "ChildDataKey", "ChildClassName",   "ChildDataShow",    "AutoSearch",   "AutoSearchWaitMiliSeconds",
    "AutoRefresh",  "ExecuteEventName", "RelationedFields", "ShowButton"};

const PropertyInfo& Setting(const char* name) { return *TVynEditBox::StaticClass().FindProperty(name); }

TStrings* LinesOf(const PropertyInfo& setting, const TVynEditBox& box) {
    return ObjectCast<TStrings>(setting->GetObject(box));
}

AnsiString ValueOf(const PropertyInfo& setting, const TVynEditBox& box) {
    if (setting.Kind == PropertyKind::String) return setting->GetString(box);
    if (setting.Kind != PropertyKind::Class) return IntToStr(setting->GetOrdinal(box));
    if (TStrings* lines = LinesOf(setting, box)) return lines->Text();
    const auto* component = ObjectCast<TComponent>(setting->GetObject(box));
    return component ? component->Name() : AnsiString();
}

std::vector<AnsiString> SettingsOf(const TVynEditBox& box) {
    std::vector<AnsiString> values;
    for (const char* name : kSettings) values.push_back(ValueOf(Setting(name), box));
    return values;
}

void CopySetting(const PropertyInfo& setting, const TVynEditBox& from, TVynEditBox& to, const TComponent& form) {
    if (setting.Kind == PropertyKind::String)
        setting->SetString(to, setting->GetString(from));
    else if (setting.Kind != PropertyKind::Class)
        setting->SetOrdinal(to, setting->GetOrdinal(from));
    else if (TStrings* lines = LinesOf(setting, from))
        LinesOf(setting, to)->Assign(lines);
    else
        setting->SetObject(to, ObjectCast<TPersistent>(form.FindComponent(ValueOf(setting, from))));
}

// The node's form as it is stored, which nobody has opened: nothing in it has run.
std::unique_ptr<TComponent> StoredForm(TVynApp& app, int idNode) {
    const std::unique_ptr<TMemoryStream> stored = app.RecursosFinals(idNode);
    if (!stored) return nullptr;
    AnsiString className;
    stored->SetPosition(0);
    ClasseDelObjecte(*stored, className);
    TComponent* form = CreateFormNew(FindClass(className), nullptr);
    std::unique_ptr<TComponent> made(form);
    stored->SetPosition(0);
    app.LlegeixComponent(*stored, form);
    return made;
}

// Whether a stored property is the setting, or a part of it ("RelationedFields.Strings").
bool IsOf(const TPropietatObjecte& property, const AnsiString& setting) {
    return SameText(property.Name.substr(0, property.Name.find('.')), setting);
}

// Takes one setting over from another stored object: in its place, or gone when it is gone there.
void TakeOver(const AnsiString& setting, const TRecursosObjecte& from, TRecursosObjecte& to) {
    std::erase_if(to.Propietats, [&](const TPropietatObjecte& each) { return IsOf(each, setting); });
    for (size_t i = 0; i < from.Propietats.size(); ++i) {
        if (!IsOf(from.Propietats[i], setting)) continue;
        // Behind the nearest property before it that both have.
        auto place = to.Propietats.begin();
        for (size_t before = i; before-- > 0 && place == to.Propietats.begin();) {
            const auto found = std::find_if(to.Propietats.begin(), to.Propietats.end(), [&](const auto& each) {
                return SameText(each.Name, from.Propietats[before].Name);
            });
            if (found != to.Propietats.end()) place = found + 1;
        }
        to.Propietats.insert(place, from.Propietats[i]);
    }
}

PRecursosObjecte TreeOf(TVynApp& app, int idComponent) {
    const auto stream = app.Components().GetStreamComponent(idComponent);
    if (!stream || stream->Size() == 0) return nullptr;
    stream->SetPosition(0);
    return StreamObjecteBinaryARECURSOS(*stream);
}

}  // namespace design_run_detail

using namespace design_run_detail;

bool DesignKey(TCustomFRM& form, uint16_t key, TShiftState shift) {
    if (key != VK_F2 || !(shift == TShiftState{ssCtrl})) return false;
    if (!form.VynApp() || !form.VynApp()->DesignTime()) return false;
    auto* box = ObjectCast<TVynEditBox>(form.ActiveControl());
    if (!box) return false;
    DesignEditBox(form, *box);
    return true;
}

void DesignEditBox(TCustomFRM& form, TVynEditBox& box) {
    const int boxAlive = box.TComponent::Handle();
    const int formAlive = form.TComponent::Handle();
    const std::vector<AnsiString> before = SettingsOf(box);
    DoEdit_EditBox(&box);
    if (ComponentFromHandle(boxAlive) != &box || ComponentFromHandle(formAlive) != &form) return;
    if (SettingsOf(box) != before) StoreEditBox(form, box);
}

void StoreEditBox(const TCustomFRM& form, const TVynEditBox& box) {
    TVynApp* app = form.VynApp();
    const std::unique_ptr<TComponent> stored = app ? StoredForm(*app, form.IDNode()) : nullptr;
    auto* copy = stored && !box.Name().empty() ? ObjectCast<TVynEditBox>(stored->FindComponent(box.Name())) : nullptr;
    if (!copy || box.Owner() != &form)
        throw Exception("The box \"" + box.Name() + "\" is not among the stored components of the form " + form.Name() +
                        ": its settings are not stored");
    std::vector<const char*> changed;
    for (const char* name : kSettings)
        if (ValueOf(Setting(name), *copy) != ValueOf(Setting(name), box)) changed.push_back(name);
    for (const char* name : changed) CopySetting(Setting(name), box, *copy, *stored);
    const int idComponent = form.Component().IDComponent;
    const PRecursosObjecte before = TreeOf(*app, idComponent);
    if (!app->GrabaResourceTComponent(stored.get(), form.IDNode(), form.Component())) return;
    // Everything else stays as it was written, so that a comparison shows the settings alone.
    const PRecursosObjecte after = TreeOf(*app, idComponent);
    TRecursosObjecte* kept = before ? ExisteixObjecte(before.get(), box.Name(), TotElArbre) : nullptr;
    const TRecursosObjecte* made = after ? ExisteixObjecte(after.get(), box.Name(), TotElArbre) : nullptr;
    if (!kept || !made) return;
    for (const char* name : changed) TakeOver(name, *made, *kept);
    TMemoryStream stream;
    RECURSOSObjecteAStreamBinary(*before, stream);
    app->Components().SetStreamComponent(idComponent, stream);
}

}  // namespace vyn
