// The index is an open-addressing table of the first node of each name, at most half full.
#include "list/list_index.hh"

#include <stdlib.h>

namespace {

constexpr size_t walked_nodes = 8;  // a walk over so few is no slower
constexpr size_t first_capacity = 64;
constexpr uint32_t prime = 16777619u;

}  // namespace

// FNV-1a; the end of a text counts, so that "ab" "c" is not "a" "bc".
uint32_t hash_text(const char *text, size_t limit, uint32_t hash) {
    for (size_t i = 0; i < limit && text[i] != '\0'; i++) {
        hash = (hash ^ static_cast<unsigned char>(text[i])) * prime;
    }
    return (hash ^ 0xFFu) * prime;
}

const cmpnt_list_head *first_of_name(const cmpnt_list_head *list, const ListKey &key,
                                     const void *name) {
    for (const cmpnt_list_head *link = list->next; link != list; link = link->next) {
        if (key.is_same(key.name_of(link), name)) {
            return link;
        }
    }
    return nullptr;
}

ListIndex::ListIndex(const cmpnt_list_head *list, const ListKey &key) : list_(list), key_(key) {
    for (const cmpnt_list_head *link = list->next; link != list; link = link->next) {
        add(link);
    }
}

ListIndex::~ListIndex() { free(slots_); }

const cmpnt_list_head *ListIndex::find(const void *name) const {
    return slots_ == nullptr ? first_of_name(list_, key_, name)
                             : slot_of(key_.hash(name), name).link;
}

void ListIndex::add(const cmpnt_list_head *link) {
    nodes_++;
    if (nodes_ <= walked_nodes) {
        return;
    }
    if (nodes_ == walked_nodes + 1) {
        for (const cmpnt_list_head *walked = list_->next; walked != link; walked = walked->next) {
            place(walked);
        }
    }
    place(link);
}

// The first of several nodes of a name keeps the slot.
void ListIndex::place(const cmpnt_list_head *link) {
    if (walks_ || (2 * names_ == capacity_ && !grow())) {
        return;
    }
    const void *name = key_.name_of(link);
    const uint32_t hash = key_.hash(name);
    Slot &slot = slot_of(hash, name);
    if (slot.link == nullptr) {
        slot = {link, hash};
        names_++;
    }
}

// An index that cannot grow would have to forget nodes; the list itself never does.
bool ListIndex::grow() {
    const size_t old_capacity = capacity_;
    Slot *const old_slots = slots_;
    capacity_ = old_capacity == 0 ? first_capacity : 2 * old_capacity;
    slots_ = static_cast<Slot *>(calloc(capacity_, sizeof(Slot)));
    walks_ = slots_ == nullptr;
    for (size_t i = 0; !walks_ && i < old_capacity; i++) {
        if (old_slots[i].link != nullptr) {
            probe(old_slots[i].hash, [](const Slot &) { return false; }) = old_slots[i];
        }
    }
    free(old_slots);
    return !walks_;
}

// The slot of the name, or the free one where it belongs.
ListIndex::Slot &ListIndex::slot_of(uint32_t hash, const void *name) const {
    return probe(hash, [&](const Slot &slot) {
        return slot.hash == hash && key_.is_same(key_.name_of(slot.link), name);
    });
}

// From the hash's own slot on, the first that is wanted or free.
template <class IsWanted>
ListIndex::Slot &ListIndex::probe(uint32_t hash, IsWanted is_wanted) const {
    size_t slot = hash & (capacity_ - 1);
    while (slots_[slot].link != nullptr && !is_wanted(slots_[slot])) {
        slot = (slot + 1) & (capacity_ - 1);
    }
    return slots_[slot];
}
