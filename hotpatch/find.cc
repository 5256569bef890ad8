// The lookup of hot patches: each record that satisfies the criteria is told to the caller.
#include "common/guard.hh"
#include "common/log.hh"
#include "hotpatch/criteria.hh"
#include "hotpatch/record_load.hh"

namespace {

constexpr char record_step[] = "get_hotpatch_to_db";  // whose steps these are

int32_t tell(const char *filled, libcmpnt_db_find_callback callback) {
    CMPNT_LOG_AS(log_trace, record_step, "cmpnt_db_find (%s)\n", filled);
    const int32_t result = callback(filled);
    if (result != 0) {
        CMPNT_LOG_AS(log_error, record_step, "cmpnt_db_find fail ret (%d)\n", result);
    }
    return result;
}

// Criteria are parsed at the first record that asks for it: without records nobody learns of a text
// that is malformed.
int32_t examine(const cmpnt_upgrade_value &record, HotpatchCriteria *criteria,
                libcmpnt_db_find_callback callback) {
    if (!criteria->is_parsed && cmpnt_parse_hotpatch_match(criteria) != 0) {
        CMPNT_LOG_AS(log_error, record_step, "cmpnt_parse_hotpatch_match fail %s\n",
                     criteria->text);
        return -1;
    }
    const HotpatchMatch match = cmpnt_equal_hotpatch_match(record, *criteria);
    if (match == hotpatch_unknown_key) {
        CMPNT_LOG_AS(log_error, record_step,
                     "cmpnt_equal_hotpatch_match fail search critera err \n");
    }
    if (match != hotpatch_matches) {
        return match;
    }
    HeapText filled(cmpnt_pack_hotpatch_match(record, *criteria));
    if (!filled) {
        CMPNT_LOG_AS(log_error, record_step, "cmpnt_pack_hotpatch_match fail %s\n", criteria->text);
        return -1;
    }
    return tell(filled.get(), callback);
}

}  // namespace

int32_t get_hotpatch_to_db(const cmpnt_upgrade_value *record, const char *criteria,
                           libcmpnt_db_find_callback callback) {
    if (record == nullptr || criteria == nullptr || callback == nullptr) {
        return -1;
    }
    HotpatchCriteria parsed(criteria);
    return examine(*record, &parsed, callback);
}

int32_t libcmpnt_db_find(const char *criteria, libcmpnt_db_find_callback callback) {
    if (criteria == nullptr || callback == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    LoadedHotpatchRecords loaded;
    if (!loaded.load(__func__)) {
        return hotpatch_records_not_loaded;
    }
    HotpatchCriteria parsed(criteria);
    for (const cmpnt_upgrade_value &record : loaded.records()) {
        const int32_t result = examine(record, &parsed, callback);
        if (result != 0) {
            CMPNT_LOG(log_error, "get_hotpatch_to_db fail %s.\n", criteria);
            return result;
        }
    }
    return 0;
}
