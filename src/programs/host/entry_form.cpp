#include "programs/host/entry_form.h"

#include <utility>

#include "platform/controls/buttons.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/labels.h"
#include "platform/data/update_conflict.h"
#include "platform/objects/component_handle.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"

namespace vyn {

const ClassInfo& TFRMDBEntradaDades::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMDBEntradaDades, TFRMDBGrid>("TFRMDBEntradaDades")
                                      .Method("FontStateChange", &TFRMDBEntradaDades::FontStateChange)
                                      .Method("NouClick", &TFRMDBEntradaDades::NouClick)
                                      .Method("DesarClick", &TFRMDBEntradaDades::DesarClick)
                                      .Method("CancelarClick", &TFRMDBEntradaDades::CancelarClick)
                                      .Method("EliminarClick", &TFRMDBEntradaDades::EliminarClick);
    return info;
}

const ClassInfo& TFRMDBEntradaDadesMD::StaticClass() {
    static const ClassInfo info = DefineForm<TFRMDBEntradaDadesMD, TFRMDBEntradaDades>("TFRMDBEntradaDadesMD")
                                      .Method("NovaLiniaClick", &TFRMDBEntradaDadesMD::NovaLiniaClick)
                                      .Method("EliminarLiniaClick", &TFRMDBEntradaDadesMD::EliminarLiniaClick);
    return info;
}

namespace entry_form_detail {

constexpr char kQuery[] = "Consulta";
constexpr char kDetail[] = "ConsultaDetall";

// Has the user something to choose or to read from it?
bool Opens(const TCustomADODataSet& dataSet) {
    if (const auto* query = ObjectCast<TADOQuery>(&dataSet)) return !Trim(query->SQL()->Text()).empty();
    const auto* table = ObjectCast<TADOTable>(&dataSet);
    return table && !table->TableName().empty();
}

AnsiString Shown(const Variant& value) { return value.IsNull() ? "res"_w : "\xAB" + value.AsString() + "\xBB"; }

// What the other user changed of what this one changed too.
AnsiString SentenceOf(const EUpdateConflict& conflict, const TDataSet& dataSet) {
    if (conflict.Deleted()) return "Un altre usuari ha eliminat aquest registre: premeu Cancel\xB7la.";
    AnsiString text;
    for (const EUpdateConflict::Value& value : conflict.Values()) {
        if (!value.Conflicting) continue;
        const TField* field = dataSet.FindField(value.FieldName);
        text += (text.empty() ? "" : "; ") + (field ? field->DisplayLabel() : value.FieldName) + ": era " +
                Shown(value.Original) + ", ara \xE9s " + Shown(value.Theirs);
    }
    return "Un altre usuari ha canviat aquest registre. " + text + ". Premeu Cancel\xB7la per veure-ho.";
}

}  // namespace entry_form_detail

using namespace entry_form_detail;

bool TFRMDBEntradaDades::NodeLoaded() {
    const auto open = [this](bool details) {
        for (int i = 0; i < ComponentCount(); ++i) {
            auto* dataSet = ObjectCast<TCustomADODataSet>(Components(i));
            if (!dataSet || dataSet->Active() || !Opens(*dataSet) || SameText(dataSet->Name(), kQuery)) continue;
            if (SameText(dataSet->Name(), kDetail) == details) dataSet->Open();
        }
    };
    try {
        open(false);
    } catch (const EDatabaseError& error) {
        ShowStatus(error.Message());
    }
    const bool loaded = TFRMDBGrid::NodeLoaded();
    auto* query = ObjectCast<TDataSet>(FindComponent(kQuery));
    if (query && query->Active()) Try([&] { open(true); });
    EnableButtons();
    return loaded;
}

std::vector<TDataSet*> TFRMDBEntradaDades::Edited() const {
    std::vector<TDataSet*> edited;
    if (auto* query = ObjectCast<TDataSet>(FindComponent(kQuery))) edited.push_back(query);
    return edited;
}

