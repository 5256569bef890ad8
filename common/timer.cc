// Timers on the host's event thread.
#include "common/log.hh"

int32_t cmpnt_common_add_timer(const cmpnt_timer_context *context, uintptr_t first,
                               uintptr_t second, uintptr_t third) {
    if (context == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (context->master == nullptr) {
        CMPNT_LOG(log_error, "master is null\n");
        return -1;
    }
    // The platform takes the last two the other way round.
    if (vx_thread_add_timer(context->master, first, third, second) == nullptr) {
        CMPNT_LOG(log_error, "cmpnt vx_thread_add_timer fail.\n");
        return -1;
    }
    return 0;
}
