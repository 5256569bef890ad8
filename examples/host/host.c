/* A small host of libcmpnt_db, to be copied: it records an upgrade of one package, and takes it back.
 *
 * The library works on the device's own paths (/var/lib/opkg, /var/cache/opkg, /data/cmpnt/opkg). On
 * a machine that is not a device run this inside a root of its own:
 *
 *     make
 *     cmpntctl device new ~/device
 *     cmpntctl device run ~/device -- "$PWD/host"
 */
#include <libcmpnt_db.h>
#include <stdio.h>
#include <string.h>

/* Codes of cmpnt_operate_pkg_database; docs/database.md has them all. */
enum { SET_BASE_PACKAGE = 2, INSERT_RECORD = 2, DELETE_PATCH = 3 };

static const char package[] = "hello";
static const char patch[] = "smu_hello";
static const char base_version[] = "1.0";
static const char new_version[] = "1.1";
static const char base_file[] = "/var/cache/opkg/backup/hello_1.0.ipk";
static const char new_file[] = "/data/cmpnt/opkg/download/smu_hello/hello_1.1.ipk";
static const char installed_file[] = "/opt/hello.ipk";

/* The reason is in the trace file, /var/cache/opkg/debug/.host.log. */
static int fail(const char *what) {
    fprintf(stderr, "host: failed: %s\n", what);
    return -1;
}

/* A library of another major version has other records. */
static int check_version(void) {
    int loaded_major = 0;
    if (sscanf(cmpnt_db_version(), "%d", &loaded_major) != 1 ||
        loaded_major != CMPNT_DB_VERSION_MAJOR) {
        return fail("this program was compiled for libcmpnt_db " CMPNT_DB_VERSION);
    }
    printf("libcmpnt_db %s\n", cmpnt_db_version());
    return 0;
}

/* Directories and tables are the host's to make, once: to create a table that is there fails. */
static int lay_out_database(void) {
    static const int32_t tables[] = {CMPNT_PACKAGE_INFO_TABLE, CMPNT_PKG_UPGRADE_TABLE};
    size_t i;
    if (cmpnt_mkdir("/var/lib/opkg") != 0 || cmpnt_mkdir("/data/cmpnt/opkg") != 0) {
        return fail("making the directories of the database");
    }
    for (i = 0; i < sizeof(tables) / sizeof(tables[0]); i++) {
        if (!cmpnt_table_is_exist(tables[i], CMPNT_DB_MAIN) &&
            cmpnt_create_pkg_table(tables[i], CMPNT_DB_MAIN) != 0) {
            return fail("creating a table");
        }
    }
    return 0;
}

/* Stand-ins for the package's two files; a rollback finds the base package's by its name. */
static int make_package_files(void) {
    if (cmpnt_remove(base_file) != 0 || cmpnt_remove(new_file) != 0 ||
        cmpnt_write_to_file("hello, version 1.0", base_file) != 0 ||
        cmpnt_write_to_file("hello, version 1.1", new_file) != 0) {
        return fail("making the package files");
    }
    return 0;
}

static int set_base_package(const char *current_version) {
    cmpnt_db_request request;
    memset(&request, 0, sizeof(request));
    request.table = CMPNT_PACKAGE_INFO_TABLE;
    request.db_type = CMPNT_DB_MAIN;
    request.cmd = SET_BASE_PACKAGE;
    set_base_db_value(&request.base, package, base_version, current_version, CMPNT_STATE_RUNNING, 0,
                      0);
    return cmpnt_operate_pkg_database(&request, SET_BASE_PACKAGE);
}

static int write_upgrade(int32_t cmd) {
    cmpnt_db_request request;
    memset(&request, 0, sizeof(request));
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    request.db_type = CMPNT_DB_MAIN;
    request.cmd = cmd;
    set_upgrade_db_value(&request.record, patch, package, new_file, new_version, base_version,
                         CMPNT_STATE_INSTALLED, 0, 0, 0, "says hello louder");
    return cmpnt_operate_pkg_database(&request, cmd);
}

/* As an upgrade goes: recorded as installed, its file put in place, and then active. A record that is
 * there from an earlier run cannot be inserted once more. */
static int record_upgrade(void) {
    if (set_base_package(base_version) != 0 || write_upgrade(DELETE_PATCH) != 0 ||
        write_upgrade(INSERT_RECORD) != 0) {
        return fail("recording the upgrade");
    }
    if (cmpnt_mkdir("/opt") != 0 || cmpnt_copy_file_by_write(new_file, installed_file) == -1) {
        return fail("putting the new file in place");
    }
    if (cmpnt_update_state_database(patch, package, CMPNT_STATE_ACTIVE, CMPNT_PKG_UPGRADE_TABLE) !=
            0 ||
        cmpnt_update_active_time(patch) != 0 || set_base_package(new_version) != 0) {
        return fail("recording that the upgrade is active");
    }
    printf("recorded %s: %s %s, active\n", patch, package, new_version);
    return 0;
}

/* Takes the new version away: paths[0] is what to put in its place. */
static int put_back(char **paths, char **removals) {
    int32_t path_count = 0;
    int32_t removal_count = 0;
    switch (cmpnt_get_target_pkg_path(package, new_version, paths, &path_count, removals,
                                      &removal_count)) {
        case CMPNT_TARGET_STORED:
            printf("going back to %s\n", paths[0]);
            return cmpnt_copy_file_by_write(paths[0], installed_file) == -1 ? -1 : 0;
        case CMPNT_TARGET_NO_FILE:
            printf(removal_count > 0 ? "removing %s\n" : "%s keeps its base version\n", package);
            return removal_count > 0 ? cmpnt_remove(installed_file) : 0;
        default:
            return -1;
    }
}

static int roll_back(void) {
    char *paths[8] = {NULL};
    char *removals[8] = {NULL};
    int result;
    cmpnt_client_list_init();
    if (traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0,
                                CMPNT_DB_MAIN) != 0) {
        return fail("loading the upgrade records");
    }
    result = put_back(paths, removals);
    cmpnt_recycle_pointer_array(paths, 8);
    cmpnt_recycle_pointer_array(removals, 8);
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    if (result != 0) {
        return fail("putting the former file in place");
    }
    if (cmpnt_update_state_database(patch, package, CMPNT_STATE_INSTALLED,
                                    CMPNT_PKG_UPGRADE_TABLE) != 0 ||
        cmpnt_update_deactive_time(patch) != 0 || set_base_package(base_version) != 0) {
        return fail("recording that the upgrade is no longer active");
    }
    printf("rolled back %s\n", patch);
    return 0;
}

int main(void) {
    return check_version() == 0 && lay_out_database() == 0 && make_package_files() == 0 &&
                   record_upgrade() == 0 && roll_back() == 0
               ? 0
               : 1;
}
