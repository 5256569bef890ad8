// Criteria of a hot-patch lookup: conditions that a record is matched against, and wildcards that
// are filled in, or packed, from a record that matched.
#ifndef CMPNT_HOTPATCH_CRITERIA_HH
#define CMPNT_HOTPATCH_CRITERIA_HH

#include "libcmpnt_db.h"

// A criteria text and, once it was parsed, its items. The text stays the caller's.
struct HotpatchCriteria {
    static constexpr int32_t item_limit = 32;

    explicit HotpatchCriteria(const char *criteria) : text(criteria) {}
    HotpatchCriteria(const HotpatchCriteria &) = delete;
    HotpatchCriteria &operator=(const HotpatchCriteria &) = delete;
    ~HotpatchCriteria() {
        cmpnt_recycle_pointer_array(match_keys, item_limit);
        cmpnt_recycle_pointer_array(match_values, item_limit);
        cmpnt_recycle_pointer_array(pack_keys, item_limit);
    }

    const char *text;
    bool is_parsed = false;
    int32_t match_count = 0;
    int32_t pack_count = 0;
    char *match_keys[item_limit] = {};
    char *match_values[item_limit] = {};
    char *pack_keys[item_limit] = {};
};

// 0, or -1 for a text that is none of criteria.
int32_t cmpnt_parse_hotpatch_match(HotpatchCriteria *criteria);

enum HotpatchMatch : int32_t {
    hotpatch_matches = 1,
    hotpatch_differs = 0,
    hotpatch_no_condition = -1,
    hotpatch_unknown_key = -4
};

HotpatchMatch cmpnt_equal_hotpatch_match(const cmpnt_upgrade_value &record,
                                         const HotpatchCriteria &criteria);

// The text filled in, on the heap; null for a failure.
char *cmpnt_pack_hotpatch_match(const cmpnt_upgrade_value &record,
                                const HotpatchCriteria &criteria);

#endif
