#include "controls/Ufrmeditvyneditbox.h"

#include "controls/edit_box_editor_form.h"
#include "platform/controls/bit_buttons.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/controls/lists.h"
#include "platform/data/data_set.h"
#include "platform/streams/text_form.h"
#include "platform/text/compare.h"
#include "platform/text/numbers.h"

namespace vyn {

namespace edit_box_editor_detail {

constexpr char kCloseKey = 27;  // Escape

// The compiled form goes with the class's record.
bool RegisterCompiledForm() {
    static TMemoryStream bytes;
    TextToBinary(EditBoxEditorForm(), bytes);
    RegisterFormResource("TFRMeditVynEditBox", bytes.Bytes());
    return true;
}

// Items that stand for numbers carry them as their objects, which are never looked into.
TObject* AsItem(int number) { return reinterpret_cast<TObject*>(static_cast<intptr_t>(number)); }
int FromItem(const TObject* item) { return static_cast<int>(reinterpret_cast<intptr_t>(item)); }

// The list under a text that stays.
void Refill(TComboBox& box, const TStringList& items) {
    const AnsiString text = box.Text();
    box.Items()->Assign(&items);
    box.SetText(text);
}

}  // namespace edit_box_editor_detail

using namespace edit_box_editor_detail;

const ClassInfo& TFRMeditVynEditBox::StaticClass() {
    using Form = TFRMeditVynEditBox;
    static const ClassInfo info = DefineForm<Form, TForm>("TFRMeditVynEditBox")
                                      .Method("cbDataSourceChange", &Form::cbDataSourceChange)
                                      .Method("cbFieldNameChange", &Form::cbFieldNameChange)
                                      .Method("cbDataLinkTypeChange", &Form::cbDataLinkTypeChange)
                                      .Method("cbNChildChange", &Form::cbNChildChange)
                                      .Method("cbClassNameChange", &Form::cbClassNameChange)
                                      .Method("cbChildDataKeyChange", &Form::cbChildDataKeyChange)
                                      .Method("cbChildDataShowChange", &Form::cbChildDataShowChange)
                                      .Method("cbAutoSearchClick", &Form::cbAutoSearchClick)
                                      .Method("cbAutoRefreshClick", &Form::cbAutoRefreshClick)
                                      .Method("cbShowButtonClick", &Form::cbShowButtonClick)
                                      .Method("cbReadOnlyClick", &Form::cbReadOnlyClick)
                                      .Method("ebExecuteEventNameChange", &Form::ebExecuteEventNameChange)
                                      .Method("memoAutoAssignChange", &Form::memoAutoAssignChange)
                                      .Method("cbAutoSearchMilisecondsExit", &Form::cbAutoSearchMilisecondsExit)
                                      .Method("cbChildDataKeyDropDown", &Form::cbChildDataKeyDropDown)
                                      .Method("bbAddAutoAssignClick", &Form::bbAddAutoAssignClick)
                                      .Method("FormKeyPress", &Form::FormKeyPress);
    static const bool registered = RegisterCompiledForm();
    static_cast<void>(registered);
    return info;
}

template <class T>
T& TFRMeditVynEditBox::Part(const char* name) const {
    auto* part = ObjectCast<T>(FindComponent(name));
    if (!part) throw EComponentError(AnsiString("The dialog has no ") + name);
    return *part;
}

void TFRMeditVynEditBox::Notification(TComponent* component, TOperation operation) {
    TForm::Notification(component, operation);
    if (operation == opRemove && component == editBox_) editBox_ = nullptr;
}

// Filling.

void TFRMeditVynEditBox::SetEdit_EditBox(TVynEditBox* box) {
    editBox_ = box;
    if (!box) return;
    box->FreeNotification(this);
    SetCaption(box->Name().empty() ? box->ClassName() : box->Name() + ": " + box->ClassName());
    InitValues();
}

void TFRMeditVynEditBox::InitValues() {
    initializing_ = true;
    try {
        FillParts();
    } catch (...) {
        initializing_ = false;
        throw;
    }
    initializing_ = false;
    EnableAutoSearch();
    ShowChildParams();
    ShowGeneralInfo();
}

void TFRMeditVynEditBox::FillParts() {
    TStringList sources;
    if (const TComponent* owner = editBox_->Owner())
        for (int i = 0; i < owner->ComponentCount(); ++i)
            if (auto* source = ObjectCast<TVynDataSource>(owner->Components(i)))
                sources.AddObject(source->Name(), source);
    auto& dataSource = Part<TComboBox>("cbDataSource");
    dataSource.Items()->Assign(&sources);
    const TVynDataSource* chosen = editBox_->VynDataSource();
    dataSource.SetText(chosen ? chosen->Name() : AnsiString());
    Part<TComboBox>("cbFieldName").SetText(editBox_->DataField());
    InitDataSources();
    InitVynDataLinkType();
    InitNChild();
    TStringList classes;
    VynDataSource_GetRegisteredClasses(classes);
    auto& className = Part<TComboBox>("cbClassName");
    className.Items()->Assign(&classes);
    className.SetText(editBox_->ChildClassName());
    Part<TComboBox>("cbChildDataKey").SetText(editBox_->ChildDataKey());
    Part<TComboBox>("cbChildDataShow").SetText(editBox_->ChildDataShow());
    Part<TCheckBox>("cbShowButton").SetChecked(editBox_->ShowButton());
    Part<TCheckBox>("cbReadOnly").SetChecked(editBox_->DataReadOnly());
    Part<TCheckBox>("cbAutoSearch").SetChecked(editBox_->AutoSearch());
    Part<TCheckBox>("cbAutoRefresh").SetChecked(editBox_->AutoRefresh());
    Part<TComboBox>("cbAutoSearchMiliseconds").SetText(IntToStr(editBox_->AutoSearchWaitMiliSeconds()));
    Part<TEdit>("ebExecuteEventName").SetText(editBox_->ExecuteEventName());
    Part<TMemo>("memoAutoAssign").SetLines(editBox_->RelationedFields());
}

void TFRMeditVynEditBox::InitDataSources() {
    TStringList fields;
    const TVynDataSource* source = editBox_->VynDataSource();
    if (const TDataSet* data = source ? source->DataSet() : nullptr)
        for (int i = 0; i < data->FieldCount(); ++i) fields.Add(data->Fields(i)->FieldName());
    Refill(Part<TComboBox>("cbFieldName"), fields);
    Refill(Part<TComboBox>("cbAutoAssignDestFieldName"), fields);
}

void TFRMeditVynEditBox::InitVynDataLinkType() {
    auto& box = Part<TComboBox>("cbDataLinkType");
    const EnumType& types = TypeInfoOf(TypeTag<TVynDataLinkType>());
    box.Items()->Clear();
    for (int type = 0; type < types.Count(); ++type) box.Items()->Add(types.NameOf(type));
    box.SetItemIndex(static_cast<int>(editBox_->DataLinkType()));
}

void TFRMeditVynEditBox::InitNChild() {
    auto& box = Part<TComboBox>("cbNChild");
    box.Items()->Clear();
    const TVynDataSource* source = editBox_->VynDataSource();
    int chosen = -1;
    if (source && source->VynApp())
        for (const TNodeArbre& node : source->VynApp()->Tree().Childs(source->IDNode(), false)) {
            const int at = box.Items()->AddObject(IntToStr(node.Child) + " - " + node.Name, AsItem(node.Child));
            if (node.Child == editBox_->NChild()) chosen = at;
        }
    box.SetItemIndex(chosen);
}

void TFRMeditVynEditBox::EnableAutoSearch() {
    Part<TComboBox>("cbAutoSearchMiliseconds").SetEnabled(editBox_->AutoSearch());
    Part<TLabel>("lblMiliseconds").SetEnabled(editBox_->AutoSearch());
}

void TFRMeditVynEditBox::ShowChildParams() {
    TStringList names;
    editBox_->Link().GetChildParams(names);
    for (const char* list : {"cbChildDataKey", "cbChildDataShow", "cbAutoAssignSourceParamName"})
        Refill(Part<TComboBox>(list), names);
}

void TFRMeditVynEditBox::ShowGeneralInfo() {
    AnsiString forms = "-";
    AnsiString components = "-";
    const TVynDataSource* source = editBox_->VynDataSource();
    if (TVynComponentList* list = source ? source->ComponentList() : nullptr) {
        size_t links = 0;
        for (int i = 0; i < list->Count(); ++i) links += list->Record(i)->DataLinks.size();
        const TVynComponent* own = list->RecordOf(&editBox_->Link());
        forms = IntToStr(list->Count());
        components =
            own ? IntToStr(static_cast<int64_t>(own->DataLinks.size())) + "/" + IntToStr(static_cast<int64_t>(links))
                : "(Sin)";
    }
    Part<TLabel>("lblGeneralInfoForms").SetCaption(forms);
    Part<TLabel>("lblGeneralInfoComps").SetCaption(components);
}

// Writing.

void TFRMeditVynEditBox::Write(const std::function<void(TVynEditBox& box)>& write) {
    if (!Writes()) return;
    write(*editBox_);
    if (!editBox_) return;
    initializing_ = true;
    try {
        InitDataSources();
        InitNChild();
        ShowChildParams();
        ShowGeneralInfo();
    } catch (...) {
        initializing_ = false;
        throw;
    }
    initializing_ = false;
}

void TFRMeditVynEditBox::cbDataSourceChange(TObject*) {
    Write([this](TVynEditBox& box) {
        auto& list = Part<TComboBox>("cbDataSource");
        // A text that names none is none.
        const int at = list.Items()->IndexOf(list.Text());
        box.SetVynDataSource(at < 0 ? nullptr : ObjectCast<TVynDataSource>(list.Items()->GetObject(at)));
    });
}

void TFRMeditVynEditBox::cbFieldNameChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetDataField(Part<TComboBox>("cbFieldName").Text()); });
}

