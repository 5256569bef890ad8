// No verification service stands behind the reference platform: verification counts as switched on,
// and nothing passes it.
#include "platform/reference/reference_platform.h"

int32_t safe_verify_switch_status(uintptr_t, uintptr_t, uintptr_t, uintptr_t) { return 1; }

int32_t safe_verify_file_signature_with_id(const char *, const char *, const char *) { return 0; }

int32_t do_verify_signature(const char *, const char *, const char *, uint32_t) { return 1; }

int32_t safe_verify_whitelist_update(const char *, const char *, int32_t) { return -1; }
