// Whether two texts begin alike.
#include <string.h>

#include "common/log.hh"

int32_t str_is_same(const char *a, const char *b, int32_t n) {
    if (a == nullptr || b == nullptr) {
        CMPNT_LOG(log_error, "input param is error.\n");
        return 0;
    }
    return strncmp(a, b, static_cast<size_t>(n)) == 0 ? 1 : 0;
}
