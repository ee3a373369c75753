// Event scripts: what loads is stored as it came, and its rules run on a small form without harm, whatever they set.

#include <functional>

#include "events/Ueventsvyn.h"
#include "package/package.h"
#include "platform/controls/buttons.h"
#include "platform/controls/forms.h"
#include "platform/controls/lists.h"
#include "platform/data/data_set.h"
#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/writer.h"
#include "query/Uquerysql.h"
#include "support/fuzz.h"

namespace vyn {

// Three records in memory, which can be changed.
class TFuzzRows : public TDataSet {
    VYN_OBJECT
  public:
    explicit TFuzzRows(TComponent* owner) : TDataSet(owner) {}
    ~TFuzzRows() override { BeginDestruction(); }

  protected:
    std::vector<FieldDefinition> InternalOpen() override {
        next_ = 0;
        return {{"Code", ftInteger}, {"Name", ftString, 10, 0, true}, {"Price", ftFloat}, {"Day", ftDate}};
    }
    bool InternalFetch(RowStore& rows, int64_t count) override {
        for (; count > 0 && next_ < 3; --count, ++next_)
            rows.Append({Cell::Integer(next_), Cell::Bytes("Rosa"), Cell::Real(2.5), Cell::Null()});
        return next_ < 3;
    }
    void InternalClose() override {}
    AnsiString ReasonNotToModify() const override { return {}; }

  private:
    int next_ = 0;
};
const ClassInfo& TFuzzRows::StaticClass() {
    static const ClassInfo info = DefineClass<TFuzzRows, TDataSet>("TFuzzRows")
                                      .Published("Active", &TFuzzRows::Active, &TFuzzRows::SetActive)
                                      .Published("Filtered", &TFuzzRows::Filtered, &TFuzzRows::SetFiltered)
                                      .Published("Sort", &TFuzzRows::Sort, &TFuzzRows::SetSort);
    return info;
}

}  // namespace vyn

namespace {

using namespace vyn;

constexpr int kRuns = 100;   // events in one input, those that others start included
constexpr int kNesting = 4;  // events that others start

// A form with controls, a dataset, a query over it and rules that their events start by name, as stored handlers do.
struct Form {
    Form() {
        [[maybe_unused]] static const bool started = (InitializePackage(), true);
        Parametres()->Clear();
        form = std::make_unique<TForm>(nullptr);
        form->SetName("Screen");
        rules = Make<TEventsVyn>("Rules");
        own = std::make_unique<TParametres>(nullptr);
        own->AddParam("OWN", 3);
        Parametres()->AddParam("GLOBAL", 2);
        rules->SetParametresList(own.get());
        auto* edit = Make<TEdit>("Name");
        edit->OnChange = [this](TObject*) { Start("NameChange"); };
        auto* check = Make<TCheckBox>("Paid");
        check->OnClick = [this](TObject*) { Start("PaidClick"); };
        auto* list = Make<TListBox>("List");
        list->Items()->SetCommaText("a,b,c");
        list->OnClick = [this](TObject*) { Start("ListClick"); };
        auto* combo = Make<TComboBox>("Combo");
        combo->Items()->SetCommaText("a,b,c");
        combo->OnChange = [this](TObject*) { Start("ComboChange"); };
        Make<TMemo>("Text")->OnChange = [this](TObject*) { Start("TextChange"); };
        auto* rows = Make<TFuzzRows>("Rows");
        rows->BeforeEdit = [this](TDataSet*) { Start("RowsBeforeEdit"); };
        rows->AfterEdit = [this](TDataSet*) { Start("RowsAfterEdit"); };
        rows->BeforeClose = [this](TDataSet*) { Start("RowsBeforeClose"); };
        rows->AfterClose = [this](TDataSet*) { Start("RowsAfterClose"); };
        rows->AfterScroll = [this](TDataSet*) { Start("RowsAfterScroll"); };
        rows->Open();
        Make<TQuerySQL>("Query")->SetQryDataSet(rows);
        rules->OnExecuteProcedureVyn = [this](TObject*, const AnsiString& name, bool& executed) {
            executed = rules->RetornaPosEvent(name) >= 0;
            // Not from within a control's or a dataset's own event.
            if (name == "Free" && depth == 1) form.reset();
            if (executed) Start(name);
        };
        rules->OnErrorOnValue = [](TEventsVyn*, const TPartAssignacioEvent& part, const Variant&, bool& raise) {
            raise = part.Tipus != tdcExpresion;
        };
    }
    ~Form() { form.reset(); }
    template <class T>
    T* Make(const AnsiString& name) {
        T* made = new T(form.get());
        made->SetName(name);
        if constexpr (std::is_base_of_v<TControl, T>) made->SetParent(form.get());
        return made;
    }
    void Start(const AnsiString& name) {
        if (!form || depth >= kNesting || ++runs > kRuns) return;
        ++depth;
        try {
            rules->ExecutaEvent(nullptr, name);
        } catch (...) {
            --depth;
            throw;
        }
        --depth;
    }

    std::unique_ptr<TForm> form;
    std::unique_ptr<TParametres> own;
    TEventsVyn* rules = nullptr;
    int depth = 0;
    int runs = 0;
};

std::string Stored(TEventsVyn& events) {
    TMemoryStream stream;
    {
        TWriter writer(stream);
        events.WriteData(writer);
    }
    return std::string(stream.Bytes());
}

void Load(TEventsVyn& events, std::string_view bytes) {
    TViewStream stream(bytes);
    TReader reader(stream);
    events.ReadData(reader);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Form screen;
    const bool whole = fuzzing::Succeeds([&] { Load(*screen.rules, fuzzing::Bytes(data, size)); });
    const std::string stored = Stored(*screen.rules);
    TEventsVyn again(nullptr);
    Load(again, stored);
    fuzzing::Require(again.Count() == screen.rules->Count(), "every event that was loaded is stored");
    for (int i = 0; i < again.Count(); ++i)
        fuzzing::Require(again.GetEvent(i) == screen.rules->GetEvent(i), "an event comes back as it was");
    fuzzing::Require(Stored(again) == stored, "what was stored is stored again byte for byte");
    if (!whole) return 0;
    for (int i = 0; i < again.Count() && screen.form && screen.runs < kRuns; ++i) {
        const bool done = fuzzing::Succeeds([&] { screen.Start(again.GetEvent(i).Nom); });
        fuzzing::Require(done || Parametres()->ParamExists("IP_ErrorExecutantEvent"), "a failure is kept");
    }
    return 0;
}
