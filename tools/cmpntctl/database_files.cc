#include "database_files.hh"

#include <libcmpnt_db.h>

namespace cmpntctl {
namespace {

const std::vector<std::string> base_columns = {
    "package_name text",     "base_version text",      "current_version text",
    "package_state integer", "package_is_new integer", "upgrade_count integer",
};

const std::vector<std::string> upgrade_columns = {
    "patch_name text",
    "pkg_name text",
    "cur_pkg_path text",
    "cur_version text",
    "last_version text",
    "pkg_state integer",
    "card_id integer",
    "cur_flag integer",
    "op_flag integer",
    "description text",
    "patch_ver text",
    "patch_id text",
    "effective_time text",
    "last_patch text",
    "patch_size integer",
    "patch_type integer",
    "patch_order integer",
    "hotpatch_file text",
    "hotpatch_target text",
    "hotpatch_target_path text",
    "hotpatch_target_pkg_path text",
    "hotpatch_target_md5 text",
    "hotpatch_target_strip_md5 text",
};

std::vector<TableLayout> package_tables() {
    return {
        {"package_info_table", base_columns, "package_state", {"package_name", "base_version"}, ""},
        {"pkg_upgrade_table",
         upgrade_columns,
         "pkg_state",
         {"patch_name", "pkg_name"},
         "cur_pkg_path"}};
}

std::string server_path() {
    char path[CMPNT_PATH_SIZE] = "";
    cmpnt_get_tmp_strcat_path("/opkg/server/.cmpnt_server.db3", path, sizeof(path));
    return path;
}

}  // namespace

DatabaseFile main_file() { return {"main", main_database, package_tables(), true}; }

// Its package files are those of the main file: not looked for twice.
DatabaseFile backup_file() {
    std::vector<TableLayout> tables = package_tables();
    tables[1].path.clear();
    return {"backup", backup_database, tables, true};
}

std::vector<DatabaseFile> database_files() {
    // Rows of the server table are inserted anew each time: none is one too many.
    const TableLayout server = {
        "server_table", {"sync_id integer", "sync_flag integer"}, "", {}, ""};
    const TableLayout auto_sync = {
        "auto_sync_table", upgrade_columns, "pkg_state", {"patch_name", "pkg_name"}, ""};
    return {main_file(),
            backup_file(),
            {"server", server_path(), {server}, false},
            {"auto-sync", auto_sync_database, {auto_sync}, false}};
}

}  // namespace cmpntctl
