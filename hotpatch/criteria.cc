// Taking a criteria text apart: "KEY:VALUE#KEY:*".
#include "hotpatch/criteria.hh"

#include <string.h>

#include "common/log.hh"

namespace {

constexpr char parser[] = "cmpnt_parse_hotpatch_match";  // whose steps these are
constexpr int32_t part_limit = 3;                        // one more than an item has

// The pieces of a text. Splitting fails when they fill the array.
template <int32_t limit>
struct Pieces {
    Pieces() = default;
    Pieces(const Pieces &) = delete;
    Pieces &operator=(const Pieces &) = delete;
    ~Pieces() { cmpnt_recycle_pointer_array(texts, limit); }

    bool split(const char *text, const char *separator) {
        if (cmpnt_detach_install_queue(text, separator, texts, &count, limit) != 0) {
            CMPNT_LOG_AS(log_error, parser, "cmpnt_detach_install_queue fail.\n");
            return false;
        }
        return true;
    }

    char *texts[limit] = {};
    int32_t count = 0;
};

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
    Pieces<part_limit> parts;
    if (!parts.split(item, ":")) {
        return false;
    }
    if (parts.count != 2) {
        CMPNT_LOG_AS(log_error, parser, "hotpatch match err (%s).\n", item);
        return false;
    }
    const char *key = parts.texts[0];
    const char *value = parts.texts[1];
    if (is_empty(key) || is_empty(value)) {
        CMPNT_LOG_AS(log_error, parser, "cmpnt_detach_tmp_queue is null.\n");
        return false;
    }
    return add_item(criteria, key, value);
}

}  // namespace

int32_t cmpnt_parse_hotpatch_match(HotpatchCriteria *criteria) {
    Pieces<HotpatchCriteria::item_limit> items;
    if (!items.split(criteria->text, "#")) {
        return -1;
    }
    for (int32_t i = 0; i < items.count; i++) {
        if (!parse_item(criteria, items.texts[i])) {
            return -1;
        }
    }
    criteria->is_parsed = true;
    return 0;
}
