#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/text/ansi_string.h"

namespace vyn {

// A table from names to numbers; names compare without regard to ASCII case, as identifiers do everywhere here.
// The first number given for a name stays; look-ups take constant time and allocate nothing.
class NameIndex {
  public:
    static constexpr uint32_t NotFound = UINT32_MAX;

    // Keeps the number under the name; false (and nothing changes) when the name is there already.
    bool Insert(std::string_view name, uint32_t number);
    uint32_t Find(std::string_view name) const;
    bool Erase(std::string_view name);
    // Makes room for so many names.
    void Reserve(size_t count) {
        if (count * 2 > slots_.size()) Rehash(count * 2);
    }
    void Clear();
    size_t Count() const { return count_; }

  private:
    enum class SlotState : uint8_t { Free, Used, Erased };
    struct Slot {
        AnsiString name;
        uint32_t hash = 0;
        uint32_t number = 0;
        SlotState state = SlotState::Free;
    };
    size_t Locate(std::string_view name, uint32_t hash) const;
    void Rehash(size_t size);

    std::vector<Slot> slots_;
    size_t count_ = 0;
    size_t occupied_ = 0;  // used and erased slots
};

}  // namespace vyn
