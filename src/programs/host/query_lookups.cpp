// How screens over queries answer lookups.
#include "platform/objects/component_handle.h"
#include "platform/text/compare.h"
#include "platform/text/exceptions.h"
#include "platform/text/numbers.h"
#include "programs/host/entry_buttons.h"
#include "programs/host/entry_form.h"
#include "programs/host/query_form.h"
#include "programs/host/search_form.h"
#include "query/Uquerysql.h"

namespace vyn {

namespace query_lookups_detail {

// Node types of the screens that records are entered in.
constexpr int kEntryTypes[] = {11, 26};

// For as long as it lives, a form is searched already.
class Searching {
  public:
    Searching(TComponent& form, bool& flag) : number_(form.TComponent::Handle()), flag_(flag) { flag_ = true; }
    ~Searching() {
        if (ComponentFromHandle(number_)) flag_ = false;
    }

  private:
    int number_;
    bool& flag_;
};

// The fields by which a record of one dataset is found in another: the table's key where both have it.
std::vector<AnsiString> CommonKey(const TDataSet& from, const TDataSet& to) {
    std::vector<AnsiString> key;
    for (const FieldDefinition& column : from.FieldDefinitions()) {
        if (!column.InKey) continue;
        const TField* field = to.FindField(column.Name);
        if (!field || !from.FindField(column.Name)) return {};
        key.push_back(column.Name);
    }
    return key;
}

}  // namespace query_lookups_detail

using namespace query_lookups_detail;

void TFRMSQLGeneric::WndProc(TMessage& message) {
    if (!AnswerLookup(message, *this)) TCustomFRM::WndProc(message);
}

TDataSet& TFRMSQLGeneric::RequireOpen() {
    TDataSet* data = Query();
    if (!data) throw EDatabaseError("La pantalla \xAB" + Caption() + "\xBB no t\xE9 cap consulta.");
    if (!data->Active()) OpenQueries();
    if (!data->Active()) throw EDatabaseError("La consulta de la pantalla \xAB" + Caption() + "\xBB no s'obre.");
    return *data;
}

// Who looks a value up sees neither this screen nor its dataset: the message says where it was looked for.
AnsiString TFRMSQLGeneric::SearchFailure(const EDatabaseError& error) const {
    AnsiString text = error.Message();
    const TDataSet* data = Query();
    const AnsiString prefix = data ? data->Name() + ": " : AnsiString();
    if (!prefix.empty() && text.rfind(prefix, 0) == 0) text.erase(0, prefix.size());
    const AnsiString name = "\xAB" + Caption() + "\xBB";
    return text.find(name) != AnsiString::npos ? text : "No es pot cercar a " + name + ": " + text;
}

bool TFRMSQLGeneric::NamingFailures(const std::function<bool()>& search) const {
    try {
        return search();
    } catch (const EDatabaseError& error) {
        throw EDatabaseError(SearchFailure(error));
    }
}

bool TFRMSQLGeneric::Locate(const AnsiString& fieldName, const Variant& value) {
    TDataSet& data = RequireOpen();
    // Nobody sees this screen to refresh it.
    if (data.ReadingFailed() && !data.IsEditing()) data.Refresh();
    if (!data.FindField(fieldName)) ShowStatus("No hi ha cap camp \xAB" + fieldName + "\xBB.");
    return record_.Find(data, fieldName, value);
}

bool TFRMSQLGeneric::LocateRecord(const TLocateStruct& wanted) {
    return NamingFailures([&] {
        TDataSet& data = RequireOpen();
        if (wanted.Second && !data.IsPaged() && !data.IsEditing()) data.Refresh();
        return Locate(wanted.FieldName, wanted.Value);
    });
}

void TFRMSQLGeneric::ReadValues(TParametres& values) {
    for (int i = 0; i < parameters_.Count(false); ++i) {
        const TParametresData data = parameters_.GetParamsProps(i);
        values.SetParametreValue(data.Name, data.Value);
    }
    record_.Read(Query(), values);
}

bool TFRMSQLGeneric::WriteValues(TParametres& values) {
    return NamingFailures([&] {
        bool found = true;
        for (int i = 0; i < values.Count(false); ++i) {
            const TParametresData data = values.GetParamsProps(i);
            if (RequireOpen().FindField(data.Name))
                found = Locate(data.Name, data.Value) && found;
            else
                parameters_.SetParametreValue(data.Name, data.Value);
        }
        return found;
    });
}

AnsiString TFRMSQLGeneric::MaskOfValue(const AnsiString& name) {
    // Asked for each record that a box shows: a database that is away is told to who searches.
    const TDataSet* data = Query();
    const TField* field = data ? data->FindField(name) : nullptr;
    return field ? field->EditMask() : AnsiString();
}

// The search screen says what goes wrong while it is opened: who pressed the key is before it, and nothing has changed.
bool TFRMSQLGeneric::ChooseRecord(const TLocateStruct& wanted) {
    try {
        return NamingFailures([&] { return Search(wanted); });
    } catch (const EAbort&) {
        throw;
    } catch (const Exception& error) {
        MessageDlg(error.Message(), mtError, {mbOK});
        return false;
    }
}

bool TFRMSQLGeneric::Search(const TLocateStruct& wanted) {
    if (searching_) throw Exception("Ja s'est\xE0 cercant a \xAB" + Caption() + "\xBB.");
    TDataSet& data = RequireOpen();
    if (data.IsEditing())
        throw Exception("S'est\xE0 editant un registre de \xAB" + Caption() +
                        "\xBB: deseu-lo o cancel\xB7leu-lo abans de cercar.");
    const Searching guard(*this, searching_);
    if (wanted.Second) data.Refresh();
    SearchRequest request;
    request.DataSet = &data;
    request.Title = Caption();
    request.Columns = ObjectCast<TCustomDBGrid>(FindComponent("Graella"));
    request.FieldName = wanted.FieldName;
    request.Text = VarToStr(wanted.Value);
    request.Typed = wanted.First;
    if (CanAddRecord())
        request.Add = [this](const AnsiString& field, const AnsiString& text) { return AddRecord(field, text); };
    const int number = TComponent::Handle();
    const bool chosen = TFRMCerca::Run(request);
    if (ComponentFromHandle(number) != this) return false;
    if (chosen) record_.TakeCurrent(data);
    return chosen;
}

int TFRMSQLGeneric::EntryNode() const {
    if (!VynApp() || IDNode() < 1) return 0;
    for (const TNodeArbre& node : VynApp()->Tree().Childs(IDNode(), false))
        for (int type : kEntryTypes)
            if (node.NodeType == type && NodeOpens(node)) return node.IDNode;
    return 0;
}

bool TFRMSQLGeneric::CanAddRecord() const { return EntryNode() > 0; }

bool TFRMSQLGeneric::AddRecord(const AnsiString& fieldName, const AnsiString& text) {
    const int idNode = EntryNode();
    const bool open = VynApp()->NodesList().IndexOf(idNode) >= 0;
    auto* entry = ObjectCast<TFRMDBEntradaDades>(VynApp()->ObreComponent(idNode, this));
    if (!entry) return false;
    const int own = TComponent::Handle();
    const int number = entry->TComponent::Handle();
    const bool added =
        entry->AddModally(fieldName, text) && ComponentFromHandle(own) == this && ComponentFromHandle(number) == entry;
    bool found = false;
    if (added) {
        TDataSet& data = RequireOpen();
        const TDataSet& card = entry->RequireOpen();
        std::vector<AnsiString> key = CommonKey(card, data);
        if (key.empty() && data.FindField(fieldName) && card.FindField(fieldName)) key = {fieldName};
        AnsiString names;
        std::vector<Variant> values;
        for (const AnsiString& name : key) {
            names += (names.empty() ? "" : ";") + name;
            values.push_back(card.FieldByName(name)->Value());
        }
        data.Refresh();
        found = !key.empty() && data.Locate(names, values);
    }
    // The user's own window stays.
    if (!open && ComponentFromHandle(number) == entry) delete entry;
    return found;
}

}  // namespace vyn