std::vector<TDataSet*> TFRMDBEntradaDadesMD::Edited() const {
    std::vector<TDataSet*> edited = TFRMDBEntradaDades::Edited();
    if (auto* detail = ObjectCast<TDataSet>(FindComponent(kDetail))) edited.push_back(detail);
    return edited;
}

void TFRMDBEntradaDades::ShowMessageText(const AnsiString& text) {
    if (auto* label = ObjectCast<TLabel>(FindComponent("Missatge"))) label->SetCaption(PlainCaption(text));
}

bool TFRMDBEntradaDades::Try(const std::function<void()>& action) {
    ShowMessageText({});
    try {
        action();
        return true;
    } catch (const EUpdateConflict& conflict) {
        outdated_ = true;
        for (const TDataSet* dataSet : Edited())
            if (dataSet->IsEditing()) ShowMessageText(SentenceOf(conflict, *dataSet));
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        // Users know the screen and its fields, not the datasets behind them.
        AnsiString text = error.Message();
        for (const TDataSet* dataSet : Edited())
            if (text.rfind(dataSet->Name() + ": ", 0) == 0) text.erase(0, dataSet->Name().size() + 2);
        ShowMessageText(text);
    }
    return false;
}

void TFRMDBEntradaDades::FocusField(const AnsiString& name) {
    for (int i = 0; i < ComponentCount(); ++i) {
        auto* control = ObjectCast<TWinControl>(Components(i));
        if (!control || !control->CanFocus()) continue;
        const PropertyInfo* property = control->GetClassInfo().FindProperty("DataField");
        if (!property || !SameText(property->Accessor->GetString(*control), name)) continue;
        control->SetFocus();
        return;
    }
}

void TFRMDBEntradaDades::Save() {
    for (TDataSet* dataSet : Edited()) {
        if (!dataSet->IsEditing()) continue;
        dataSet->UpdateRecord();
        for (int i = 0; i < dataSet->FieldCount(); ++i) {
            TField* field = dataSet->Fields(i);
            // A text that was emptied is none.
            const bool empty = field->IsNull() || field->AsString().empty();
            if (!field->Required || !empty || !field->CanModify()) continue;
            FocusField(field->FieldName());
            throw Exception("Cal omplir el camp \xAB" + field->DisplayLabel() + "\xBB.");
        }
        dataSet->Post();
    }
}

void TFRMDBEntradaDades::FontStateChange(TObject*) { EnableButtons(); }

void TFRMDBEntradaDades::EnableButtons() {
    bool editing = false, open = false;
    for (const TDataSet* dataSet : Edited()) {
        editing = editing || dataSet->IsEditing();
        open = open || dataSet->Active();
    }
    const auto enable = [this](const char* name, bool enabled) {
        if (auto* button = ObjectCast<TWinControl>(FindComponent(name))) button->SetEnabled(enabled);
    };
    enable("Desar", editing);
    enable("Cancelar", editing);
    enable("Nou", open && !editing && !adding_);
    enable("Eliminar", open && !editing && !adding_);
    enable("Graella", !adding_);
    enable("Actualitzar", !adding_);
}

bool TFRMDBEntradaDades::CanAddRecord() const { return !Visible() && Query() && Query()->CanModify(); }

bool TFRMDBEntradaDades::AddModally(const AnsiString& fieldName, const AnsiString& text) {
    TDataSet& data = RequireOpen();
    if (Visible() || data.IsEditing())
        throw Exception("La pantalla \xAB" + Caption() + "\xBB \xE9s oberta: afegiu-hi el registre, o tanqueu-la.");
    const int number = TComponent::Handle();
    adding_ = true;
    added_ = false;
    const auto finish = [&] {
        if (ComponentFromHandle(number) != this) return;
        adding_ = false;
        if (data.Active() && data.IsEditing()) data.Cancel();
        EnableButtons();
    };
    try {
        NouClick(this);
        TField* field = data.FindField(fieldName);
        if (data.IsEditing() && field && field->FieldKind() == fkData && field->CanModify() && !text.empty()) {
            // The beginning of a name, typed in a search line, may be no whole value here.
            try {
                field->SetText(text);
            } catch (const EConvertError&) {
            } catch (const EDatabaseError&) {
            }
        }
        ShowModal();
    } catch (...) {
        finish();
        throw;
    }
    finish();
    return ComponentFromHandle(number) == this && added_;
}

