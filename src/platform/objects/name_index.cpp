#include "platform/objects/name_index.h"

#include "platform/text/compare.h"

namespace vyn {

namespace {

constexpr size_t kNoSlot = SIZE_MAX;
constexpr size_t kFirstTableSize = 16;

uint32_t FoldedHash(std::string_view name) {
    // FNV-1a over the bytes with ASCII letters folded to lower case.
    uint32_t hash = 2166136261u;
    for (unsigned char c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<unsigned char>(c | 0x20);
        hash = (hash ^ c) * 16777619u;
    }
    return hash;
}

}  // namespace

size_t NameIndex::Locate(std::string_view name, uint32_t hash) const {
    if (slots_.empty()) return kNoSlot;
    const size_t mask = slots_.size() - 1;
    for (size_t at = hash & mask;; at = (at + 1) & mask) {
        const Slot& slot = slots_[at];
        if (slot.state == SlotState::Free) return kNoSlot;
        if (slot.state == SlotState::Used && slot.hash == hash && SameText(slot.name, name)) return at;
    }
}

uint32_t NameIndex::Find(std::string_view name) const {
    const size_t at = Locate(name, FoldedHash(name));
    return at == kNoSlot ? NotFound : slots_[at].number;
}

bool NameIndex::Insert(std::string_view name, uint32_t number) {
    const uint32_t hash = FoldedHash(name);
    if (Locate(name, hash) != kNoSlot) return false;
    if ((occupied_ + 1) * 2 > slots_.size()) Rehash(count_ * 4 < kFirstTableSize ? kFirstTableSize : count_ * 4);
    const size_t mask = slots_.size() - 1;
    size_t at = hash & mask;
    while (slots_[at].state != SlotState::Free) at = (at + 1) & mask;
    slots_[at] = Slot{AnsiString(name), hash, number, SlotState::Used};
    ++count_;
    ++occupied_;
    return true;
}

bool NameIndex::Erase(std::string_view name) {
    const size_t at = Locate(name, FoldedHash(name));
    if (at == kNoSlot) return false;
    slots_[at].state = SlotState::Erased;
    slots_[at].name.clear();
    --count_;
    return true;
}

void NameIndex::Clear() {
    slots_.clear();
    count_ = occupied_ = 0;
}

void NameIndex::Rehash(size_t size) {
    size_t capacity = kFirstTableSize;
    while (capacity < size) capacity *= 2;
    std::vector<Slot> old = std::move(slots_);
    slots_ = std::vector<Slot>(capacity);
    const size_t mask = capacity - 1;
    for (Slot& slot : old) {
        if (slot.state != SlotState::Used) continue;
        size_t at = slot.hash & mask;
        while (slots_[at].state == SlotState::Used) at = (at + 1) & mask;
        slots_[at] = std::move(slot);
    }
    occupied_ = count_;
}

}  // namespace vyn
