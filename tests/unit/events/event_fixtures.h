#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "events/Ueventsvyn.h"
#include "package/package.h"
#include "platform/access/ado.h"
#include "platform/controls/buttons.h"
#include "platform/controls/edits.h"
#include "platform/controls/forms.h"
#include "platform/data/data_set.h"
#include "platform/objects/class_info.h"
#include "platform/text/format_settings.h"
#include "providers/sqlite/connection.h"
#include "query/Uquerysql.h"
#include "support/errors.h"

namespace event_fixtures {

using namespace vyn;

// A form with an edit, a check box, rules, and a table of an embedded database.
class EventTest : public testing::Test {
  protected:
    void SetUp() override {
        InitializePackage();
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
        RegisterSqliteProvider();
        form = std::make_unique<TForm>(nullptr);
        form->SetName("Orders");
        form->SetCaption("All orders");
        edit = Make<TEdit>("Amount");
        check = Make<TCheckBox>("Paid");
        events = Make<TEventsVyn>("Rules");
        own = std::make_unique<TParametres>(nullptr);
        events->SetParametresList(own.get());
    }
    void TearDown() override {
        form.reset();
        own.reset();
        FormatSettings() = before_;
        FinalizePackage();
    }
    template <class T>
    T* Make(const AnsiString& name) {
        T* made = new T(form.get());
        made->SetName(name);
        if constexpr (std::is_base_of_v<TControl, T>) made->SetParent(form.get());
        return made;
    }
    // An open query over a table of one row: Code 7, Name 'Rosa', Price 2.5.
    TADOQuery* OpenLines(const AnsiString& name = "Lines") {
        auto* connection = Make<TADOConnection>(name + "Connection");
        connection->SetConnectionString("Provider=SQLite;Data Source=:memory:");
        connection->Execute(
            "CREATE TABLE lines (Code INTEGER PRIMARY KEY, Name VARCHAR(20), Price FLOAT);"
            "INSERT INTO lines VALUES (7, 'Rosa', 2.5)");
        auto* query = Make<TADOQuery>(name);
        query->SetConnection(connection);
        query->SQL()->Add("SELECT Code, Name, Price FROM lines");
        query->Open();
        return query;
    }
    void Rule(const AnsiString& name, TLlistaCodiEvents lines) { events->Add({name, std::move(lines)}); }
    Variant Source(TTipusDadaCodi type, const AnsiString& text) {
        Variant value;
        events->CapturaValorOrigen(nullptr, {type, text}, value);
        return value;
    }
    AnsiString SourceError(TTipusDadaCodi type, const AnsiString& text) {
        return MessageOf([&] { Source(type, text); });
    }
    void Put(TTipusDadaCodi type, const AnsiString& text, const Variant& value) {
        events->ExecutaCodiDesti(nullptr, {type, text}, value);
    }
    AnsiString PutError(TTipusDadaCodi type, const AnsiString& text, const Variant& value = 1) {
        return MessageOf([&] { Put(type, text, value); });
    }

    std::unique_ptr<TForm> form;
    std::unique_ptr<TParametres> own;
    TEdit* edit = nullptr;
    TCheckBox* check = nullptr;
    TEventsVyn* events = nullptr;

  private:
    TFormatSettings before_;
};

}  // namespace event_fixtures
