#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/text/compare.h"

namespace vyn {

class TParametresChild;

// From each name to the followers that want to hear of it, in the order in which they began to follow their set, so
// that a change costs those whom it concerns and not all that there are. Names compare without regard to ASCII case.
class NamedFollowers {
  public:
    // Places are above 0 and grow with each follower.
    void Add(const AnsiString& name, uint64_t place, TParametresChild* follower);
    void Remove(const AnsiString& name, uint64_t place);
    bool Empty() const { return followers_.empty(); }
    // The first follower of the name behind a place, and its own place; or null.
    std::pair<uint64_t, TParametresChild*> After(const AnsiString& name, uint64_t place) const;

  private:
    using Places = std::vector<std::pair<uint64_t, TParametresChild*>>;
    std::unordered_map<AnsiString, Places, TextHash, TextEqual> followers_;
};

}  // namespace vyn
