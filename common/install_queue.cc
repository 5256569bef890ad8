// Splitting an install queue, "a;b;c", into names.
#include <string.h>

#include "common/log.hh"

// A queue that fills the array is refused even when nothing was left over: its caller has no room to
// tell the two apart.
int32_t cmpnt_detach_install_queue(const char *text, const char *separators, char **names,
                                   int32_t *count, int32_t max) {
    if (count != nullptr) {
        *count = 0;
    }
    if (text == nullptr || separators == nullptr) {
        CMPNT_LOG(log_client_error, "param is null\n");
        return -1;
    }
    if (names == nullptr || count == nullptr) {
        return -1;
    }
    char queue[CMPNT_LINE_SIZE];
    const size_t length = strnlen(text, sizeof(queue) - 1);
    memcpy(queue, text, length);
    queue[length] = '\0';
    char *rest = queue;
    while (*count < max) {
        char *token = strsep(&rest, separators);
        if (token == nullptr) {
            return 0;
        }
        const char *name = cmpnt_trim(token);
        if (name == nullptr) {
            CMPNT_LOG(log_error, "cmpnt_trim error\n");
            return -1;
        }
        const uint32_t size = static_cast<uint32_t>(strlen(name) + 1);
        if (cmpnt_malloc_and_memory(names, *count, name, size) != 0) {
            CMPNT_LOG(log_error, "cmpnt_malloc_and_memory fail.\n");
            return -1;
        }
        ++*count;
    }
    CMPNT_LOG(log_trace, "cmpnt_detach_install_queue count(%d)\n", *count);
    return -1;
}
