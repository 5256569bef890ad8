// Verification is on while its switch file exists.
#include <unistd.h>

#include "platform/reference/reference_platform.h"

int32_t safe_verify_switch_status(uintptr_t, uintptr_t, uintptr_t, uintptr_t) {
    return access("/var/cache/opkg/.cmpnt_safe_verify_config", F_OK) == 0 ? 1 : 0;
}
