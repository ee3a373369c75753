#include "datasources/Uvyndatasources.h"

#include "platform/system/application.h"
#include "platform/system/clipboard.h"
#include "platform/system/message_dialogs.h"
#include "platform/values/date_time.h"

namespace vyn {

const EnumType& TypeInfoOf(TypeTag<TVynDataLinkType>) {
    static const EnumType info("TVynDataLinkType", {"dlt_Field", "dlt_Search", "dlt_Class"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TVynOpenFormStyle>) {
    static const EnumType info("TVynOpenFormStyle", {"ofs_Normal", "ofs_Edit", "ofs_Add", "ofs_Delete", "ofs_Search"});
    return info;
}

const EnumType& TypeInfoOf(TypeTag<TVynComponentState>) {
    static const EnumType info("TVynComponentState",
                               {"vyncs_Nil", "vyncs_Creating", "vyncs_Searching", "vyncs_available"});
    return info;
}

const ClassInfo& TVynDataSource::StaticClass() {
    static const ClassInfo info = DefineClass<TVynDataSource, TDataSource>("TVynDataSource")
                                      .Published("NewComponentsOwner", &TVynDataSource::NewComponentsOwner,
                                                 &TVynDataSource::SetNewComponentsOwner)
                                      .Stored(&TVynDataSource::IsOtherOwner)
                                      .Published("IDNode", &TVynDataSource::IDNode, &TVynDataSource::SetIDNode)
                                      .Default(0)
                                      .Published("VynApp", &TVynDataSource::VynApp, &TVynDataSource::SetVynApp)
                                      .Event("OnVynDataLinkNewValue", &TVynDataSource::OnVynDataLinkNewValue);
    return info;
}

TVynDataSource::TVynDataSource(TComponent* owner)
    : TDataSource(owner), newComponentsOwner_(owner), list_(std::make_unique<TVynComponentList>(this)) {}

TVynDataSource::~TVynDataSource() {
    BeginDestruction();
    try {
        list_.reset();
    } catch (const std::exception& error) {
        Application()->MessageBox(AnsiString("ERROR en TVynDataSource.Destroy\n") + error.what(), "ERROR", MB_OK);
    }
}

void TVynDataSource::SetNewComponentsOwner(TComponent* value) {
    if (value == newComponentsOwner_) return;
    newComponentsOwner_ = value;
    if (value && value != Owner()) value->FreeNotification(this);
}

void TVynDataSource::SetIDNode(int32_t value) {
    if (value == idNode_) return;
    idNode_ = value;
    NotifyDataSourceChanged();
}

void TVynDataSource::SetVynApp(TVynApp* value) {
    if (value == vynApp_) return;
    vynApp_ = value;
    if (value) value->FreeNotification(this);
    NotifyDataSourceChanged();
}

void TVynDataSource::AutoRefresh() {
    if (!list_) return;
    std::vector<TVynDataLink*> failed;
    for (int i = 0; i < list_->Count(); ++i) {
        const TVynComponent& record = *list_->Record(i);
        for (TVynDataLink* link : record.DataLinks)
            if (link->AutoRefresh) list_->MarkRefresh(link);
        if (!record.Failure.empty()) failed.push_back(record.DataLinks.front());
    }
    for (TVynDataLink* link : failed) list_->TryAgain(link);
}

void TVynDataSource::Notification(TComponent* component, TOperation operation) {
    TDataSource::Notification(component, operation);
    if (operation != opRemove) return;
    if (component == vynApp_) vynApp_ = nullptr;
    if (component == newComponentsOwner_ && component != Owner()) newComponentsOwner_ = Owner();
    if (list_) list_->ComponentFreed(component);
}

const ClassInfo& TCustomVynDataSourceAbstract::StaticClass() {
    static const ClassInfo info = DefineClass<TCustomVynDataSourceAbstract, TComponent>("TCustomVynDataSourceAbstract");
    return info;
}

TCustomVynDataSourceAbstract::TCustomVynDataSourceAbstract(TComponent* owner)
    : TComponent(owner), window_([this](TMessage& message) { WndProc(message); }), params_(nullptr) {
    params_.OnGetValorPRM = [this](TParametres* params, const AnsiString& name, Variant& value) {
        OnParamsGetValorPRM(params, name, value);
    };
    params_.OnSetValorPRM = [this](TParametres* params, const AnsiString& name, const Variant& value) {
        OnParamsSetValorPRM(params, name, value);
    };
    LoadParams();
}

TCustomVynDataSourceAbstract::~TCustomVynDataSourceAbstract() { BeginDestruction(); }

void TCustomVynDataSourceAbstract::WndProc(TMessage& message) { AnswerLookup(message, *this); }

bool TCustomVynDataSourceAbstract::ChooseRecord(const TLocateStruct& wanted) {
    return ModalSearch(wanted.FieldName, wanted.Value) == mrOk;
}

void TCustomVynDataSourceAbstract::ReadValues(TParametres& values) {
    LoadParams();
    values.CopyValues(params_);
}

bool TCustomVynDataSourceAbstract::WriteValues(TParametres& values) {
    params_.CopyValues(values);
    return true;
}

void TCustomVynDataSourceAbstract::OnParamsGetValorPRM(TParametres*, const AnsiString& name, Variant& value) {
    ParamsGetValor(name, value);
}

void TCustomVynDataSourceAbstract::OnParamsSetValorPRM(TParametres*, const AnsiString& name, const Variant& value) {
    if (GuardSets && setting_) return;
    setting_ = true;
    try {
        ParamsSetValor(name, value);
    } catch (...) {
        setting_ = false;
        throw;
    }
    setting_ = false;
}

void AddClipboardLine(const AnsiString& text) {
    const AnsiString line = FormatDateTime("hh:nn:ss", Now()) + ": " + text;
    Clipboard()->SetAsText(Clipboard()->HasText() ? Clipboard()->AsText() + "\r\n" + line : line);
}

}  // namespace vyn
