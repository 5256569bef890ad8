// Yes-or-no questions about texts and buffers.
#include <string.h>

#include "common/log.hh"

int32_t cmpnt_str_is_exist(const char *haystack, const char *needle) {
    if (haystack == nullptr || needle == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 0;
    }
    return strstr(haystack, needle) != nullptr ? 1 : 0;
}

int32_t cmpnt_name_is_null(const char *buffer, int32_t length) {
    if (buffer == nullptr) {
        CMPNT_LOG(log_error, "param is null");
        return 1;
    }
    for (int32_t i = 0; i < length; i++) {
        if (buffer[i] != '\0') {
            return 0;
        }
    }
    return 1;
}