void TFRMeditVynEditBox::cbDataLinkTypeChange(TObject*) {
    Write([this](TVynEditBox& box) {
        const int type = Part<TComboBox>("cbDataLinkType").ItemIndex();
        if (type >= 0) box.SetDataLinkType(static_cast<TVynDataLinkType>(type));
    });
}

void TFRMeditVynEditBox::cbNChildChange(TObject*) {
    Write([this](TVynEditBox& box) {
        auto& list = Part<TComboBox>("cbNChild");
        if (list.ItemIndex() >= 0) box.SetNChild(FromItem(list.Items()->GetObject(list.ItemIndex())));
    });
}

void TFRMeditVynEditBox::cbClassNameChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetChildClassName(Part<TComboBox>("cbClassName").Text()); });
}

void TFRMeditVynEditBox::cbChildDataKeyChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetChildDataKey(Part<TComboBox>("cbChildDataKey").Text()); });
}

void TFRMeditVynEditBox::cbChildDataShowChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetChildDataShow(Part<TComboBox>("cbChildDataShow").Text()); });
}

void TFRMeditVynEditBox::cbAutoSearchClick(TObject*) {
    Write([this](TVynEditBox& box) {
        box.SetAutoSearch(Part<TCheckBox>("cbAutoSearch").Checked());
        EnableAutoSearch();
    });
}

