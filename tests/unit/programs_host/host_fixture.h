#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "datasources/messages.h"
#include "foundation/Uparametres.h"
#include "package/package.h"
#include "platform/access/ado.h"
#include "platform/controls/data_modules.h"
#include "platform/objects/class_info.h"
#include "platform/streams/reader.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"
#include "platform/system/message_dialogs.h"
#include "platform/system/ticks.h"
#include "platform/text/format_settings.h"
#include "platform/text/windows1252.h"
#include "programs/host/entry_form.h"
#include "programs/host/search_form.h"
#include "providers/sqlite/connection.h"
#include "support/applications.h"

namespace vyn {

// An application over a database in memory with customers: a list of them (node 2, below it their card, node 3, and a
// query screen, node 4).
class HostLookups : public testing::Test {
  protected:
    HostLookups() {
        FormatSettings() = InvariantFormatSettings();
        InitializePackage();
        RegisterHostForms();
        RegisterSqliteProvider();
        SetMessageDialogPort([this](const MessageDialogRequest& request) {
            said.push_back(AnsiToUtf8(request.Text));
            return mrOk;
        });
        data.SetName("Dades");
        connection = new TADOConnection(&data);
        connection->SetName("Connexio");
        connection->SetConnectionString("Provider=SQLite;Data Source=:memory:");
        SetFindGlobalComponent([this](std::string_view name) -> TComponent* {
            return name == "Dades" ? static_cast<TComponent*>(&data) : name == "Dades.Connexio" ? connection : nullptr;
        });
        connection->Execute(
            "CREATE TABLE clients (id INTEGER PRIMARY KEY AUTOINCREMENT, codi VARCHAR(6), nom VARCHAR(30) NOT NULL,"
            " alta DATE, foto BLOB, \"població\" VARCHAR(20))"_w);
        connection->Execute(
            "INSERT INTO clients (id, codi, nom, alta) VALUES (1, 'C3', 'Puig & Fills', '2020-01-02'),"
            " (2, 'C1', 'Puig', NULL), (3, 'C10', 'García', NULL), (4, 'C4', 'Garrofa', NULL),"
            " (5, 'C5', 'Soler', NULL)"_w);
        app = std::make_unique<TVynApp>(nullptr);
        app->LoadBPL();
        Store(2, 1, 8,
              "object FRMDBGrid: TFRMDBGrid\n  object Consulta: TADOQuery\n    SQL.Strings = (\n"
              "      'SELECT * FROM clients ORDER BY id')\n  end\nend\n");
        Store(3, 2, 11,
              "object FRMDBEntradaDades: TFRMDBEntradaDades\n  object Fitxa: TPanel\n    object Nom: TDBEdit\n"
              "      DataField = 'nom'\n      DataSource = Font\n      TabOrder = 0\n    end\n  end\n  object "
              "Consulta: TADOQuery\n"
              "    SQL.Strings = (\n      'SELECT * FROM clients ORDER BY id')\n    object ConsultaId: TAutoIncField\n"
              "      FieldName = 'id'\n    end\n    object ConsultaCodi: TStringField\n      FieldName = 'codi'\n"
              "      EditMask = '>L09;1;_'\n      Size = 6\n    end\n    object ConsultaNom: TStringField\n"
              "      DisplayLabel = 'Nom'\n      FieldName = 'nom'\n      Required = True\n      Size = 30\n    end\n"
              "  end\nend\n");
        Store(4, 1, 7,
              "object FRMSQLGeneric: TFRMSQLGeneric\n  object Consulta: TADOQuery\n    SQL.Strings = (\n"
              "      'SELECT id, nom FROM clients')\n  end\nend\n");
    }
    ~HostLookups() override {
        app->CloseApp();
        app.reset();
        SetFindGlobalComponent(nullptr);
        SetMessageDialogPort(nullptr);
        FinalizePackage();
    }
    void Store(int number, int parent, int type, const std::string& form) {
        StoreForm(*app, {number, type, "C"}, form);
        const char* name = number == 2 ? "Clients" : number == 3 ? "Fitxa de client" : "Consulta";
        const int above = app->Tree().FindIDNode(parent) ? parent : 0;
        app->Tree().Add({number, above, number, number, type, name});
    }
    template <class T = TFRMSQLGeneric>
    T& Open(int node) {
        return *ObjectCast<T>(app->ObreComponent(node, Application()));
    }

    bool Locate(TCustomForm& form, const AnsiString& field, const Variant& value, bool refresh = false) {
        TLocateStruct wanted{field, value, true, refresh, true};
        const intptr_t answer =
            SendMessage(form.Handle(), VYN_MESSAGE_LOCATE, VynLocateWParam, reinterpret_cast<intptr_t>(&wanted));
        EXPECT_TRUE(answer == VynAnswerYes || answer == VynAnswerNo);
        return answer == VynAnswerYes;
    }
    intptr_t Request(TCustomForm& form, intptr_t request, TParametres& values) {
        return SendMessage(form.Handle(), VYN_MESSAGE_TPARAMETRESLIST, request, reinterpret_cast<intptr_t>(&values));
    }
    // A value of the record that answers (UTF-8), "none" when there is no such value.
    std::string ValueOf(TCustomForm& form, const AnsiString& name) {
        TParametres values(nullptr);
        EXPECT_EQ(Request(form, VynParamsRead, values), VynAnswerYes);
        if (!values.ParamExists(name)) return "none";
        const Variant value = values.GetParametreValue(name);
        return value.IsNull() ? "null" : AnsiToUtf8(value.AsString());
    }
    // What a locate finds, as its customer's number.
    std::string Found(TCustomForm& form, const AnsiString& field, const Variant& value) {
        return Locate(form, field, value) ? ValueOf(form, "id") : "";
    }

    // Shows the search screen of a form; what the user does runs while it is shown.
    bool Search(TCustomForm& form, const AnsiString& text, bool typed, std::function<void(TFRMCerca&)> user,
                const AnsiString& field = "nom") {
        WindowHandle later([&](TMessage&) {
            TFRMCerca* shown = SearchScreen();
            ASSERT_NE(shown, nullptr);
            user(*shown);
        });
        PostMessage(later.Handle(), WM_USER, 0, 0);
        TLocateStruct wanted{field, Variant(text), typed, false, true};
        return SendMessage(form.Handle(), VYN_MESSAGE_SHOWMODALSEARCH, VynLocateWParam,
                           reinterpret_cast<intptr_t>(&wanted)) == VynAnswerYes;
    }
    static TFRMCerca* SearchScreen() {
        for (int i = Application()->ComponentCount(); i-- > 0;)
            if (auto* form = ObjectCast<TFRMCerca>(Application()->Components(i))) return form;
        return nullptr;
    }
    template <class T>
    static T& Part(TComponent& form, const AnsiString& name) {
        T* found = ObjectCast<T>(form.FindComponent(name));
        if (!found) throw Exception("there is no " + name);
        return *found;
    }
    static TDataSet& DataOf(TComponent& form) { return Part<TDataSet>(form, "Consulta"); }

    TDataModule data{nullptr};
    TADOConnection* connection = nullptr;
    std::unique_ptr<TVynApp> app;
    std::vector<std::string> said;
    ManualTickClock clock{1000};
};

}  // namespace vyn
