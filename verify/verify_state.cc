// What is remembered from one verification to the next: which lists were verified, and the digests.
#include <string.h>

#include "common/working_record.hh"

// Only what was verified: digests that are listed already go on counting.
void cmpnt_sign_verify_init(void) {
    g_variable.global_hashes_loaded = 0;
    memset(g_variable.verified_patch_directory, 0, sizeof(g_variable.verified_patch_directory));
}

void cmpnt_free_sign_verify(void) { cmpnt_recycle_hash_verify_list(); }
