#pragma once

#include <utility>

#include "platform/access/provider.h"

namespace vyn {

// A connection's last few statements, kept by their text, so that running them again prepares nothing.
class PreparedStatements {
  public:
    explicit PreparedStatements(ProviderConnection& connection) : connection_(connection) {}
    // Belongs to the list, which may let go of it when another is asked for. What it gives back are `columns`.
    ProviderStatement& Get(const AnsiString& sql, const std::vector<FieldDefinition>& columns = {}) {
        for (const auto& [text, statement] : statements_)
            if (text == sql) return *statement;
        if (statements_.size() >= kMost) statements_.erase(statements_.begin());
        statements_.emplace_back(sql, connection_.Prepare(sql));
        if (!columns.empty()) statements_.back().second->ExpectColumns(columns);
        return *statements_.back().second;
    }

  private:
    static constexpr size_t kMost = 8;
    ProviderConnection& connection_;
    std::vector<std::pair<AnsiString, std::unique_ptr<ProviderStatement>>> statements_;
};

}  // namespace vyn
