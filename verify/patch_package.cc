// Verifying a patch: the signed hash list of its directory, the "smu" files in there, and itself.
#include "verify/patch_package.hh"

#include <stdio.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/working_record.hh"
#include "db/last_component.hh"
#include "verify/directory_entries.hh"
#include "verify/hash_file.hh"
#include "verify/hash_list.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char verifier[] = "cmpnt_safe_verify";  // whose steps these are
constexpr char directory_verifier[] = "cmpnt_patch_sm2_verify_and_get_sm3";
constexpr char smu_prefix[] = "smu";
constexpr size_t smu_prefix_length = sizeof(smu_prefix) - 1;

// Room for every directory's.
using PatchFilePath = char[CMPNT_PATH_SIZE + sizeof(patch_hash_list_name)];
static_assert(sizeof(patch_signature_name) == sizeof(patch_hash_list_name));

bool is_smu_file(const struct dirent &entry) {
    return entry.d_type == DT_REG && strncmp(entry.d_name, smu_prefix, smu_prefix_length) == 0;
}

int32_t check_smu_files(const char *directory) {
    Directory opened(opendir(directory));
    if (!opened) {
        CMPNT_LOG_AS(log_error, directory_verifier, "opendir path(%s) fail.\n", directory);
        return -1;
    }
    const HashIndex digests;
    while (const struct dirent *entry = next_entry(opened.get())) {
        if (!is_smu_file(*entry)) {
            continue;
        }
        CMPNT_LOG_AS(log_trace, directory_verifier, "safe verify smu_file(%s)\n", entry->d_name);
        if (cmpnt_check_patch_hash_value(entry->d_name, directory, &digests) != 0) {
            CMPNT_LOG_AS(log_error, directory_verifier, "cmpnt_check_patch_hash_value(%s) fail.\n",
                         entry->d_name);
            return -1;
        }
    }
    return errno == 0 ? 0 : -1;
}

int32_t load_patch_hashes(const char *directory) {
    PatchFilePath hash_list, signature;
    snprintf(hash_list, sizeof(hash_list), "%s/%s", directory, patch_hash_list_name);
    snprintf(signature, sizeof(signature), "%s/%s", directory, patch_signature_name);
    if (safe_verify_file_signature_with_id(hash_list, signature, public_key_path) == 0) {
        CMPNT_LOG_AS(log_error, directory_verifier, "safe_verify_file_signature_with_id(%s) fail\n",
                     hash_list);
        return -1;
    }
    if (cmpnt_get_hash_info(hash_list) != 0) {
        CMPNT_LOG_AS(log_error, directory_verifier, "cmpnt_get_hash_info fail\n");
        return -1;
    }
    return 0;
}

// False for a directory that the copy cannot hold: cut, it would be another, with other files.
bool copy_directory(const char *path, char (&directory)[CMPNT_PATH_SIZE]) {
    const char *slash = strrchr(path, '/');
    const size_t needed = slash != nullptr ? static_cast<size_t>(slash - path) + 1 : strlen(path);
    if (needed >= sizeof(directory)) {
        return false;
    }
    snprintf(directory, sizeof(directory), "%s", path);
    get_path_exclude_file_name(directory);
    return true;
}

}  // namespace

static int32_t cmpnt_patch_sm2_verify_and_get_sm3(const char *directory) {
    CMPNT_LOG(log_trace, "path(%s) sign verify\n", directory);
    if (load_patch_hashes(directory) != 0 || check_smu_files(directory) != 0) {
        return -1;
    }
    snprintf(g_variable.verified_patch_directory, sizeof(g_variable.verified_patch_directory), "%s",
             directory);
    return 0;
}

int32_t verify_patch_package(const char *path) {
    char directory[CMPNT_PATH_SIZE];
    if (!copy_directory(path, directory)) {
        return -1;
    }
    if (strcmp(directory, g_variable.verified_patch_directory) != 0 &&
        cmpnt_patch_sm2_verify_and_get_sm3(directory) != 0) {
        CMPNT_LOG_AS(log_error, verifier, "cmpnt_patch_sm2_verify_and_get_sm3 fail\n");
        return -1;
    }
    const char *name = last_component(path);
    if (cmpnt_check_patch_hash_value(name, directory) != 0) {
        CMPNT_LOG_AS(log_error, verifier, "cmpnt_check_patch_hash_value(%s) fail.\n", name);
        return -1;
    }
    return 0;
}