void TFRMDBEntradaDades::DoShow() {
    TFRMDBGrid::DoShow();
    if (adding_) FocusCard();
}

void TFRMDBEntradaDades::DoClose(TCloseAction& action) {
    TFRMDBGrid::DoClose(action);
    // Whoever asked for a record looks at it afterwards.
    if (adding_) action = caHide;
}

void TFRMDBEntradaDades::NouClick(TObject*) {
    Try([this] {
        Save();
        for (TDataSet* dataSet : Edited()) {
            dataSet->Append();
            break;
        }
        FocusCard();
    });
}

void TFRMDBEntradaDades::FocusCard() {
    auto* card = ObjectCast<TWinControl>(FindComponent("Fitxa"));
    if (!card || !card->CanFocus()) return;
    // What is entered comes before the buttons, wherever the form has them among its controls.
    const auto* buttons = ObjectCast<TWinControl>(FindComponent("Botons"));
    for (TWinControl* each : card->GetTabOrderList()) {
        const bool entered = each->TabStop() && each->CanFocus() && !(buttons && buttons->ContainsControl(each));
        if (!entered) continue;
        SetActiveControl(each);
        return;
    }
}

bool TFRMDBEntradaDades::SaveOrTell() {
    const bool editing = !Edited().empty() && Edited().front()->IsEditing();
    if (!Try([this] { Save(); })) return false;
    if (adding_ && editing) {
        added_ = true;
        SetModalResult(mrOk);
    }
    return true;
}

void TFRMDBEntradaDades::DesarClick(TObject*) { SaveOrTell(); }

void TFRMDBEntradaDades::CancelarClick(TObject*) {
    Try([this] {
        std::vector<TDataSet*> edited = Edited();
        for (auto each = edited.rbegin(); each != edited.rend(); ++each)
            if ((*each)->IsEditing()) (*each)->Cancel();
        // What the others changed is to be seen now.
        if (!std::exchange(outdated_, false)) return;
        for (TDataSet* dataSet : edited)
            if (dataSet->Active()) dataSet->Refresh();
    });
    if (adding_ && !added_) SetModalResult(mrCancel);
}

void TFRMDBEntradaDades::EliminarClick(TObject*) {
    if (MessageDlg("Voleu eliminar aquest registre?", mtConfirmation, {mbYes, mbNo}) != mrYes) return;
    Try([this] {
        for (TDataSet* dataSet : Edited()) {
            dataSet->Delete();
            break;
        }
    });
}

void TFRMDBEntradaDadesMD::NovaLiniaClick(TObject*) {
    Try([this] {
        Save();
        const std::vector<TDataSet*> edited = Edited();
        if (edited.size() < 2 || edited[0]->IsEmpty()) throw Exception("Cal desar primer el registre.");
        edited[1]->Append();
    });
}

void TFRMDBEntradaDadesMD::EliminarLiniaClick(TObject*) {
    Try([this] {
        const std::vector<TDataSet*> edited = Edited();
        if (edited.size() == 2 && !edited[1]->IsEmpty()) edited[1]->Delete();
    });
}

bool TFRMDBEntradaDades::CloseQuery() {
    if (!TFRMDBGrid::CloseQuery()) return false;
    bool changed = false;
    for (TDataSet* dataSet : Edited()) {
        if (!dataSet->IsEditing()) continue;
        dataSet->UpdateRecord();
        changed = changed || dataSet->Modified();
    }
    if (!changed) return true;
    const TModalResult answer =
        MessageDlg("Hi ha canvis sense desar. Els voleu desar?", mtConfirmation, {mbYes, mbNo, mbCancel});
    if (answer == mrYes) return SaveOrTell();
    if (answer == mrNo) CancelarClick(this);
    return answer == mrNo;
}

}  // namespace vyn
