// Open addressing, at most half full.
#include "verify/name_table.hh"

#include <stdlib.h>
#include <string.h>

namespace {

constexpr size_t first_capacity = 64;
constexpr uint32_t offset_basis = 2166136261u;
constexpr uint32_t prime = 16777619u;

// FNV-1a
uint32_t hash_of(const char *name) {
    uint32_t hash = offset_basis;
    for (; *name != '\0'; name++) {
        hash = (hash ^ static_cast<unsigned char>(*name)) * prime;
    }
    return hash;
}

}  // namespace

NameTable::~NameTable() { free(slots_); }

const void *NameTable::find(const char *name) const {
    return capacity_ == 0 ? nullptr : slot_of(hash_of(name), name).thing;
}

bool NameTable::add(const char *name, const void *thing) {
    if (2 * (names_ + 1) > capacity_ && !grow()) {
        return false;
    }
    const uint32_t hash = hash_of(name);
    Slot &slot = slot_of(hash, name);
    if (slot.name == nullptr) {
        slot = {name, thing, hash};
        names_++;
    }
    return true;
}

bool NameTable::grow() {
    const size_t capacity = capacity_ == 0 ? first_capacity : 2 * capacity_;
    Slot *slots = static_cast<Slot *>(calloc(capacity, sizeof(Slot)));
    if (slots == nullptr) {
        return false;
    }
    for (size_t i = 0; i < capacity_; i++) {
        if (slots_[i].name != nullptr) {
            size_t slot = slots_[i].hash & (capacity - 1);
            while (slots[slot].name != nullptr) {
                slot = (slot + 1) & (capacity - 1);
            }
            slots[slot] = slots_[i];
        }
    }
    free(slots_);
    slots_ = slots;
    capacity_ = capacity;
    return true;
}

// The slot of the name, or the free one where it belongs.
NameTable::Slot &NameTable::slot_of(uint32_t hash, const char *name) const {
    size_t slot = hash & (capacity_ - 1);
    while (slots_[slot].name != nullptr &&
           (slots_[slot].hash != hash || strcmp(slots_[slot].name, name) != 0)) {
        slot = (slot + 1) & (capacity_ - 1);
    }
    return slots_[slot];
}