void TFRMeditVynEditBox::cbAutoRefreshClick(TObject*) {
    Write([this](TVynEditBox& box) { box.SetAutoRefresh(Part<TCheckBox>("cbAutoRefresh").Checked()); });
}

void TFRMeditVynEditBox::cbShowButtonClick(TObject*) {
    Write([this](TVynEditBox& box) { box.SetShowButton(Part<TCheckBox>("cbShowButton").Checked()); });
}

void TFRMeditVynEditBox::cbReadOnlyClick(TObject*) {
    Write([this](TVynEditBox& box) { box.SetReadOnly(Part<TCheckBox>("cbReadOnly").Checked()); });
}

void TFRMeditVynEditBox::ebExecuteEventNameChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetExecuteEventName(Part<TEdit>("ebExecuteEventName").Text()); });
}

void TFRMeditVynEditBox::memoAutoAssignChange(TObject*) {
    Write([this](TVynEditBox& box) { box.SetRelationedFields(Part<TMemo>("memoAutoAssign").Lines()); });
}

void TFRMeditVynEditBox::cbAutoSearchMilisecondsExit(TObject*) {
    Write([this](TVynEditBox& box) {
        const int64_t wait = StrToInt64(Trim(Part<TComboBox>("cbAutoSearchMiliseconds").Text()));
        const bool fits = wait >= 0 && wait <= UINT32_MAX;
        box.SetAutoSearchWaitMiliSeconds(fits ? static_cast<uint32_t>(wait) : UINT32_MAX);
    });
}

void TFRMeditVynEditBox::cbChildDataKeyDropDown(TObject* Sender) {
    auto* list = ObjectCast<TComboBox>(Sender);
    if (!Writes() || !list) return;
    TVynDataLink& link = editBox_->Link();
    // What is looked up is opened now, while the list waits.
    if (!link.HasComponent() && link.ComponentList()) link.ComponentList()->CreateNeededComponents();
    if (!editBox_) return;
    TStringList names;
    editBox_->Link().GetChildParams(names);
    Refill(*list, names);
}

void TFRMeditVynEditBox::bbAddAutoAssignClick(TObject*) {
    if (!Writes()) return;
    const AnsiString source = Trim(Part<TComboBox>("cbAutoAssignSourceParamName").Text());
    const AnsiString dest = Trim(Part<TComboBox>("cbAutoAssignDestFieldName").Text());
    if (source.empty() || dest.empty()) return;
    Part<TMemo>("memoAutoAssign").Lines()->Add(source + ">" + dest);  // which is a change of the memo
}

void TFRMeditVynEditBox::FormKeyPress(TObject*, char& Key) {
    if (Key != kCloseKey) return;
    // The first closes a list that is open.
    if (const auto* list = ObjectCast<TComboBox>(ActiveControl()); list && list->DroppedDown()) return;
    Key = 0;
    if (Writes() && TypesWait())
        Part<TComboBox>("cbAutoSearchMiliseconds").SetText(IntToStr(editBox_->AutoSearchWaitMiliSeconds()));
    Close();
}

bool TFRMeditVynEditBox::TypesWait() const { return ActiveControl() == &Part<TComboBox>("cbAutoSearchMiliseconds"); }

bool TFRMeditVynEditBox::CloseQuery() {
    if (Writes() && TypesWait()) cbAutoSearchMilisecondsExit(this);
    return TForm::CloseQuery();
}

void DoEdit_EditBox(TVynEditBox* box) {
    const std::unique_ptr<TFRMeditVynEditBox> form(CreateForm<TFRMeditVynEditBox>(nullptr));
    form->SetEdit_EditBox(box);
    form->ShowModal();
}

}  // namespace vyn
