// What goes back in the place of a package whose version is taken away.
#include <stdio.h>
#include <string.h>

#include "common/log.hh"
#include "list/list.hh"
#include "list/newest_version.hh"
#include "list/upgrade_list.hh"

namespace {

// One of the caller's growing arrays, which have room by contract.
struct GrowingArray {
    char **items;
    int32_t *index;

    bool has_slot() const { return items != nullptr && *index >= 0; }
    const char *text() const {
        return has_slot() && items[*index] != nullptr ? items[*index] : "(null)";
    }
};

bool may_be_newest(const char *state) {
    return strcmp(state, "active") == 0 || strcmp(state, "running") == 0;
}

bool is_in_force(const char *state) {
    return may_be_newest(state) || strcmp(state, "Deactive_ready") == 0 ||
           strcmp(state, "Deactive_cold") == 0;
}

// Whether the record is a candidate for the newest version of the package.
bool is_candidate(const cmpnt_upgrade_value &value, const char *pkg_name) {
    return strcmp(value.pkg_name, pkg_name) == 0 && may_be_newest(value.state_name);
}

}  // namespace

static int32_t traverse_count_by_pkg_name(const char *pkg_name) {
    int32_t count = 0;
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (strcmp(value.pkg_name, pkg_name) == 0 && is_in_force(value.state_name)) {
            count++;
        }
    }
    CMPNT_LOG(log_trace, "traverse cmpnt upgrade list, pkg_name(%s). count(%d)\n", pkg_name, count);
    return count;
}

// The version taken away is the only upgrade in force: back to the base package.
static int32_t cmpnt_backup_pkg_is_base_version(const char *pkg_name, GrowingArray backup,
                                                GrowingArray remove) {
    CMPNT_LOG(log_trace, "only one package in database, pkg_name(%s).\n", pkg_name);
    char base_version[CMPNT_VERSION_SIZE] = {};
    if (cmpnt_get_base_version_by_pkg_name(pkg_name, base_version) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_base_version_by_pkg_name fail.\n");
        return -1;
    }
    if (cmpnt_pkg_is_base_version(backup.items, *backup.index, pkg_name, base_version) != 0) {
        if (!backup.has_slot()) {
            return -1;
        }
        CMPNT_LOG(log_trace, "base_name(%s), backup_path(%s)\n", pkg_name, backup.text());
        ++*backup.index;
        return CMPNT_TARGET_STORED;
    }
    const int32_t known = cmpnt_pkg_name_exist_in_base_table(pkg_name);
    if (known == 1) {
        return CMPNT_TARGET_NO_FILE;
    }
    if (known != 0) {
        return -1;  // a database that cannot say must not get the package removed
    }
    CMPNT_LOG(log_trace, "base(%s), base_version(%s) not exist, so remove after.\n", pkg_name,
              base_version);
    const uint32_t size = static_cast<uint32_t>(strlen(pkg_name)) + 1;
    if (cmpnt_malloc_and_memory(remove.items, *remove.index, pkg_name, size) != 0) {
        CMPNT_LOG(log_error, "cmpnt_malloc_and_memory fail.\n");
        return -1;
    }
    ++*remove.index;
    return CMPNT_TARGET_NO_FILE;
}

// The node taken out is handed over alive: the caller's texts may lie in it.
static int32_t del_max_version_from_upgrade_list(const char *pkg_name, const char *version,
                                                 OwnedUpgradeNode &removed) {
    CMPNT_LOG(log_trace, "delete list prepare: pkg_name(%s), max_version(%s)\n", pkg_name, version);
    if (list_is_empty(&cmpnt_upgrade_list)) {
        CMPNT_LOG(log_error, "cmpnt upgrade list is null\n");
        return -1;
    }
    for (cmpnt_list_head *link = cmpnt_upgrade_list.next; link != &cmpnt_upgrade_list;
         link = link->next) {
        const cmpnt_upgrade_value &value = upgrade_node_of(link)->value;
        if (is_candidate(value, pkg_name) && strcmp(value.cur_version, version) == 0) {
            CMPNT_LOG(log_trace, "delete from upgrade list, pkg_name(%s), version(%s), state(%s)\n",
                      value.pkg_name, value.cur_version, value.state_name);
            list_unlink(link);
            removed.reset(CMPNT_UPGRADE_NODE(link));
            break;
        }
    }
    CMPNT_LOG(log_trace, "del_max_version_from_upgrade_list ok\n");
    return 0;
}

static void cmpnt_find_second_version(const char *pkg_name, char *path) {
    CMPNT_LOG(log_trace, "cmpnt_find_second_version start\n");
    NewestVersion newest;
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (is_candidate(value, pkg_name) && newest.raise_to(value.cur_version)) {
            CMPNT_LOG(log_trace, "find max version, pkg_name(%s), version(%s), state(%s)\n",
                      value.pkg_name, value.cur_version, value.state_name);
        }
    }
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (is_candidate(value, pkg_name) && strcmp(value.cur_version, newest.text) == 0) {
            snprintf(path, CMPNT_PATH_SIZE, "%s", value.cur_pkg_path);
            CMPNT_LOG(log_trace, "find backup path, pkg_name(%s), current_path(%s)\n",
                      value.pkg_name, value.cur_pkg_path);
            break;
        }
    }
    CMPNT_LOG(log_trace, "cmpnt_find_second_version ok\n");
}

static int32_t cmpnt_get_path_from_upgrade_list(const char *pkg_name, const char *version,
                                                char *path) {
    CMPNT_LOG(log_trace, "cmpnt_get_path_from_upgrade_list start\n");
    OwnedUpgradeNode removed;
    if (del_max_version_from_upgrade_list(pkg_name, version, removed) != 0) {
        CMPNT_LOG(log_error, "del_max_version_from_upgrade_list fail.\n");
        return -1;
    }
    cmpnt_find_second_version(pkg_name, path);
    CMPNT_LOG(log_trace, "cmpnt_get_path_from_upgrade_list ok\n");
    return 0;
}

int32_t cmpnt_get_target_pkg_path(const char *pkg_name, const char *version, char **backup_paths,
                                  int32_t *backup_index, char **remove_names,
                                  int32_t *remove_index) {
    if (pkg_name == nullptr || version == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return -1;
    }
    if (backup_index == nullptr || remove_index == nullptr) {
        return -1;
    }
    CMPNT_LOG(log_trace,
              "get path: pkg_name(%s), version(%s), backup_index(%d), remove_index(%d)\n", pkg_name,
              version, *backup_index, *remove_index);
    const GrowingArray backup = {backup_paths, backup_index};
    const int32_t count = traverse_count_by_pkg_name(pkg_name);
    if (count == 1) {
        return cmpnt_backup_pkg_is_base_version(pkg_name, backup, {remove_names, remove_index});
    }
    CMPNT_LOG(log_trace, "have many packages in database, pkg_name(%s), ret(%d).\n", pkg_name,
              count);
    if (!backup.has_slot()) {
        return -1;
    }
    // The buffer is in its slot before the list is looked at and stays there on failure: the caller
    // frees all slots.
    char *path = static_cast<char *>(cmpnt_malloc(CMPNT_PATH_SIZE));
    backup_paths[*backup_index] = path;
    if (path == nullptr) {
        CMPNT_LOG(log_error, "cmpnt_malloc fail!\n");
        return -1;
    }
    if (cmpnt_get_path_from_upgrade_list(pkg_name, version, path) != 0) {
        CMPNT_LOG(log_error, "cmpnt_get_path_from_upgrade_list fail.\n");
        return -1;
    }
    ++*backup_index;
    return CMPNT_TARGET_STORED;
}
