#include "datasources/data_link.h"

#include "datasources/Uvyndatasources.h"
#include "platform/controls/win_control.h"
#include "platform/data/data_set.h"
#include "platform/system/application.h"
#include "platform/system/ticks.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/folding.h"

namespace vyn {

namespace data_link_detail {

// As the search itself finds: typists leave accents out.
bool BeginsWith(const AnsiString& text, const AnsiString& beginning) {
    return BeginsFolded(text, beginning, TextFolding::CaseAndAccents);
}

// Whether a tick count lies ahead; ticks begin again at 0 after 49.7 days.
bool IsAhead(uint32_t tick) { return static_cast<int32_t>(tick - TickCount()) > 0; }

constexpr char kArrow = '>';

}  // namespace data_link_detail

using namespace data_link_detail;

TVynDataLink::TVynDataLink() = default;

TVynDataLink::~TVynDataLink() {
    if (TVynComponentList::IsLive(registered_)) registered_->DelVynDataLink(this);
}

// What stands behind the link.

TVynDataSource* TVynDataLink::VynDataSource() const { return ObjectCast<TVynDataSource>(DataSource()); }

TVynComponentList* TVynDataLink::ComponentList() const {
    TVynDataSource* source = VynDataSource();
    return source ? source->ComponentList() : nullptr;
}

void TVynDataLink::SetNChild(int32_t value) {
    if (value == nChild_) return;
    nChild_ = value;
    SettingChanged();
}

void TVynDataLink::SetChildDataKey(const AnsiString& value) {
    if (value == childDataKey_) return;
    childDataKey_ = value;
    SettingChanged();
}

void TVynDataLink::SetChildDataShow(const AnsiString& value) {
    if (value == childDataShow_) return;
    childDataShow_ = value;
    SettingChanged();
}

void TVynDataLink::SetChildClassName(const AnsiString& value) {
    if (value == childClassName_) return;
    childClassName_ = value;
    SettingChanged();
}

void TVynDataLink::SetVynDataLinkType(TVynDataLinkType value) {
    if (value == type_) return;
    type_ = value;
    SettingChanged();
}

void TVynDataLink::SettingChanged() {
    FollowSource();
    OnValuesChanged(this);
}

void TVynDataLink::FollowSource() {
    TVynComponentList* list = ComponentList();
    if (registered_ != list && TVynComponentList::IsLive(registered_)) registered_->DelVynDataLink(this);
    registered_ = list;
    RecordChanged(nullptr);
}

TVynComponentState TVynDataLink::VynComponentState() const {
    if (type_ == dlt_Field) return Field() ? vyncs_available : vyncs_Nil;
    const TVynComponentList* list = ComponentList();
    const TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    return record ? record->State : vyncs_Nil;
}

bool TVynDataLink::HasComponent() const {
    TVynComponentList* list = ComponentList();
    return list && list->GetComponent(const_cast<TVynDataLink*>(this));
}

bool TVynDataLink::HasNeededComponent() const { return type_ == dlt_Field || HasComponent(); }

bool TVynDataLink::GetChildParams(TStrings& names) const {
    names.Clear();
    TVynComponentList* list = ComponentList();
    TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    if (!record || record->State != vyncs_available) return false;
    TParametres values(nullptr);
    if (TVynComponentList::Ask(record->Handle, VYN_MESSAGE_TPARAMETRESLIST, VynParamsRead, &values) == VynAnswerNo)
        return false;
    for (int i = 0; i < values.Count(false); ++i) names.Add(values.GetParamsProps(i).Name);
    return true;
}

TImageList* TVynDataLink::GetImageList() const {
    switch (type_) {
        case dlt_Field:
            return nullptr;
        case dlt_Search:
            return VynDataSource_FindImageList(CT_VynSearchClass);
        case dlt_Class:
            return VynDataSource_FindImageList(childClassName_);
    }
    return nullptr;
}

// What the platform's link hears.

void TVynDataLink::ActiveChanged() {
    TVynComponentList* list = ComponentList();
    if (registered_ != list && TVynComponentList::IsLive(registered_)) registered_->DelVynDataLink(this);
    registered_ = list;
    TFieldDataLink::ActiveChanged();
}

void TVynDataLink::EditingChanged() {
    TFieldDataLink::EditingChanged();
    FollowSource();
}

void TVynDataLink::RecordChanged(TField* field) {
    TVynComponentList* list = ComponentList();
    // The field's name is part of the key, and may be another one.
    if (list) list->AddVynDataLink(this);
    TFieldDataLink::RecordChanged(field);
    SetDeadline(0);
    if (type_ != dlt_Field && TVynComponentList::IsLive(list)) {
        Variant value;
        GetFieldValue(value);
        list->VynDataLinkValueChanged(this, ChildDataKeyFieldName(), false, value);
    }
    OnRecordChanged(this);
}

void TVynDataLink::UpdateData() {
    TFieldDataLink::UpdateData();
    if (!Field() && FieldName().empty()) OnUpdateData(nullptr);
}

bool TVynDataLink::CanModify() const {
    return TFieldDataLink::CanModify() || (!ReadOnly() && !Field() && FieldName().empty());
}

// Values.

void TVynDataLink::GetFieldValue(Variant& value) const {
    if (const TField* field = Field()) {
        value = field->Value();
        return;
    }
    const TVynComponentList* list = ComponentList();
    const TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    value = record ? record->FieldValue : Variant();
}

void TVynDataLink::SetFieldValue(const Variant& value) {
    TVynComponentList* list = ComponentList();
    // Related fields are copied from the record of this value, which may not be the one that was looked at last.
    if (list && NeedSynchronizeChild() && relationedFields_.Count() > 0) {
        TVynComponent* record = list->RecordOf(this);
        if (record && record->State == vyncs_available &&
            VarToStr(record->ValueOf(childDataKey_, Variant())) != VarToStr(value))
            list->SearchNow(this, childDataKey_, value);
    }
    if (Field()) {
        if (!DataSet()->IsEditing()) DataSet()->Edit();
        Field()->SetValue(value);
    } else {
        TVynComponent* record = list ? list->RecordOf(this) : nullptr;
        if (record) record->FieldValue = value;
        FollowSource();
    }
    AssignRelationedFields();
    ValueTaken(value);
}

// The value is taken by now: a rule that fails is told, and does not keep the user in the control.
void TVynDataLink::ValueTaken(const Variant& value) {
    if (TVynDataSource* source = VynDataSource()) source->OnVynDataLinkNewValue(this, value);
    TComponent* form = Control ? Control->Owner() : nullptr;
    if (!form || ExecuteEventName.empty()) return;
    const AnsiString name = ExecuteEventName;
    try {
        for (int i = 0; i < form->ComponentCount(); ++i)
            if (auto* runner = dynamic_cast<EventRunner*>(form->Components(i)))
                if (runner->RunEvent(name, Control)) return;
        throw Exception("The event " + name + " is not among the rules of the form " + form->Name());
    } catch (...) {
        Application()->HandleException(nullptr);
    }
}

void TVynDataLink::SetRelationedFields(const TStrings* value) {
    if (value)
        relationedFields_.Assign(value);
    else
        relationedFields_.Clear();
}

void TVynDataLink::AssignRelationedFields() {
    TVynComponentList* list = ComponentList();
    TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    TDataSet* data = DataSet();
    if (!record || !data) return;
    if (childDataKey_.empty()) {
        Variant value;
        GetFieldValue(value);
        if (!AnsiSameText(VarToStr(record->ValueOf(childDataShow_, Variant::Null())), VarToStr(value))) return;
    }
    if (relationedFields_.Count() == 0) return;
    if (!data->IsEditing()) data->Edit();
    for (int i = 0; i < relationedFields_.Count(); ++i) {
        const AnsiString line = relationedFields_[i];
        const size_t arrow = line.find(kArrow);
        if (arrow == AnsiString::npos) continue;
        const AnsiString name = Trim(line.substr(0, arrow));
        TField* field = data->FindField(Trim(line.substr(arrow + 1)));
        if (!field || !record->Values.ParamExists(name)) continue;
        field->SetValue(record->Values.GetParametreValue(name));
        // A rule that the field's change runs may have taken the lookup away.
        if (!TVynComponentList::IsLive(list) || list->RecordOf(this) != record) return;
    }
}

bool TVynDataLink::ControlHasKeyboard() const {
    const auto* control = ObjectCast<TWinControl>(Control);
    return control && control->Focused();
}

AnsiString TVynDataLink::GetDisplayText() const {
    if (type_ == dlt_Field) {
        const TField* field = Field();
        if (!field) return AnsiString();
        return ControlHasKeyboard() && CanModify() ? field->Text() : field->DisplayText();
    }
    AnsiString text;
    if (TVynComponentList* list = ComponentList()) list->GetShowValue(const_cast<TVynDataLink*>(this), text);
    return text;
}

void TVynDataLink::SetDisplayText(const AnsiString& text) {
    if (type_ == dlt_Field) {
        if (!Field()) return;
        Field()->SetText(text);
        ValueTaken(Field()->Value());
        return;
    }
    TVynComponentList* list = ComponentList();
    if (!list) return;
    WaitUntilThreadFinished();
    if (!TVynComponentList::IsLive(list) || !list->RecordOf(this)) return;
    if (list->RecordOf(this)->State == vyncs_Nil) list->CreateNeededComponents();
    TVynComponent* record = list->RecordOf(this);
    if (!record) return;
    if (text.empty()) {
        // The values that go with nothing are none.
        list->SearchNow(this, ChildDataKeyFieldName(), Variant::Null());
        SetFieldValue(Variant::Null());
        return;
    }
    const auto shown = [&] { return VarToStr(record->ValueOf(childDataShow_, Variant())); };
    const bool found = (record->State == vyncs_available && AnsiSameText(shown(), text)) ||
                       (list->SearchNow(this, childDataShow_, text) && !shown().empty());  // classes always answer
    if (!TVynComponentList::IsLive(list) || list->RecordOf(this) != record) return;
    if (childDataKey_.empty()) {
        // Nobody is made to choose: what is there is taken as it is spelt there, anything else as it was typed.
        SetFieldValue(found && AnsiSameText(shown(), text) ? Variant(shown()) : Variant(text));
        return;
    }
    if (!found)
        throw EDatabaseError("\"" + text +
                             "\" was not found.\nPress F2 to choose from the list, or Escape to take it back");
    SetFieldValue(record->ValueOf(childDataKey_, Variant::Null()));
}

AnsiString TVynDataLink::FieldEditMask() const {
    if (type_ == dlt_Field) return Field() ? Field()->EditMask() : AnsiString();
    const TVynComponentList* list = ComponentList();
    const TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    if (type_ != dlt_Class || !record || record->Handle == 0 || childDataShow_.empty()) return AnsiString();
    TParametres masks(nullptr);
    masks.AddParam(childDataShow_, AnsiString());
    const bool answered =
        TVynComponentList::Ask(record->Handle, VYN_MESSAGE_TPARAMETRESLIST, VynParamsMasks, &masks) != VynAnswerNo;
    return answered ? VarToStr(masks.GetParametreValue(childDataShow_)) : AnsiString();
}

bool TVynDataLink::IsValidChar(char c) const {
    const TField* field = Field();
    if (!field) return false;
    return type_ != dlt_Field || field->IsValidChar(c);
}

// Searching.

void TVynDataLink::SetDeadline(uint32_t value) {
    const uint32_t former = deadline_;
    deadline_ = value;
    const bool nearer = former != 0 && (value == 0 || static_cast<int32_t>(value - former) < 0);
    TVynComponentList* list = nearer ? ComponentList() : nullptr;
    if (list) list->WakeSearch(this);
}

void TVynDataLink::ThreadSearchNewValue(uint32_t milliseconds, const AnsiString& text) {
    TVynComponentList* list = ComponentList();
    if (!list || text.empty() || Trim(childDataShow_).empty()) {
        SetDeadline(0);
        return;
    }
    // 0 stands for no deadline.
    const uint32_t deadline = TickCount() + milliseconds;
    SetDeadline(milliseconds == 0 ? 0 : deadline == 0 ? 1 : deadline);
    TVynComponent* record = list->RecordOf(this);
    if (!record) return;
    const AnsiString last = VarToStr(record->LastSearchedValue);
    const AnsiString found = VarToStr(record->FoundValue);
    // What failed is asked again when it, or something else, is typed; not for each letter that is typed behind it.
    const bool failed = !record->Failure.empty();
    const bool known = record->State == vyncs_available && AnsiSameText(record->SearchName, childDataShow_) &&
                       !last.empty() && BeginsWith(text, last) && (found.empty() || BeginsWith(found, text)) &&
                       !(failed && text.size() == last.size());
    if (failed && !known) record->LastSearchedValue = Variant();
    if (known)
        NotifySearchedValue(text, found);
    else
        list->VynDataLinkValueChanged(this, childDataShow_, true, text);
}

void TVynDataLink::TryAgain() {
    if (TVynComponentList* list = ComponentList()) list->TryAgain(this);
}

AnsiString TVynDataLink::Failure() const {
    const TVynComponentList* list = ComponentList();
    const TVynComponent* record = list ? list->RecordOf(this) : nullptr;
    return record ? record->Failure : AnsiString();
}

void TVynDataLink::ThreadWaitTime(TThread*, bool& wait, bool& terminate) {
    wait = deadline_ != 0 && IsAhead(deadline_);
    terminate = false;
}

void TVynDataLink::WaitUntilThreadFinished() {
    SetDeadline(0);
    TVynComponentList::WaitUntilFinished(ComponentList(), this);
}

void TVynDataLink::NotifySearchedValue(const AnsiString& searched, const AnsiString& found) {
    OnAutoSearched(this, searched, found);
}

void TVynDataLink::ShowModalSearch(const AnsiString& text, bool modified, bool extra) {
    TVynComponentList* list = ComponentList();
    if (!list || ChildDataKeyFieldName().empty()) return;
    // What was typed just now is searched for at once, so that the key works in the middle of typing too.
    WaitUntilThreadFinished();
    TVynComponent* record = TVynComponentList::IsLive(list) ? list->RecordOf(this) : nullptr;
    if (!record || record->State != vyncs_available) return;
    TLocateStruct locate{childDataShow_, text, modified, extra, true};
    const bool accepted =
        TVynComponentList::Ask(record->Handle, VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam, &locate) != VynAnswerNo;
    if (!TVynComponentList::IsLive(list) || list->RecordOf(this) != record) return;
    if (!accepted) {
        FollowSource();
        return;
    }
    list->FetchValues(*record);
    if (!TVynComponentList::IsLive(list) || list->RecordOf(this) != record) return;
    Variant current;
    GetFieldValue(current);
    SetFieldValue(record->ValueOf(ChildDataKeyFieldName(), current));
}

}  // namespace vyn
