#pragma once

#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>

#include "controls/Uvyneditbox.h"
#include "engines.h"
#include "package/package.h"
#include "persistence/Uvynclss.h"
#include "platform/access/ado.h"
#include "platform/controls/data_modules.h"
#include "platform/controls/forms.h"
#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"
#include "programs/host/query_form.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"

// An application whose boxes look customers up, of whom there are 1,000,000 on each engine.
namespace lookup_world {

using namespace vyn;
using namespace engines;

inline constexpr int64_t kCustomers = 1000000;
inline constexpr int kMostDigits = 5;  // typed behind the surname, of seven

inline constexpr const char* kSurnames[] = {"Abad",   "Bosch",  "Casals",   "Domènech", "Esteve", "Ferrer", "Garcia",
                                            "Güell",  "Hernan", "Ibáñez",   "Jordà",    "Llull",  "Martí",  "Núñez",
                                            "Oliver", "Puig",   "Quintana", "Riera",    "Soler",  "Torres", "Vilà"};
inline constexpr int kSurnameCount = sizeof kSurnames / sizeof kSurnames[0];

// A name: surname, a number that spreads the names evenly, given name.
inline std::string NameOf(int64_t number) {
    return std::string(kSurnames[number % kSurnameCount]) + " " +
           std::to_string(kCustomers + number * 7919 % kCustomers);
}

inline void NeedCustomers(Engine engine) {
    static std::map<Engine, bool> made;
    if (std::exchange(made[engine], true)) return;
    const char* kTable =
        "CREATE TABLE customers (id INTEGER PRIMARY KEY, name VARCHAR(40), city VARCHAR(20), "
        "discount FLOAT)";
    if (engine == Engine::Embedded) {
        RunEmbedded(kTable);
        RunEmbedded("BEGIN");
        sqlite3_stmt* insert = nullptr;
        sqlite3_prepare_v2(Embedded(), "INSERT INTO customers VALUES (?, ?, 'Vic', 5)", -1, &insert, nullptr);
        for (int64_t i = 1; i <= kCustomers; ++i) {
            const std::string name = NameOf(i);
            sqlite3_bind_int64(insert, 1, i);
            sqlite3_bind_text(insert, 2, name.c_str(), -1, SQLITE_TRANSIENT);
            sqlite3_step(insert);
            sqlite3_reset(insert);
        }
        sqlite3_finalize(insert);
        RunEmbedded("COMMIT; CREATE INDEX byname ON customers (name); ANALYZE");
    } else {
        RunServer(kTable);
        std::string names;
        for (const char* each : kSurnames) names += std::string(names.empty() ? "" : ",") + "'" + each + "'";
        RunServer("INSERT INTO customers SELECT i, (ARRAY[" + names + "])[1 + i % " + std::to_string(kSurnameCount) +
                  "] || ' ' || (" + std::to_string(kCustomers) + " + i::bigint * 7919 % " + std::to_string(kCustomers) +
                  "), 'Vic', 5 FROM generate_series(1, " + std::to_string(kCustomers) + ") AS n (i)");
        RunServer("CREATE INDEX byname ON customers (name)");
        RunServer("ANALYZE customers");
    }
}

// An application with a list of customers below its node 1, and a form with boxes that look them up.
class World {
  public:
    World(Engine engine, int nodes) {
        InitializePackage();
        RegisterHostForms();
        RegisterSqliteProvider();
        RegisterPostgresqlProvider();
        NeedCustomers(engine);
        data_.SetName("Dades");
        auto* connection = new TADOConnection(&data_);
        connection->SetName("Connexio");
        connection->SetConnectionString(engine == Engine::Embedded ? AnsiString("Provider=SQLite;Data Source=") +
                                                                         sqlite3_db_filename(Embedded(), "main")
                                                                   : Cluster().ConnectionString());
        SetFindGlobalComponent([this, connection](std::string_view name) -> TComponent* {
            return name == "Dades" ? static_cast<TComponent*>(&data_) : name == "Dades.Connexio" ? connection : nullptr;
        });
        Application()->OnException = [](TObject*, const Exception& error) { Fail(error.Message().c_str()); };
        app = std::make_unique<TVynApp>(nullptr);
        app->LoadBPL();
        AddNode(1, 0, 0);
        for (int i = 1; i <= nodes; ++i) AddNode(i + 1, 1, i);
        form = std::make_unique<TForm>(nullptr);
        orders = new TADOQuery(form.get());
        orders->SetConnection(connection);
        AnsiString columns;
        for (int i = 1; i <= nodes; ++i) columns += (i > 1 ? ", " : "") + ("id AS c" + std::to_string(i));
        orders->SQL()->SetText("SELECT " + columns + " FROM customers WHERE id < 1000");
        orders->Open();
        source = new TVynDataSource(form.get());
        source->SetDataSet(orders);
        source->SetVynApp(app.get());
        source->SetIDNode(1);
    }
    ~World() {
        form.reset();
        app->CloseApp();
        app.reset();
        Settle();
        SetFindGlobalComponent(nullptr);
        FinalizePackage();
    }
    TVynEditBox* AddBox(int node) {
        auto* box = new TVynEditBox(form.get());
        box->SetParent(form.get());
        box->SetDataLinkType(dlt_Search);
        box->SetNChild(node);
        box->SetChildDataKey("id");
        box->SetChildDataShow("name");
        box->SetDataField("c" + std::to_string(node));
        box->SetAutoSearch(true);
        box->SetAutoSearchWaitMiliSeconds(0);
        box->SetVynDataSource(source);
        return box;
    }
    void Settle() {
        const auto searching = [&] {
            TVynComponentList* list = form ? source->ComponentList() : nullptr;
            for (int i = 0; list && i < list->Count(); ++i)
                if (list->Record(i)->State == vyncs_Searching) return true;
            return false;
        };
        do {
            Application()->ProcessMessages();
            while (searching()) Application()->HandleMessage();
            Application()->ProcessMessages();
        } while (searching());
    }

    std::unique_ptr<TVynApp> app;
    std::unique_ptr<TForm> form;
    TADOQuery* orders = nullptr;
    TVynDataSource* source = nullptr;

  private:
    void AddNode(int number, int parent, int child) {
        TMemoryStream stream;
        TextToBinary(
            "object FRMDBGrid: TFRMDBGrid\n  object Consulta: TADOQuery\n    SQL.Strings = (\n"
            "      'SELECT id, name, city, discount FROM customers ORDER BY name')\n  end\nend\n",
            stream);
        app->Components().InsertComponent(TComponentVyn{number, 8, "C"}, stream);
        TNodeArbre node;
        node.IDNode = number;
        node.IDParent = parent;
        node.Child = child;
        node.IDComponent = parent == 0 ? 0 : number;
        node.NodeType = 8;
        node.Name = "N";
        app->Tree().Add(node);
    }
    TDataModule data_{nullptr};
};

// Beginnings of names that are there.
class Beginnings {
  public:
    std::string Next() {
        const std::string name = NameOf(1 + static_cast<int64_t>(random_() % kCustomers));
        const size_t space = name.find(' ');
        return name.substr(0, space + 2 + random_() % static_cast<size_t>(kMostDigits));
    }

  private:
    std::mt19937 random_{7};
};

}  // namespace lookup_world
