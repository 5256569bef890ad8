// Verifying a base package: the global lists, then what the package brings into trusted directories.
#include "verify/base_package.hh"

#include <stdio.h>

#include "common/log.hh"
#include "common/working_record.hh"
#include "verify/hash_file.hh"
#include "verify/tree_digest.hh"
#include "verify/trusted_directory.hh"
#include "verify/unpack.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char verifier[] = "cmpnt_safe_verify";  // whose steps these are

int32_t check_signature(const char *list, const char *signature) {
    if (safe_verify_file_signature_with_id(list, signature, public_key_path) == 0) {
        CMPNT_LOG_AS(log_error, verifier, "safe_verify_file_signature(%s) fail\n", list);
        return -1;
    }
    return 0;
}

// The whitelist is not loaded: whoever asks it reads the file.
int32_t load_global_hashes() {
    if (check_signature(global_hash_list_path, global_hash_signature_path) != 0) {
        return -1;
    }
    if (file_is_exist(global_whitelist_signature_path) != 0 &&
        check_signature(global_whitelist_path, global_whitelist_signature_path) != 0) {
        return -1;
    }
    if (cmpnt_get_hash_info(global_hash_list_path) != 0) {
        CMPNT_LOG_AS(log_error, verifier, "cmpnt_get_hash_info fail\n");
        return -1;
    }
    g_variable.global_hashes_loaded = 1;
    return 0;
}

int32_t check_unpacked_files() {
    TreeLists lists;
    for (const char *directory : trusted_directories) {
        char unpacked[CMPNT_PATH_SIZE];
        snprintf(unpacked, sizeof(unpacked), "%s%s", scratch_directory, directory);
        if (file_is_exist(unpacked) != 0 && cmpnt_global_hash_file_verify(unpacked, lists) != 0) {
            CMPNT_LOG_AS(log_error, verifier, "cmpnt_hash_file_verify fail\n");
            return -1;
        }
    }
    return 0;
}

}  // namespace

// The scratch directory of a package that fails stays, to be looked into.
int32_t verify_base_package(const char *path) {
    if (g_variable.global_hashes_loaded != 1 && load_global_hashes() != 0) {
        return -1;
    }
    if (cmpnt_unzip_safe_verify_file(path) != 0) {
        CMPNT_LOG_AS(log_error, verifier, "cmpnt_unzip_safe_verify_file fail\n");
        return -1;
    }
    if (check_unpacked_files() != 0) {
        return -1;
    }
    cmpnt_remove(scratch_directory);
    return 0;
}
