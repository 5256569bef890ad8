// Filling the wildcards of criteria with what a record holds.
#include <stdio.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "hotpatch/criteria.hh"
#include "hotpatch/key.hh"
#include "list/smu_kind.hh"

namespace {

constexpr char packer[] = "cmpnt_pack_hotpatch_match";  // whose steps these are
constexpr size_t pack_size = 512;                       // of one item, before and after
constexpr size_t room_to_grow = 3584;
constexpr size_t wildcard_length = 2;  // ":*" behind the key

// Of the criteria filled in, with what they may grow by; 0 when that is more than a text may have.
int32_t filled_size(const char *criteria) {
    const size_t length = strlen(criteria);
    return length > INT32_MAX - room_to_grow ? 0 : static_cast<int32_t>(length + room_to_grow);
}

void print_item(char (&item)[pack_size], const HotpatchKey &key,
                const cmpnt_upgrade_value &record) {
    if (key.kind == HotpatchKey::hot_patch_bit) {
        const int bit = is_smu_kind(record, smu_hot_patch) ? 1 : 0;
        snprintf(item, sizeof(item), "%s%s%d", key.name, ":", bit);
        return;
    }
    snprintf(item, sizeof(item), "%s%s%s", key.name, ":", key.text_of(record));
}

// The key's first place in the criteria, be it that of a condition. Null when it is not there.
const char *find_place(const char *criteria, const HotpatchKey &key) {
    const char *place = strstr(criteria, key.name);
    if (place != nullptr) {
        return place;
    }
    if (key.kind == HotpatchKey::hot_patch_bit) {
        CMPNT_LOG_AS(log_error, packer, "%s strstr fail.\n", key.name);
    } else {
        CMPNT_LOG_AS(log_error, packer, "%s strstr fail(%s).\n", key.name, criteria);
    }
    return nullptr;
}

bool fill(char *filled, int32_t size, const char *criteria, const char *name,
          const cmpnt_upgrade_value &record) {
    const HotpatchKey *key = find_hotpatch_key(name);
    if (key == nullptr || !key->can_be_packed) {
        CMPNT_LOG_AS(log_error, packer, "pack criteria do not match %s\n", name);
        return false;
    }
    const char *place = find_place(criteria, *key);
    if (place == nullptr) {
        return false;
    }
    char wildcard[pack_size];
    snprintf(wildcard, sizeof(wildcard), "%.*s",
             static_cast<int>(strlen(key->name) + wildcard_length), place);
    char item[pack_size];
    print_item(item, *key, record);
    if (cmpnt_replace(filled, size, wildcard, item) != 0) {
        CMPNT_LOG_AS(log_error, packer, "cmpnt_replace fail, str_rep(%s).\n", item);
        return false;
    }
    return true;
}

}  // namespace

char *cmpnt_pack_hotpatch_match(const cmpnt_upgrade_value &record,
                                const HotpatchCriteria &criteria) {
    if (criteria.pack_count == 0) {
        CMPNT_LOG(log_error, "param is null.\n");
        return nullptr;
    }
    const int32_t size = filled_size(criteria.text);
    HeapText filled(static_cast<char *>(cmpnt_malloc(static_cast<uint32_t>(size))));
    if (!filled) {
        CMPNT_LOG(log_error, "cmpnt_malloc fail.\n");
        return nullptr;
    }
    memcpy(filled.get(), criteria.text, strlen(criteria.text) + 1);
    for (int32_t i = 0; i < criteria.pack_count; i++) {
        if (!fill(filled.get(), size, criteria.text, criteria.pack_keys[i], record)) {
            return nullptr;
        }
    }
    return filled.release();
}
