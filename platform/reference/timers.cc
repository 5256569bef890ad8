// A host without an event thread has nowhere to run a timer: adding one is refused.
#include "platform/reference/reference_platform.h"

void *vx_thread_add_timer(void *, uintptr_t, uintptr_t, uintptr_t) { return nullptr; }
