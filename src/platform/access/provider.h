#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "platform/access/connection_string.h"
#include "platform/data/row_store.h"
#include "platform/values/variant.h"

namespace vyn {

// What a database engine gives the access room. An engine stands in its own room below src/providers and is registered
// by its name; nothing else knows it. Errors are EDatabaseError with the engine's own reason. Main thread only.

// A statement that gives rows.
class ProviderStatement {
  public:
    virtual ~ProviderStatement() = default;
    virtual std::vector<FieldDefinition> Columns() = 0;
    // Binds the parameters by position; a statement can be run again.
    virtual void Bind(const std::vector<Variant>& parameters) = 0;
    // Appends up to `count` rows; false when there are no more.
    virtual bool Fetch(RowStore& rows, int64_t count) = 0;
};

class ProviderConnection {
  public:
    virtual ~ProviderConnection() = default;
    // Parameters stand as "?". Text is Windows-1252.
    virtual std::unique_ptr<ProviderStatement> Prepare(const AnsiString& sql) = 0;
    // A statement without rows, or several; gives the number of rows that changed.
    virtual int64_t Execute(const AnsiString& sql) = 0;
    virtual std::vector<AnsiString> TableNames() = 0;
    // A name as the engine quotes it.
    virtual AnsiString QuotedName(const AnsiString& name) const = 0;
};

using ProviderFactory = std::function<std::unique_ptr<ProviderConnection>(const ConnectionString& settings)>;

// Names compare without regard to case; registering again replaces.
void RegisterProvider(const AnsiString& name, ProviderFactory factory);
// Raises EDatabaseError, naming the providers that there are, when there is none of the name.
std::unique_ptr<ProviderConnection> OpenProvider(const ConnectionString& settings);

}  // namespace vyn
