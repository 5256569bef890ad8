// The files of safe verification, all in fixed places.
#ifndef CMPNT_VERIFY_VERIFY_PATHS_HH
#define CMPNT_VERIFY_VERIFY_PATHS_HH

#include <stddef.h>

// The vendor's, shipped with the system.
inline constexpr char public_key_path[] = "/var/safe-verify/key/korvel_sm2_public.pem";
inline constexpr char global_hash_list_path[] = "/var/safe-verify/sm3/global-sm3.hash";
inline constexpr char global_hash_signature_path[] = "/var/safe-verify/signature/global-sm2.sign";
inline constexpr char global_whitelist_path[] = "/var/safe-verify/sm3/global-white-sm3.hash";
inline constexpr char global_whitelist_signature_path[] =
    "/var/safe-verify/signature/global-white-sm2.sign";

// The verification service's.
inline constexpr char dynamic_whitelist_path[] = "/var/safe-verify/sm3/global-d-white-sm3.hash";

// Where a base package is unpacked. An unpacked file's path without this beginning is where it would
// be installed.
inline constexpr char scratch_directory[] = "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp";
inline constexpr size_t scratch_directory_length = sizeof(scratch_directory) - 1;

// The library's own state.
inline constexpr char saved_patch_directory[] = "/var/cache/opkg/cmpnt_safe_verify";
inline constexpr char saved_patch_list_path[] =
    "/var/cache/opkg/cmpnt_safe_verify/.safe_verify_patch";
inline constexpr char switch_file_path[] = "/var/cache/opkg/.cmpnt_safe_verify_config";

// The package manager's lists of a package's files: of the current installation, and of the former.
inline constexpr char current_file_lists[] = "/var/lib/opkg/info";
inline constexpr char former_file_lists[] = "/var/lib/opkg_bak/info";

// In a patch directory, and in a base package.
inline constexpr char patch_hash_list_name[] = "patch-sm3.hash";
inline constexpr char patch_signature_name[] = "patch-sm2.sign";
inline constexpr char inner_archive_name[] = "data.tar.gz";

#endif
