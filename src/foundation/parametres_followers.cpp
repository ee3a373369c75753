#include "foundation/parametres_followers.h"

#include <algorithm>

namespace vyn {

namespace followers_detail {

// Where the first follower at or behind a place stands.
template <class Places>
auto Position(Places& places, uint64_t place) {
    return std::lower_bound(places.begin(), places.end(), place,
                            [](const auto& entry, uint64_t wanted) { return entry.first < wanted; });
}

}  // namespace followers_detail

void NamedFollowers::Add(const AnsiString& name, uint64_t place, TParametresChild* follower) {
    Places& places = followers_[name];
    const auto at = followers_detail::Position(places, place);
    if (at == places.end() || at->first != place) places.insert(at, {place, follower});
}

void NamedFollowers::Remove(const AnsiString& name, uint64_t place) {
    const auto found = followers_.find(name);
    if (found == followers_.end()) return;
    const auto at = followers_detail::Position(found->second, place);
    if (at != found->second.end() && at->first == place) found->second.erase(at);
    if (found->second.empty()) followers_.erase(found);
}

std::pair<uint64_t, TParametresChild*> NamedFollowers::After(const AnsiString& name, uint64_t place) const {
    const auto found = followers_.find(name);
    if (found == followers_.end()) return {0, nullptr};
    const auto at = followers_detail::Position(found->second, place + 1);
    return at == found->second.end() ? std::pair<uint64_t, TParametresChild*>(0, nullptr) : *at;
}

}  // namespace vyn
