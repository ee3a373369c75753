#include "controls/Uvyneditbox.h"

#include "platform/controls/shortcuts.h"
#include "platform/data/data_set.h"
#include "platform/objects/component_handle.h"
#include "platform/system/message_dialogs.h"
#include "platform/text/compare.h"
#include "platform/text/folding.h"
#include "platform/text/windows1252.h"

namespace vyn {

namespace edit_box_detail {

constexpr char kBackspace = 8;
constexpr char kCtrlV = 22;
constexpr char kCtrlX = 24;
constexpr char kEscape = 27;
constexpr uint32_t kMostWait = 10000;

// For as long as it lives.
class Flagged {
  public:
    Flagged(bool& flag, const TComponent& owner) : flag_(flag), former_(flag), owner_(owner.Handle()) { flag_ = true; }
    ~Flagged() {
        if (ComponentFromHandle(owner_)) flag_ = former_;
    }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

  private:
    bool& flag_;
    bool former_;
    int owner_;
};

// Handlers and searches may free the box.
class Alive {
  public:
    explicit Alive(const TComponent& component) : component_(&component), handle_(component.Handle()) {}
    explicit operator bool() const { return ComponentFromHandle(handle_) == component_; }

  private:
    const TComponent* component_;
    int handle_;
};

}  // namespace edit_box_detail

using namespace edit_box_detail;

const ClassInfo& TVynEditBox::StaticClass() {
    static const ClassInfo info = [] {
        using Box = TVynEditBox;
        PropertyCatalogue own(&BaseEditBoxProperties());
        own.Add("DataField", &Box::DataField, &Box::SetDataField);
        own.Add("VynDataSource", &Box::VynDataSource, &Box::SetVynDataSource);
        own.Add("ReadOnly", &Box::DataReadOnly, &Box::SetReadOnly).Default(false);
        own.Add("DataLinkType", &Box::DataLinkType, &Box::SetDataLinkType).Default(dlt_Field);
        own.Add("NChild", &Box::NChild, &Box::SetNChild).Default(0);
        own.Add("ChildDataKey", &Box::ChildDataKey, &Box::SetChildDataKey);
        own.Add("ChildClassName", &Box::ChildClassName, &Box::SetChildClassName);
        own.Add("ChildDataShow", &Box::ChildDataShow, &Box::SetChildDataShow);
        own.Add("AutoSearch", &Box::AutoSearch, &Box::SetAutoSearch).Default(false);
        own.Add("AutoSearchWaitMiliSeconds", &Box::AutoSearchWaitMiliSeconds, &Box::SetAutoSearchWaitMiliSeconds)
            .Default(1000);
        own.Add("AutoRefresh", &Box::AutoRefresh, &Box::SetAutoRefresh).Default(false);
        own.Add("ExecuteEventName", &Box::ExecuteEventName, &Box::SetExecuteEventName);
        own.Add("OrderNumber", &Box::OrderNumber, &Box::SetOrderNumber).Default(-1);
        own.Add("RelationedFields", &Box::RelationedFields, &Box::SetRelationedFields)
            .Stored(&Box::AreRelationedFieldsStored);
        own.Add("FieldValue", &Box::FieldValue, &Box::SetFieldValue).Stored(&Box::IsFieldValueStored);
        return Publish(DefineClass<TVynEditBox, TBaseVynEditBox>("TVynEditBox"), own,
                       "DataField VynDataSource ReadOnly DataLinkType NChild ChildDataKey ChildClassName ChildDataShow "
                       "AutoSearch AutoSearchWaitMiliSeconds AutoRefresh ExecuteEventName OrderNumber RelationedFields "
                       "FieldValue");
    }();
    return info;
}

TVynEditBox::TVynEditBox(TComponent* owner) : TBaseVynEditBox(owner), link_(std::make_unique<TVynDataLink>()) {
    ControlStyle.Exclude(csSetCaption);  // the text is the value's
    link_->Control = this;
    link_->OnDataChange = [this](TObject*) { DataChange(); };
    link_->OnEditingChange = [this](TObject*) { UpdateReadOnly(); };
    link_->OnUpdateData = [this](TObject*) { UpdateData(); };
    link_->OnActiveChange = [this](TObject*) {
        UpdateReadOnly();
        UpdateButonEnabled();
    };
    link_->OnAutoSearched = [this](TVynDataLink*, const AnsiString& searched, const AnsiString& found) {
        AutoSearched(searched, found);
    };
    link_->OnRecordChanged = [this](TVynDataLink*) { RecordChanged(); };
    link_->OnValuesChanged = [this](TVynDataLink*) { ValuesChanged(); };
    relationedFields_.OnChange = [this](TObject*) { link_->SetRelationedFields(&relationedFields_); };
    UpdateButonEnabled();
}

TVynEditBox::~TVynEditBox() {
    BeginDestruction();
    link_.reset();
}

// Settings.

void TVynEditBox::SetVynDataSource(TVynDataSource* value) { FollowSource(value); }

void TVynEditBox::TakeCopySource(TDataSource* source) { FollowSource(source); }

void TVynEditBox::FollowSource(TDataSource* source) {
    if (source == link_->DataSource()) return;
    link_->SetDataSource(source);
    if (source) source->FreeNotification(this);
    ValuesChanged();
}

void TVynEditBox::Notification(TComponent* component, TOperation operation) {
    TBaseVynEditBox::Notification(component, operation);
    if (operation == opRemove && link_ && component == link_->DataSource()) SetVynDataSource(nullptr);
}

void TVynEditBox::SetRelationedFields(TStrings* value) {
    if (value)
        relationedFields_.Assign(value);
    else
        relationedFields_.Clear();
}

// 10000 itself passes, whatever the words say: forms with it are stored.
void TVynEditBox::SetAutoSearchWaitMiliSeconds(uint32_t value) {
    if (value > kMostWait) throw Exception("WaitMiliseconds must be < 10000");
    autoSearchWait_ = value;
}

void TVynEditBox::SetMaxLength(int value) {
    maxLengthOfField_ = false;
    TBaseVynEditBox::SetMaxLength(value);
}

void TVynEditBox::SetReadOnly(bool value) {
    dataReadOnly_ = value;
    UpdateReadOnly();
    UpdateButonEnabled();
}

Variant TVynEditBox::FieldValue() const {
    Variant value;
    link_->GetFieldValue(value);
    return value;
}

bool TVynEditBox::ReadOnly() const {
    if (!link_ || dataReadOnly_ || !link_->CanModify()) return true;
    if (link_->Field() && !link_->DataSource()->AutoEdit && !link_->Editing()) return true;
    const TVynComponentState state = link_->VynComponentState();
    return state != vyncs_available && !(state == vyncs_Searching && BeingTyped());
}

void TVynEditBox::UpdateReadOnly() { PeerChanged(PeerChange::Style); }

void TVynEditBox::UpdateButonEnabled() {
    Button().SetEnabled(link_->HasNeededComponent() && (!ReadOnly() || HasState(csDesigning)));
}

void TVynEditBox::UpdateButtonHint() {
    AnsiString hint = DataLinkType() == dlt_Field ? "" : "Cerca (F2)";
    if (const AnsiString failure = link_->Failure(); !failure.empty()) hint += "\n" + failure;
    Button().SetHint(hint);
}

// What the link tells.

void TVynEditBox::ValuesChanged() {
    UpdateButtonHint();
    PlaceButton();
    Button().PeerChanged(PeerChange::Picture);
    UpdateReadOnly();
    UpdateButonEnabled();
}

void TVynEditBox::RecordChanged() {
    // What is still being typed has not been told yet.
    if (Modified()) link_->Modified();
    UpdateReadOnly();
    UpdateButonEnabled();
}

void TVynEditBox::DataChange() {
    if (HasState(csDestroying)) return;
    TakeFieldLimits();
    UpdateButonEnabled();
    UpdateButtonHint();
    ShowText();
}

void TVynEditBox::TakeFieldLimits() {
    const TField* field = DataLinkType() == dlt_Field ? Field() : nullptr;
    // A dataset that is closed for a while brings the same field back; what is looked up has no field's bounds.
    if (!field && DataLinkType() == dlt_Field) return;
    if (field != lastField_) {
        const Flagged updating(updatingText_, *this);
        lastField_ = field;
        SetEditText({});
        if (maxLengthOfField_) SetMaxLength(0);
    }
    if (field && MaxLength() == 0 && (field->DataType() == ftString || field->DataType() == ftWideString)) {
        SetMaxLength(field->Size());
        maxLengthOfField_ = true;
    }
}

void TVynEditBox::ShowText() {
    const Flagged updating(updatingText_, *this);
    const TVynComponentState state = link_->VynComponentState();
    if (state == vyncs_Searching && BeingTyped()) return;
    // A value that comes while the box has the keyboard is typed over as the one before it would have been.
    const bool allSelected = Focused() && AutoSelect() && SelLength() == static_cast<int>(EditText().size());
    if (state != vyncs_available) {
        SetEditMask({});
        SetEditText({});
    } else {
        SetEditMask(link_->FieldEditMask());
        const bool isField = DataLinkType() == dlt_Field;
        SetAlignment(isField ? Field()->Alignment() : taLeftJustify);
        if (isField && !(Focused() && link_->CanModify()))
            SetEditText(link_->GetDisplayText());  // formatted, which the mask knows nothing of
        else
            SetText(link_->GetDisplayText());
    }
    if (allSelected) SelectAll();
    typingSearch_ = false;
    SetModified(false);
}

void TVynEditBox::UpdateData() {
    // A box without a field is asked whenever it is left.
    if (!Field() && !Modified()) return;
    const Alive alive(*this);
    ValidateEdit();
    link_->SetDisplayText(Text());
    if (!alive) return;
    typingSearch_ = false;
    SetModified(false);
    DataChange();
}

void TVynEditBox::AutoSearched(const AnsiString& searched, const AnsiString& found) {
    UpdateReadOnly();
    UpdateButtonHint();
    if (updatingText_) return;
    if (!typingSearch_) {
        // The search that ends was given up meanwhile, and the text that it stood for taken back.
        if (!Modified()) DataChange();
        return;
    }
    const AnsiString text = Text();
    const auto length = searched.size();
    const bool begins = found.size() > length && BeginsFolded(found, searched, TextFolding::CaseAndAccents);
    if (!begins || !AnsiSameText(text, searched) || IsComposing()) return;
    const int caret = SelStart();
    if (SelLength() > 0 || caret != static_cast<int>(EditText().size())) {
        // In a mask the caret stands behind what was typed, before places that are still empty.
        if (!IsMasked() || SelLength() > 0) return;
    }
    const AnsiString completed = searched + found.substr(length);
    if (MostCharacters() > 0 && static_cast<int>(completed.size()) > MostCharacters()) return;
    const Alive alive(*this);
    const Flagged updating(updatingText_, *this);
    SetText(completed);
    if (!alive) return;
    SetModified(true);
    const int start = IsMasked() ? caret : static_cast<int>(length);
    SetSelStart(start);
    SetSelLength(static_cast<int>(EditText().size()) - start);
}

// Typing.

bool TVynEditBox::BeginChange() {
    if (ReadOnly()) return false;
    link_->Edit();
    return !Field() || link_->FieldEditing();
}

void TVynEditBox::Change() {
    const Alive alive(*this);
    const bool ours = updatingText_ || HasState(csLoading);
    if (!ours && Modified()) link_->Modified();
    TBaseVynEditBox::Change();
    if (!alive || ours) return;
    typingSearch_ = autoSearch_ && typedCharacter_ && !Text().empty() && !HasState(csDesigning);
    if (typingSearch_) link_->ThreadSearchNewValue(autoSearchWait_, Text());
}

void TVynEditBox::ProcessTextEdit(const AnsiString& text, int selStart, int selLength) {
    const Alive alive(*this);
    TBaseVynEditBox::ProcessTextEdit(text, selStart, selLength);
    // What comes without a key after this (pasted, dropped) is no character.
    if (alive) typedCharacter_ = false;
}

void TVynEditBox::Reset() {
    typingSearch_ = typedCharacter_ = false;
    SetModified(false);
    const Alive alive(*this);
    link_->Reset();
    if (!alive) return;
    link_->TryAgain();
    SelectAll();
}

bool TVynEditBox::WantsKey(uint16_t key, TShiftState shift) const {
    return (key == VK_ESCAPE && BeingTyped()) || TBaseVynEditBox::WantsKey(key, shift);
}

void TVynEditBox::KeyDown(uint16_t& key, TShiftState shift) {
    if (HasState(csDesigning)) {
        TBaseVynEditBox::KeyDown(key, shift);
        return;
    }
    const Alive alive(*this);
    typedCharacter_ = false;
    UpdateReadOnly();
    if ((key == VK_DELETE || (key == VK_INSERT && shift.Contains(ssShift))) && !ReadOnly()) link_->Edit();
    if (!alive) return;
    TBaseVynEditBox::KeyDown(key, shift);
    if (!alive || key != VK_F2) return;
    key = 0;
    ShowModalSearch(Modified(), false);
}

// The record's own value is being looked up this moment: a key waits for it rather than being lost.
void TVynEditBox::WaitForOwnValue() {
    if (link_->VynComponentState() == vyncs_Searching && !BeingTyped()) link_->WaitUntilThreadFinished();
}

void TVynEditBox::KeyPress(char& key) {
    const Alive alive(*this);
    WaitForOwnValue();
    if (!alive) {
        key = 0;
        return;
    }
    UpdateReadOnly();
    // Every key, the characters of copying among them.
    if (ReadOnly()) {
        key = 0;
        return;
    }
    const bool character = static_cast<unsigned char>(key) >= ' ';
    if (character && Field() && !link_->IsValidChar(key)) {
        MessageBeep(MB_ICONINFORMATION);
        key = 0;
        return;
    }
    if (key == kEscape) {
        key = 0;
        Reset();
        return;
    }
    if (character || key == kCtrlX || key == kBackspace || key == kCtrlV) {
        try {
            link_->Edit();
        } catch (...) {
            key = 0;
            throw;
        }
        if (!alive) {
            key = 0;
            return;
        }
    }
    typedCharacter_ = character;
    TBaseVynEditBox::KeyPress(key);
    // A peer's widget makes its edit of the key after this.
    if (alive && (key == 0 || EditsByItself())) typedCharacter_ = false;
}

void TVynEditBox::ShowModalSearch(bool modified, bool extra) {
    if (HasState(csDesigning)) return;
    const Alive alive(*this);
    WaitForOwnValue();
    if (!alive || ReadOnly()) return;
    link_->ShowModalSearch(Text(), modified, extra);
    if (alive && Focused() && !Modified()) SelectAll();
}

void TVynEditBox::ButtonClick() {
    const Alive alive(*this);
    TBaseVynEditBox::ButtonClick();
    if (alive) ShowModalSearch(Modified(), false);
}

// Coming and going.

void TVynEditBox::DoEnter() {
    if (DataLinkType() == dlt_Field && !Modified()) ShowText();
    if (!Modified()) link_->TryAgain();
    UpdateReadOnly();
    TBaseVynEditBox::DoEnter();
}

void TVynEditBox::DoExit() {
    const Alive alive(*this);
    try {
        link_->UpdateRecord();
        if (!alive) return;
        CheckCursor();
        TBaseVynEditBox::DoExit();
    } catch (...) {
        if (alive) SelectAll();
        throw;
    }
    if (!alive) return;
    typingSearch_ = false;
    if (DataLinkType() == dlt_Field) ShowText();
}

void TVynEditBox::Loaded() {
    TBaseVynEditBox::Loaded();
    DataChange();
}

}  // namespace vyn
