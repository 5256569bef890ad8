// Names of the tables and of their columns, as they stand in the database files.
#ifndef CMPNT_DB_TABLES_HH
#define CMPNT_DB_TABLES_HH

#include <stdint.h>

// Name of the table with this number (CMPNT_PACKAGE_INFO_TABLE ...); null for any other number.
const char *table_name(int32_t table);

// Value of an integer column as SQLite hands it to a row callback: base 10, 0 for null, saturated.
int32_t column_number(const char *value);

namespace column {

// package_info_table
inline constexpr char package_name[] = "package_name";
inline constexpr char base_version[] = "base_version";
inline constexpr char current_version[] = "current_version";
inline constexpr char package_state[] = "package_state";
inline constexpr char package_is_new[] = "package_is_new";
inline constexpr char upgrade_count[] = "upgrade_count";

// pkg_upgrade_table and auto_sync_table, in the order of the columns
inline constexpr char patch_name[] = "patch_name";
inline constexpr char pkg_name[] = "pkg_name";
inline constexpr char cur_pkg_path[] = "cur_pkg_path";
inline constexpr char cur_version[] = "cur_version";
inline constexpr char last_version[] = "last_version";
inline constexpr char pkg_state[] = "pkg_state";
inline constexpr char card_id[] = "card_id";
inline constexpr char cur_flag[] = "cur_flag";
inline constexpr char op_flag[] = "op_flag";
inline constexpr char description[] = "description";
inline constexpr char patch_ver[] = "patch_ver";
inline constexpr char patch_id[] = "patch_id";
inline constexpr char effective_time[] = "effective_time";
inline constexpr char last_patch[] = "last_patch";
inline constexpr char patch_size[] = "patch_size";
inline constexpr char patch_type[] = "patch_type";
inline constexpr char patch_order[] = "patch_order";
inline constexpr char hotpatch_file[] = "hotpatch_file";
inline constexpr char hotpatch_target[] = "hotpatch_target";
inline constexpr char hotpatch_target_path[] = "hotpatch_target_path";
inline constexpr char hotpatch_target_pkg_path[] = "hotpatch_target_pkg_path";
inline constexpr char hotpatch_target_md5[] = "hotpatch_target_md5";
inline constexpr char hotpatch_target_strip_md5[] = "hotpatch_target_strip_md5";

// server_table
inline constexpr char sync_id[] = "sync_id";
inline constexpr char sync_flag[] = "sync_flag";

}  // namespace column

#endif
