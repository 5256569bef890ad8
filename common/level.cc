// The debug level: which channels reach the system log.
#include "common/log.hh"

uint32_t g_cmpnt_dbg_level = 0;

int32_t cmpnt_set_level(uint32_t level) {
    __atomic_store_n(&g_cmpnt_dbg_level, level, __ATOMIC_RELAXED);
    CMPNT_LOG(log_trace, "set cmpnt debug level(%d)\n", static_cast<int32_t>(level));
    return 0;
}
