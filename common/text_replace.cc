// Replacement of a text in place.
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"

namespace {

// The next occurrence; an empty text occurs nowhere, or the search would never move on.
const char *find_next(const char *text, const char *wanted) {
    return *wanted == '\0' ? nullptr : strstr(text, wanted);
}

int64_t count_occurrences(const char *text, const char *wanted) {
    const size_t length = strlen(wanted);
    int64_t count = 0;
    for (const char *at = find_next(text, wanted); at != nullptr;
         at = find_next(at + length, wanted)) {
        count++;
    }
    return count;
}

// Writes the text with every old_text replaced and returns its length. The search goes over the
// original, so new_text may contain old_text.
size_t build_replaced(char *result, const char *text, const char *old_text, const char *new_text) {
    const size_t old_length = strlen(old_text);
    const size_t new_length = strlen(new_text);
    char *end = result;
    for (const char *at = find_next(text, old_text); at != nullptr;
         at = find_next(text, old_text)) {
        const size_t before = static_cast<size_t>(at - text);
        memcpy(end, text, before);
        memcpy(end + before, new_text, new_length);
        end += before + new_length;
        text = at + old_length;
    }
    const size_t tail = strlen(text);
    memcpy(end, text, tail + 1);
    return static_cast<size_t>(end - result) + tail;
}

// Room for the result and its terminator; 0 when that is more than a block may have.
uint32_t replaced_size(const char *text, const char *old_text, const char *new_text) {
    const int64_t growth =
        static_cast<int64_t>(strlen(new_text)) - static_cast<int64_t>(strlen(old_text));
    const int64_t size =
        count_occurrences(text, old_text) * growth + static_cast<int64_t>(strlen(text)) + 1;
    return size > INT32_MAX ? 0 : static_cast<uint32_t>(size);
}

}  // namespace

int32_t cmpnt_replace(char *text, int32_t size, const char *old_text, const char *new_text) {
    if (text == nullptr || old_text == nullptr || new_text == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    HeapText result(static_cast<char *>(cmpnt_malloc(replaced_size(text, old_text, new_text))));
    if (!result) {
        CMPNT_LOG(log_error, "malloc_replace fail\n");
        return -1;
    }
    const size_t length = build_replaced(result.get(), text, old_text, new_text);
    if (cmpnt_memcpy(text, result.get(), size, static_cast<int32_t>(length)) != 0) {
        CMPNT_LOG(log_error, "cmpnt_memcpy fail, new_buf(%s)\n", result.get());
        return -1;
    }
    return 0;
}
