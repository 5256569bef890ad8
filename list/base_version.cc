// What a package was before any upgrade: its base version, and its file in the backup cache.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "db/query.hh"

namespace {

constexpr char backup_directory[] = "/var/cache/opkg/backup";
constexpr char package_suffix[] = ".ipk";

}  // namespace

int32_t cmpnt_get_base_version_by_pkg_name(const char *pkg_name, char *dst) {
    if (pkg_name == nullptr || dst == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    cmpnt_db_request request = {};
    request.table = CMPNT_PACKAGE_INFO_TABLE;
    request.cmd = base_query_package;
    set_base_db_value(&request.base, pkg_name, nullptr, nullptr, 0, 0, 0);
    if (cmpnt_get_pkg_info_database(&request) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_pkg_info_database fail.\n");
        return -1;
    }
    // A name that was cut for the query may have met the package that it begins with.
    const bool is_asked_for = strcmp(request.base.package_name, pkg_name) == 0;
    memset(dst, 0, CMPNT_VERSION_SIZE);
    snprintf(dst, CMPNT_VERSION_SIZE, "%s", is_asked_for ? request.base.base_version : "");
    return 0;
}

int32_t cmpnt_pkg_is_base_version(char **paths, int32_t index, const char *pkg_name,
                                  const char *version) {
    if (pkg_name == nullptr || version == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    char path[CMPNT_PATH_SIZE];
    snprintf(path, sizeof(path), "%s/%s_%s%s", backup_directory, pkg_name, version, package_suffix);
    if (file_is_exist(path) == 0) {
        return 0;
    }
    const uint32_t size = static_cast<uint32_t>(strlen(path)) + 1;
    if (cmpnt_malloc_and_memory(paths, index, path, size) != 0) {
        CMPNT_LOG(log_error, "cmpnt_malloc_and_memory fail.\n");
    } else {
        CMPNT_LOG(log_trace, "get base name(%s), backup_path(%s)\n", pkg_name, path);
    }
    return 1;
}
