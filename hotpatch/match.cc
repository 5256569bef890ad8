// Whether a record satisfies the conditions of criteria.
#include <stdlib.h>
#include <string.h>

#include "common/log.hh"
#include "hotpatch/criteria.hh"
#include "hotpatch/key.hh"
#include "list/smu_kind.hh"

namespace {

constexpr int base = 10;

bool holds(const HotpatchKey &key, const cmpnt_upgrade_value &record, const char *value) {
    if (key.kind == HotpatchKey::hot_patch_bit) {
        const long bit = is_smu_kind(record, smu_hot_patch) ? 1 : 0;
        return strtol(value, nullptr, base) == bit;
    }
    return strcmp(key.text_of(record), value) == 0;
}

}  // namespace

HotpatchMatch cmpnt_equal_hotpatch_match(const cmpnt_upgrade_value &record,
                                         const HotpatchCriteria &criteria) {
    if (criteria.match_count == 0) {
        CMPNT_LOG(log_error, "param is null.\n");
        return hotpatch_no_condition;
    }
    for (int32_t i = 0; i < criteria.match_count; i++) {
        const HotpatchKey *key = find_hotpatch_key(criteria.match_keys[i]);
        if (key == nullptr) {
            return hotpatch_unknown_key;
        }
        if (!holds(*key, record, criteria.match_values[i])) {
            return hotpatch_differs;
        }
    }
    return hotpatch_matches;
}
