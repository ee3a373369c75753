#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "datasources/Uvyndatasources.h"
#include "datasources/search_thread.h"
#include "events/Ueventsvyn.h"
#include "package/package.h"
#include "platform/access/ado.h"
#include "platform/controls/edits.h"
#include "platform/controls/form_classes.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/objects/class_table.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"
#include "platform/text/compare.h"
#include "platform/text/format_settings.h"
#include "platform/text/numbers.h"
#include "platform/text/windows1252.h"
#include "providers/sqlite/connection.h"
#include "support/applications.h"
#include "support/errors.h"

namespace lookup_fixtures {

using namespace vyn;

struct Customer {
    int Code;
    AnsiString Name;
    AnsiString City;
};

// What stands behind the lookups: some customers; each answer is written down.
struct Customers {
    std::vector<Customer> Rows;
    std::vector<AnsiString> Log;
    int Opened = 0;
    // What the modal search chooses: a row's index, or -1 for none.
    int Chosen = -1;
    // Runs inside the next answer, whatever it is for.
    std::function<void()> Inside;

    AnsiString TakeLog() {
        AnsiString text;
        for (const AnsiString& line : Log) text += (text.empty() ? "" : "; ") + line;
        Log.clear();
        return text;
    }
    int Find(const AnsiString& field, const Variant& value) const {
        if (value.IsNull() || value.IsEmpty()) return -1;
        const AnsiString text = VarToStr(value);
        for (size_t i = 0; i < Rows.size(); ++i) {
            const bool same = SameText(field, "Code") ? IntToStr(Rows[i].Code) == text
                                                      : AnsiSameText(Rows[i].Name.substr(0, text.size()), text);
            if (same) return static_cast<int>(i);
        }
        return -1;
    }
    void RunInside() {
        const std::function<void()> inside = std::move(Inside);
        Inside = nullptr;
        if (inside) inside();
    }
    void Put(int row, TParametres& values) const {
        if (row < 0) return;
        const Customer& at = Rows[static_cast<size_t>(row)];
        values.AddParam("Code", at.Code);
        values.AddParam("Name", at.Name);
        values.AddParam("City", at.City);
    }
};
inline Customers* theCustomers = nullptr;

// A search screen over the customers.
class TSearchScreen : public TForm {
    VYN_OBJECT
  public:
    explicit TSearchScreen(TComponent* owner) : TForm(owner) {}
    void WndProc(TMessage& message) override {
        Customers& customers = *theCustomers;
        const auto* locate = reinterpret_cast<const TLocateStruct*>(message.LParam);
        switch (message.Msg) {
            case VYN_MESSAGE_LOCATE:
                customers.Log.push_back("locate " + locate->FieldName + "=" + VarToStr(locate->Value) +
                                        (locate->Second ? " anew" : ""));
                EXPECT_EQ(message.WParam, 4);
                EXPECT_TRUE(locate->First && locate->Third);
                if (const int row = customers.Find(locate->FieldName, locate->Value); row >= 0) {
                    at_ = row;
                    message.Result = -1;
                }
                customers.RunInside();
                return;
            case VYN_MESSAGE_TPARAMETRESLIST:
                customers.Log.push_back("values " + IntToStr(message.WParam));
                customers.Put(at_, *reinterpret_cast<TParametres*>(message.LParam));
                message.Result = -1;
                customers.RunInside();
                return;
            case VYN_MESSAGE_SHOWMODALSEARCH:
                customers.Log.push_back("modal " + locate->FieldName + "=" + VarToStr(locate->Value) +
                                        (locate->First ? " modified" : "") + (locate->Second ? " extra" : ""));
                EXPECT_EQ(message.WParam, 4);
                EXPECT_TRUE(locate->Third);
                customers.RunInside();
                if (customers.Chosen < 0) return;
                at_ = customers.Chosen;
                message.Result = -1;
                return;
            case VYN_AFTERLOAD:
                ++customers.Opened;
                return;
            default:
                TForm::WndProc(message);
        }
    }

  private:
    int at_ = -1;
};
inline const ClassInfo& TSearchScreen::StaticClass() {
    static const ClassInfo info = DefineForm<TSearchScreen, TForm>("TSearchScreen");
    return info;
}

// The same as a component of a registered class.
class TCustomerClass : public TCustomVynDataSourceAbstract {
  public:
    explicit TCustomerClass(TComponent* owner) : TCustomVynDataSourceAbstract(owner) { ++theCustomers->Opened; }
    int ModalSearch(const AnsiString& fieldName, const Variant& value) override {
        theCustomers->Log.push_back("modal " + fieldName + "=" + VarToStr(value));
        at_ = theCustomers->Chosen;
        return at_ >= 0 ? 1 : 0;
    }
    void LoadParams() override {
        loading_ = true;
        Params().Clear();
        theCustomers->Put(at_, Params());
        loading_ = false;
        theCustomers->RunInside();
    }
    void ParamsSetValor(const AnsiString& name, const Variant& value) override {
        if (loading_) return;
        loading_ = true;
        theCustomers->Log.push_back("set " + name + "=" + VarToStr(value));
        at_ = theCustomers->Find(name, value);
        loading_ = false;
    }
    AnsiString GetParamMask(const AnsiString& name) override { return SameText(name, "Code") ? "000;0;_" : ""; }
    static void Create(TVynApp*, const AnsiString&, TComponent* owner, TComponent*& component, HWND& handle) {
        auto* made = new TCustomerClass(owner);
        component = made;
        handle = made->WindowHandle();
    }

