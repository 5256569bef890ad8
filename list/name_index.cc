// What makes upgrade records duplicates.
#include "list/name_index.hh"

#include <string.h>

#include "list/list.hh"

namespace {

constexpr size_t name_length = CMPNT_PATCH_NAME_SIZE - 1;

bool is_same_name(const char *a, const char *b) { return strncmp(a, b, name_length) == 0; }

const void *record_of(const cmpnt_list_head *link) { return &upgrade_node_of(link)->value; }

const cmpnt_upgrade_value &record_at(const void *name) {
    return *static_cast<const cmpnt_upgrade_value *>(name);
}

// Records that are known by these of their fields.
template <bool package, bool patch, bool smu_id>
struct By {
    static uint32_t hash(const void *name) {
        const cmpnt_upgrade_value &record = record_at(name);
        uint32_t hash = smu_id ? hash_basis ^ static_cast<uint32_t>(record.card_id) : hash_basis;
        hash = package ? hash_text(record.pkg_name, name_length, hash) : hash;
        return patch ? hash_text(record.patch_name, name_length, hash) : hash;
    }

    static bool is_same(const void *one, const void *other) {
        const cmpnt_upgrade_value &a = record_at(one), &b = record_at(other);
        return (!smu_id || a.card_id == b.card_id) &&
               (!package || is_same_name(a.pkg_name, b.pkg_name)) &&
               (!patch || is_same_name(a.patch_name, b.patch_name));
    }

    static constexpr ListKey key = {record_of, hash, is_same};
};

const ListKey &list_key(NameKey key) {
    switch (key) {
        case NameKey::package:
            return By<true, false, false>::key;
        case NameKey::patch:
            return By<false, true, false>::key;
        case NameKey::smu_id_and_patch:
            return By<false, true, true>::key;
        default:
            return By<true, true, false>::key;
    }
}

}  // namespace

const cmpnt_upgrade_node *first_node_like(const cmpnt_list_head *list, NameKey key,
                                          const cmpnt_upgrade_value &record) {
    return node_or_null<cmpnt_upgrade_node>(first_of_name(list, list_key(key), &record));
}

NameIndex::NameIndex(const cmpnt_list_head *list, NameKey key) : index_(list, list_key(key)) {}

const cmpnt_upgrade_node *NameIndex::find(const cmpnt_upgrade_value &record) const {
    return node_or_null<cmpnt_upgrade_node>(index_.find(&record));
}
