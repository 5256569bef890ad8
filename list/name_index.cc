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

bool has_names(const cmpnt_upgrade_value &value, NameKey key, const char *patch_name,
               const char *pkg_name) {
    return same_name(value.pkg_name, pkg_name) &&
           (key == NameKey::package || same_name(value.patch_name, patch_name));
}

// FNV-1a; the end of a name counts, so that "ab" "c" is not "a" "bc".
uint32_t hash_name(uint32_t hash, const char *name) {
    constexpr uint32_t prime = 16777619u;
    for (size_t i = 0; i < name_length && name[i] != '\0'; i++) {
        hash = (hash ^ static_cast<unsigned char>(name[i])) * prime;
    }
    return (hash ^ 0xFFu) * prime;
}

uint32_t hash_names(NameKey key, const char *patch_name, const char *pkg_name) {
    constexpr uint32_t offset_basis = 2166136261u;
    const uint32_t hash = hash_name(offset_basis, pkg_name);
    return key == NameKey::package ? hash : hash_name(hash, patch_name);
}

}  // namespace

const cmpnt_upgrade_node *first_node_with_names(const cmpnt_list_head *list, NameKey key,
                                                const char *patch_name, const char *pkg_name) {
    for (const cmpnt_list_head *link = list->next; link != list; link = link->next) {
        const cmpnt_upgrade_node *node = upgrade_node_of(link);
        if (has_names(node->value, key, patch_name, pkg_name)) {
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

const cmpnt_upgrade_node *NameIndex::find(const char *patch_name, const char *pkg_name) const {
    if (capacity_ == 0) {
        return first_node_with_names(list_, key_, patch_name, pkg_name);
    }
    const uint32_t hash = hash_names(key_, patch_name, pkg_name);
    return slots_[slot_of(hash, patch_name, pkg_name)].node;
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

// The slot of these names, or the free one where they belong.
size_t NameIndex::slot_of(uint32_t hash, const char *patch_name, const char *pkg_name) const {
    size_t slot = hash & (capacity_ - 1);
    while (slots_[slot].node != nullptr &&
           (slots_[slot].hash != hash ||
            !has_names(slots_[slot].node->value, key_, patch_name, pkg_name))) {
        slot = (slot + 1) & (capacity_ - 1);
    }
    return slot;
}

// The first node of a name keeps its slot.
void NameIndex::place(const cmpnt_upgrade_node *node) {
    const cmpnt_upgrade_value &value = node->value;
    const uint32_t hash = hash_names(key_, value.patch_name, value.pkg_name);
    Slot &slot = slots_[slot_of(hash, value.patch_name, value.pkg_name)];
    if (slot.node == nullptr) {
        slot = {node, hash};
    }
}
