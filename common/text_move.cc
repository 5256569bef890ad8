// Texts that move between fixed buffers: a swap, and the removal of one from an array.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"

namespace {

// Leaves no byte of the former text behind.
void refill(char *buffer, int32_t size, const char *text) {
    memset(buffer, 0, static_cast<size_t>(size));
    snprintf(buffer, static_cast<size_t>(size), "%s", text);
}

void clear_text(char *text) { memset(text, 0, strlen(text)); }

}  // namespace

int32_t cmpnt_exchange_str(char *a, char *b, int32_t size_a, int32_t size_b) {
    if (a == nullptr || b == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (size_a < 1 || size_b < 1) {
        return -1;
    }
    char scratch[CMPNT_PATH_SIZE];
    snprintf(scratch, sizeof(scratch), "%s", a);
    if (a != b) {
        refill(a, size_a, b);
    }
    refill(b, size_b, scratch);
    return 0;
}

int32_t cmpnt_path_name_filter(char **array, int32_t count, int32_t index) {
    if (array == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (index < 0 || index >= count || array[index] == nullptr) {
        return 0;
    }
    char *current = array[index];
    for (int32_t i = index + 1; i < count; i++) {
        if (array[i] == nullptr) {
            continue;
        }
        clear_text(current);
        memcpy(current, array[i], strlen(array[i]) + 1);
        current = array[i];
    }
    clear_text(current);
    return 0;
}
