// The index is an open-addressing table of the first node of each name, at most half full.
#include "list/name_index.hh"

#include <stdlib.h>
#include <string.h>

#include "list/list.hh"

namespace {

constexpr size_t name_length = CMPNT_PATCH_NAME_SIZE - 1;
constexpr size_t walked_nodes = 8;  // a walk over so few is no slower
constexpr size_t first_capacity = 64;

bool same_name(const char *a, const char *b) { return strncmp(a, b, name_length) == 0; }

bool same_package(const cmpnt_upgrade_value &a, const cmpnt_upgrade_value &b) {
    return same_name(a.pkg_name, b.pkg_name);
}

bool same_patch(const cmpnt_upgrade_value &a, const cmpnt_upgrade_value &b) {
    return same_name(a.patch_name, b.patch_name);
}

bool is_alike(NameKey key, const cmpnt_upgrade_value &a, const cmpnt_upgrade_value &b) {
    switch (key) {
        case NameKey::package:
            return same_package(a, b);
        case NameKey::patch:
            return same_patch(a, b);
        case NameKey::smu_id_and_patch:
            return a.card_id == b.card_id && same_patch(a, b);
        default:
            return same_package(a, b) && same_patch(a, b);
    }
}

constexpr uint32_t offset_basis = 2166136261u;
constexpr uint32_t prime = 16777619u;

// FNV-1a; the end of a name counts, so that "ab" "c" is not "a" "bc".
uint32_t hash_name(uint32_t hash, const char *name) {
    for (size_t i = 0; i < name_length && name[i] != '\0'; i++) {
        hash = (hash ^ static_cast<unsigned char>(name[i])) * prime;
    }
    return (hash ^ 0xFFu) * prime;
}

uint32_t hash_of(NameKey key, const cmpnt_upgrade_value &record) {
    switch (key) {
        case NameKey::package:
            return hash_name(offset_basis, record.pkg_name);
        case NameKey::patch:
            return hash_name(offset_basis, record.patch_name);
        case NameKey::smu_id_and_patch:
            return hash_name(offset_basis ^ static_cast<uint32_t>(record.card_id),
                             record.patch_name);
        default:
            return hash_name(hash_name(offset_basis, record.pkg_name), record.patch_name);
    }
}

}  // namespace

const cmpnt_upgrade_node *first_node_like(const cmpnt_list_head *list, NameKey key,
                                          const cmpnt_upgrade_value &record) {
    for (const cmpnt_list_head *link = list->next; link != list; link = link->next) {
        const cmpnt_upgrade_node *node = upgrade_node_of(link);
        if (is_alike(key, node->value, record)) {
            return node;
        }
    }
    return nullptr;
}

NameIndex::NameIndex(const cmpnt_list_head *list, NameKey key) : list_(list), key_(key) {
    for (const cmpnt_list_head *link = list->next; link != list; link = link->next) {
        nodes_++;
    }
    if (nodes_ > walked_nodes) {
        build();
    }
}

NameIndex::~NameIndex() { free(slots_); }

const cmpnt_upgrade_node *NameIndex::find(const cmpnt_upgrade_value &record) const {
    if (capacity_ == 0) {
        return first_node_like(list_, key_, record);
    }
    return slots_[slot_of(hash_of(key_, record), record)].node;
}

void NameIndex::add(const cmpnt_upgrade_node *node) {
    nodes_++;
    if (walks_ || nodes_ <= walked_nodes) {
        return;
    }
    if (capacity_ == 0) {
        build();
    } else if (2 * nodes_ <= capacity_ || resize(2 * capacity_)) {
        place(node);
    } else {
        give_up();
    }
}

void NameIndex::build() {
    size_t capacity = first_capacity;
    while (capacity < 2 * nodes_) {
        capacity *= 2;
    }
    if (!resize(capacity)) {
        give_up();
        return;
    }
    for (const cmpnt_list_head *link = list_->next; link != list_; link = link->next) {
        place(upgrade_node_of(link));
    }
}

// An index that cannot grow would have to forget nodes; the list itself never does.
void NameIndex::give_up() {
    free(slots_);
    slots_ = nullptr;
    capacity_ = 0;
    walks_ = true;
}

bool NameIndex::resize(size_t capacity) {
    Slot *slots = static_cast<Slot *>(calloc(capacity, sizeof(Slot)));
    if (slots == nullptr) {
        return false;
    }
    for (size_t i = 0; i < capacity_; i++) {
        if (slots_[i].node != nullptr) {
            size_t slot = slots_[i].hash & (capacity - 1);
            while (slots[slot].node != nullptr) {
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

// The slot of the record's duplicates, or the free one where they belong.
size_t NameIndex::slot_of(uint32_t hash, const cmpnt_upgrade_value &record) const {
    size_t slot = hash & (capacity_ - 1);
    while (slots_[slot].node != nullptr &&
           (slots_[slot].hash != hash || !is_alike(key_, slots_[slot].node->value, record))) {
        slot = (slot + 1) & (capacity_ - 1);
    }
    return slot;
}

// The first of several duplicates keeps the slot.
void NameIndex::place(const cmpnt_upgrade_node *node) {
    const uint32_t hash = hash_of(key_, node->value);
    Slot &slot = slots_[slot_of(hash, node->value)];
    if (slot.node == nullptr) {
        slot = {node, hash};
    }
}
