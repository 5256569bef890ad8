// Taking a criteria text apart: "KEY:VALUE#KEY:*".
#include "hotpatch/criteria.hh"

#include <string.h>

#include "common/log.hh"
#include "common/split_text.hh"

namespace {

constexpr char parser[] = "cmpnt_parse_hotpatch_match";  // whose steps these are
constexpr int32_t part_limit = 3;                        // one more than an item has

template <int32_t limit>
bool was_split(const SplitText<limit> &pieces) {
    if (!pieces.is_whole()) {
        CMPNT_LOG_AS(log_error, parser, "cmpnt_detach_install_queue fail.\n");
    }
    return pieces.is_whole();
}

bool is_empty(const char *text) { return text == nullptr || *text == '\0'; }

bool keep(char **array, int32_t index, const char *text) {
    const uint32_t size = static_cast<uint32_t>(strlen(text) + 1);
    if (cmpnt_malloc_and_memory(array, index, text, size) != 0) {
        CMPNT_LOG_AS(log_error, parser, "cmpnt_malloc_and_memory fail.\n");
        return false;
    }
    return true;
}

bool add_item(HotpatchCriteria *criteria, const char *key, const char *value) {
    if (strcmp(value, "*") == 0) {
        return keep(criteria->pack_keys, criteria->pack_count++, key);
    }
    const int32_t index = criteria->match_count++;
    return keep(criteria->match_keys, index, key) && keep(criteria->match_values, index, value);
}

bool parse_item(HotpatchCriteria *criteria, const char *item) {
    if (is_empty(item)) {
        CMPNT_LOG_AS(log_error, parser, "cmpnt_detach_install_queue is null.\n");
        return false;
    }
    const SplitText<part_limit> parts(item, ":");
    if (!was_split(parts)) {
        return false;
    }
    if (parts.count() != 2) {
        CMPNT_LOG_AS(log_error, parser, "hotpatch match err (%s).\n", item);
        return false;
    }
    const char *key = parts[0];
    const char *value = parts[1];
    if (is_empty(key) || is_empty(value)) {
        CMPNT_LOG_AS(log_error, parser, "cmpnt_detach_tmp_queue is null.\n");
        return false;
    }
    return add_item(criteria, key, value);
}

}  // namespace

int32_t cmpnt_parse_hotpatch_match(HotpatchCriteria *criteria) {
    const SplitText<HotpatchCriteria::item_limit> items(criteria->text, "#");
    if (!was_split(items)) {
        return -1;
    }
    for (const char *item : items) {
        if (!parse_item(criteria, item)) {
            return -1;
        }
    }
    criteria->is_parsed = true;
    return 0;
}
