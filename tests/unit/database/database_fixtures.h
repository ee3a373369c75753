#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "database/Uvyndb.h"
#include "platform/streams/stream.h"
#include "platform/text/exceptions.h"
#include "support/errors.h"

namespace database_fixtures {

using namespace vyn;

// A dataset without rows that remembers its statement.
class RecordingDataSet : public TDataSet {
  public:
    using TDataSet::TDataSet;
    AnsiString Statement;
    bool ParamCheck = true;

  protected:
    std::vector<FieldDefinition> InternalOpen() override { return {}; }
    bool InternalFetch(RowStore&, int64_t) override { return false; }
    void InternalClose() override {}
};

// A database that writes down what the base class asks of it.
class RecordingDatabase : public TDataBaseVyn {
  public:
    RecordingDatabase() : TDataBaseVyn(nullptr) {}
    AnsiString Log;
    AnsiString Tables = "Customers,Orders";
    bool Fails = false;

    TDataSet* DoGetTSQLDataSet(const AnsiString& SQL, TComponent* owner, bool readOnly) override {
        Log += "query(" + SQL + (readOnly ? "|read only) " : "|) ");
        return new RecordingDataSet(owner);
    }
    TDataSet* DoGetTDataSet(const AnsiString& tableName, TComponent* owner, bool readOnly) override {
        Log += "table(" + tableName + (readOnly ? "|read only) " : "|) ");
        return tableName.empty() ? nullptr : new RecordingDataSet(owner);
    }
    void DoExecuteSQL(TDataSet* dataSet) override {
        if (Fails) throw EDatabaseError("refused");
        Log += "execute(" + static_cast<RecordingDataSet*>(dataSet)->Statement + ") ";
    }
    void DoStartTransaction() override { Step("start "); }
    void DoCommitTransaction() override { Step("commit "); }
    void DoRollbackTransaction() override { Step("rollback "); }
    void SetSQLToDataSet(const AnsiString& SQL, TDataSet* dataSet) override {
        if (Fails) throw EDatabaseError("refused");
        static_cast<RecordingDataSet*>(dataSet)->Statement = SQL;
    }
    void GetTableNames(const AnsiString& pattern, bool flag, bool systemTables, TStrings* list) override {
        Log += "tables(" + pattern + (flag ? "|1" : "|0") + (systemTables ? "|1) " : "|0) ");
        list->SetCommaText(Tables);
    }
    bool DataSetAllowParamCheck(TDataSet* dataSet) override {
        return static_cast<RecordingDataSet*>(dataSet)->ParamCheck;
    }

  private:
    void Step(const char* name) {
        if (Fails) throw EDatabaseError("refused");
        Log += name;
    }
};

}  // namespace database_fixtures
