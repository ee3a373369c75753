#pragma once

#include "controls/Uvyneditbox.h"
#include "platform/controls/buttons.h"
#include "platform/controls/db_controls.h"
#include "platform/controls/labels.h"
#include "platform/controls/shortcuts.h"
#include "platform/controls/status_bars.h"
#include "platform/streams/text_form.h"
#include "platform/system/application.h"
#include "platform/system/message_dialogs.h"
#include "programs/host/entry_form.h"
#include "programs/vyn/script_database.h"
#include "providers/postgresql/connection.h"
#include "providers/sqlite/connection.h"
#include "screens/modal.h"
#include "screens/screen.h"
#include "servers/postgresql_cluster.h"

namespace vyn::screens {

// One cluster for all tests of the process.
inline servers::PostgresqlCluster& Cluster() {
    static servers::PostgresqlCluster cluster;
    return cluster;
}

// The sample on one of the engines, and what its entry screens are asked.
class EntryTest : public ScreenTest, public testing::WithParamInterface<const char*> {
  protected:
    void Prepare(RunOptions& options) override {
        RegisterSqliteProvider();
        RegisterPostgresqlProvider();
        where_ =
            "Provider=SQLite;Data Source=" + testing::TempDir() + "vyn-entry-" + std::to_string(::getpid()) + ".db";
        if (GetParam() == std::string("PostgreSQL")) {
            where_ = Cluster().ConnectionString();
            TADOConnection connection(nullptr);
            connection.SetConnectionString(where_);
            connection.Execute("DROP SCHEMA public CASCADE; CREATE SCHEMA public");
        } else {
            RemoveFile();
        }
        FillDatabase(where_, VYN_SAMPLE "/database.sql");
        options.Database = AnsiToUtf8(where_);
        SetMessageDialogPort([this](const MessageDialogRequest& request) {
            asked_.push_back(AnsiToUtf8(request.Text));
            return answer_;
        });
    }
    void TearDown() override {
        ScreenTest::TearDown();
        SetMessageDialogPort(nullptr);
        RemoveFile();
    }
    static void RemoveFile() {
        for (const char* tail : {"", "-wal", "-shm"})
            std::filesystem::remove(testing::TempDir() + "vyn-entry-" + std::to_string(::getpid()) + ".db" + tail);
    }

    // What another user does.
    void Meanwhile(const AnsiString& sql) {
        TADOConnection other(nullptr);
        other.SetConnectionString(where_);
        other.Execute(sql);
    }
    // Rows, their values divided by bars (UTF-8).
    std::vector<std::string> RowsOf(const AnsiString& sql) {
        TADOConnection other(nullptr);
        other.SetConnectionString(where_);
        TADOQuery query(nullptr);
        query.SetConnection(&other);
        query.SQL()->SetText(sql);
        std::vector<std::string> rows;
        for (query.Open(); !query.Eof(); query.Next()) {
            AnsiString row;
            for (int i = 0; i < query.FieldCount(); ++i) row += (i > 0 ? "|" : "") + query.Fields(i)->AsString();
            rows.push_back(AnsiToUtf8(row));
        }
        return rows;
    }
    std::string Total() { return AnsiToUtf8(Part<TDBText>("Total").GetLabelText()); }
    // What a lookup shows when it has been looked up (UTF-8).
    std::string Looked(const AnsiString& name) {
        auto& box = Part<TVynEditBox>(name);
        for (int turn = 0; turn < 3; ++turn) {
            Application()->ProcessMessages();
            box.Link().WaitUntilThreadFinished();
        }
        return AnsiToUtf8(box.Text());
    }
    // Opens the search screen of a lookup; what the user does there runs while it is shown.
    void While(const AnsiString& name, const std::function<void(TCustomForm&)>& user) {
        Looked(name);
        InModalWindow there(user);
        uint16_t key = VK_F2;
        Part<TVynEditBox>(name).SetFocus();
        Part<TVynEditBox>(name).ProcessKeyDown(key, {});
        EXPECT_TRUE(there.Ran);
        Settle();
    }
    bool Enabled(const AnsiString& name) { return Part<TWinControl>(name).Enabled(); }
    AnsiString FieldText(const AnsiString& field) { return Part<TDataSet>("Consulta").FieldByName(field)->AsString(); }

    void TypeACustomer() {
        Type("Codi", "x00501");
        Type("Nom",
             "N\xFA\xF1"
             "ez & Fills");
        Type("Poblacio", "Olot");
        Type("Regio", "Garrotxa");
        Type("Telefon", "972000111");
        Type("Alta", "11/20/2026");
        Type("Credit", "1500.5");
        Type("Notes", "Paga tard");
    }
    void TypeALine(const AnsiString& article, const AnsiString& quantity) {
        Press("NovaLinia");
        EXPECT_EQ(Looked("Article"), "");
        Type("Article", article);
        Type("Quantitat", quantity);
        Press("Desar");
    }

    AnsiString where_;
    std::vector<std::string> asked_;
    TModalResult answer_ = mrYes;
};

}  // namespace vyn::screens
