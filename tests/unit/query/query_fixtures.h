#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "platform/text/exceptions.h"
#include "platform/text/format_settings.h"
#include "query/Uquerysql.h"
#include "support/errors.h"

namespace query_fixtures {

using namespace vyn;

// The mark around parameter functions.
inline const AnsiString M(1, CT_ParametreMark);

// A query named Q with the global parameters and a database, none of which touches an engine.
class QueryTest : public testing::Test {
  protected:
    void SetUp() override {
        before_ = FormatSettings();
        FormatSettings() = InvariantFormatSettings();
        InitializeParametres();
        database = std::make_unique<TDataBaseVyn>(nullptr);
        query = std::make_unique<TQuerySQL>(nullptr);
        query->SetName("Q");
    }
    void TearDown() override {
        query.reset();
        database.reset();
        FinalizeParametres();
        FormatSettings() = before_;
    }
    void Fields(std::initializer_list<std::pair<AnsiString, AnsiString>> namesAndExpressions) {
        for (const auto& [name, expression] : namesAndExpressions) {
            TFieldsSQLRec field;
            field.FieldName = name;
            field.FieldSQL = expression;
            query->Afegeix(field);
        }
    }
    // The composed lines, each followed by "|".
    AnsiString Lines(TQuerySQL& of) {
        TStringList lines;
        of.GenerateSql(&lines);
        AnsiString text;
        for (int i = 0; i < lines.Count(); ++i) text += lines.At(i) + "|";
        return text;
    }
    AnsiString Lines() { return Lines(*query); }
    // A text with its functions replaced.
    AnsiString Applied(std::initializer_list<AnsiString> lines) {
        TStringList list(lines);
        query->AplicaParametresSQL(&list);
        AnsiString text;
        for (int i = 0; i < list.Count(); ++i) text += (i > 0 ? "|" : "") + list.At(i);
        return text;
    }

    std::unique_ptr<TDataBaseVyn> database;
    std::unique_ptr<TQuerySQL> query;

  private:
    TFormatSettings before_;
};

}  // namespace query_fixtures
