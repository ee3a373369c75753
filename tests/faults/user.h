#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "platform/access/ado.h"
#include "support/errors.h"

namespace faults {

using namespace vyn;

// Whether a sentence stands in a message.
testing::AssertionResult Says(const AnsiString& message, const AnsiString& sentence);

// Somebody who types into the table "clients" (id INTEGER, the key; nom; nota).
class User {
  public:
    explicit User(const AnsiString& where, int commandTimeout = TADOConnection::kDefaultCommandTimeout);

    // Changes the current record, or begins another, without posting it.
    void Type(const AnsiString& nota);
    void TypeNew(int id, const AnsiString& nota);
    // The error's message, or "no error".
    AnsiString Post();
    // That what was typed is still there to be posted.
    void ExpectTyped(const AnsiString& nota, TDataSetState state = dsEdit);
    // The first value that a statement gives.
    AnsiString Value(const AnsiString& sql);

    TADOConnection connection{nullptr};
    TADOTable table{nullptr};
};

// Makes "clients" with that many records: 1, "nom 1", "nota 1" and so on.
void MakeClients(const AnsiString& where, int records);

// Runs it in another process, which ends with 0 when it returned; gives how that process ended (waitpid's status).
int InAnotherProcess(const std::function<void()>& action);
// The same as a user who may not do everything, where the test runs as one who may.
int AsOrdinaryUser(const std::function<void()>& action);

}  // namespace faults
