// The switch of safe verification, which is the platform's.
#include "libcmpnt_db.h"
#include "platform/platform.h"

int32_t cmpnt_safe_verify_enable(uintptr_t first, uintptr_t second, uintptr_t third,
                                 uintptr_t fourth) {
    return safe_verify_switch_status(first, second, third, fourth);
}
