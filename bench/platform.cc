// A platform that costs nothing, so that the library alone is measured. Only the verification service
// is the reference platform's.
#include "platform/platform.h"

int32_t printk_syslog_lc(int32_t, const char *, const char *, const char *, ...) { return 0; }

int32_t printk_syslog_ext(int32_t, const char *, const char *, int32_t, const char *, ...) {
    return 0;
}

time_t vx_time_get(int32_t) { return time(nullptr); }

int32_t vx_mom_subscribe(uint32_t, int32_t, const ProtobufCMessage *, void *, vx_mom_callback,
                         void *) {
    return 0;
}

int32_t vx_mom_hgetall(uint32_t, int32_t, const ProtobufCMessage *, vx_mom_callback, void *) {
    return 0;
}

int32_t vx_mom_set(uint32_t, int32_t, const ProtobufCMessage *, void *, void *) { return 0; }

void *vx_thread_add_timer(void *, uintptr_t, uintptr_t, uintptr_t) { return nullptr; }

int32_t cli_printf(const char *, ...) { return 0; }