  private:
    int at_ = -1;
    bool loading_ = false;
};

// A link that says how often its search looked at the deadline.
class TCountedLink : public TVynDataLink {
  public:
    void ThreadWaitTime(TThread* thread, bool& wait, bool& terminate) override {
        ++Checks;
        TVynDataLink::ThreadWaitTime(thread, wait, terminate);
        EXPECT_FALSE(terminate);
        EXPECT_TRUE(IsMainThread());
        EXPECT_NE(thread, nullptr);
        if (Unsure) throw Exception("unsure");
    }
    int Checks = 0;
    bool Unsure = false;
};

// An application whose node 1 has search screens as children 10 and 20, and an order with customers' codes.
class LookupTest : public testing::Test {
  protected:
    void SetUp() override {
        theCustomers = &customers;
        customers.Rows = {{1, "Abad", "Vic"}, {2, "ABC", "Reus"}, {3, "García"_w, "Lleida"}, {4, "Gasol", "Olot"}};
        InitializePackage();
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
        RegisterSqliteProvider();
        RegisterClass(&TSearchScreen::StaticClass());
        TextToBinary("object Screen: TSearchScreen\nend\n", compiled_);
        RegisterFormResource("TSearchScreen", compiled_.Bytes());
        VynDataSource_RegisterClassName("Customers", &TCustomerClass::Create);
        host_.emplace();
        Application()->OnException = [this](TObject*, const Exception& error) { errors += error.Message() + ";"; };
        app = std::make_unique<TVynApp>(nullptr);
        Store(2, "object First: TSearchScreen\nend\n");
        Store(3, "object Second: TSearchScreen\nend\n");
        Node(1, 0, 0, 0);
        Node(2, 1, 10, 2);
        Node(3, 1, 20, 3);
        form = std::make_unique<TForm>(nullptr);
        form->SetName("Order");
        orders = Make<TADOQuery>("Orders");
        orders->SetConnectionString("Provider=SQLite;Data Source=:memory:");
        Run("CREATE TABLE o (Id INTEGER PRIMARY KEY, Customer INTEGER, Other INTEGER, Town TEXT, Title TEXT, Free "
            "TEXT)");
        Run("INSERT INTO o VALUES (1, 3, 1, 'none', 'none', NULL), (2, 4, 1, 'none', 'none', NULL)");
        orders->SQL()->SetText("SELECT * FROM o ORDER BY Id");
        orders->Open();
        source = Make<TVynDataSource>("Source");
        source->SetDataSet(orders);
        source->SetVynApp(app.get());
        source->SetIDNode(1);
    }
    void TearDown() override {
        link.reset();
        form.reset();
        if (app) app->CloseApp();
        app.reset();
        Application()->OnException.Clear();
        host_.reset();
        Application()->ProcessMessages();
        UnregisterFormResource("TSearchScreen");
        FormatSettings() = before_;
        FinalizePackage();
        theCustomers = nullptr;
        EXPECT_EQ(errors, expectedErrors);
    }
    void Run(const AnsiString& sql) {
        orders->SQL()->SetText(sql);
        orders->ExecSQL();
    }
    void Store(int component, const std::string& text) { StoreForm(*app, {component, 4, "C"}, text); }
    void Node(int number, int parent, int child, int component) {
        app->Tree().Add({number, parent, child, component, 4, "N"});
    }
    template <class T>
    T* Make(const AnsiString& name) {
        T* made = new T(form.get());
        made->SetName(name);
        return made;
    }
    // A link to the customer, by child 10 unless said otherwise.
    std::unique_ptr<TCountedLink> MakeLink(const AnsiString& field = "Customer", int child = 10) {
        auto made = std::make_unique<TCountedLink>();
        made->SetDataSource(source);
        made->SetFieldName(field);
        made->SetVynDataLinkType(dlt_Search);
        made->SetNChild(child);
        made->SetChildDataKey("Code");
        made->SetChildDataShow("Name");
        made->OnAutoSearched = [this](TVynDataLink*, const AnsiString& searched, const AnsiString& found) {
            customers.Log.push_back("told " + searched + ">" + found);
        };
        return made;
    }
    // The link of most tests, its component open and its value shown.
    void Ready(const AnsiString& field = "Customer") {
        link = MakeLink(field);
        EXPECT_FALSE(link->HasComponent());
        Settle();
        customers.Log.clear();
        link->Checks = 0;
    }
    bool Searching() const {
        TVynComponentList* list = source ? source->ComponentList() : nullptr;
        for (int i = 0; list && i < list->Count(); ++i)
            if (list->Record(i)->Search) return true;
        return false;
    }
    // Until nothing waits and no search runs; a search that waits for its deadline would be waited for.
    void Settle() {
        Application()->ProcessMessages();
        while (Searching()) Application()->HandleQueue();
        Application()->ProcessMessages();
        if (Searching()) Settle();
    }
    // Until the link's search has looked at its deadline so often.
    void UntilChecked(int times) {
        while (link->Checks < times) Application()->HandleQueue();
    }
    TVynComponent& Record() { return *source->ComponentList()->RecordOf(link.get()); }
    AnsiString Shown() { return link->GetDisplayText(); }
    AnsiString TakeLog() { return customers.TakeLog(); }

    ManualTickClock clock{1000};
    Customers customers;
    AnsiString errors, expectedErrors;
    std::unique_ptr<TVynApp> app;
    std::unique_ptr<TForm> form;
    TADOQuery* orders = nullptr;
    TVynDataSource* source = nullptr;
    std::unique_ptr<TCountedLink> link;

  private:
    TFormatSettings before_;
    TMemoryStream compiled_;
    std::optional<SilentHost> host_;
};

}  // namespace lookup_fixtures
