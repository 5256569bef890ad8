// The lists of what is to be synchronised.
#include "list/sync_list.hh"

#include <string.h>

#include "common/log.hh"
#include "list/list.hh"
#include "list/upgrade_list.hh"

namespace {

cmpnt_list_head *selected_sync_list(int32_t list) {
    switch (list) {
        case CMPNT_AUTO_SYNC_LIST:
            return &auto_sync_list;
        case CMPNT_APP_SYNC_LIST:
            return &app_sync_list;
        default:
            return nullptr;
    }
}

}  // namespace

static cmpnt_upgrade_node *malloc_auto_sync_node() {
    void *node = cmpnt_malloc(sizeof(cmpnt_upgrade_node));
    if (node == nullptr) {
        CMPNT_LOG(log_error, "malloc cmpnt_auto_sync_list failed\n");
    }
    return static_cast<cmpnt_upgrade_node *>(node);
}

// A list that nobody knows takes nothing, and that is no failure.
int32_t insert_auto_sync_node_to_list(const cmpnt_upgrade_value *record, int32_t list) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    OwnedUpgradeNode node(malloc_auto_sync_node());
    if (!node) {
        CMPNT_LOG(log_error, "malloc_auto_sync_node failed!\n");
        return -1;
    }
    hand_over(node, *record, selected_sync_list(list));
    return 0;
}

int32_t insert_auto_sync_node_to_list(const cmpnt_upgrade_value &record, NameIndex &index) {
    if (insert_auto_sync_node_to_list(&record, CMPNT_AUTO_SYNC_LIST) != 0) {
        return -1;
    }
    index.add(upgrade_node_of(auto_sync_list.prev));
    return 0;
}

int32_t smu_name_is_in_auto_sync_list(const char *name) {
    if (name == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 0;
    }
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&auto_sync_list)) {
        if (strcmp(value.patch_name, name) == 0) {
            return 1;
        }
    }
    return 0;
}

int32_t smu_name_is_in_auto_sync_list(const cmpnt_upgrade_value &record, const NameIndex &index) {
    return index.find(record) != nullptr ? 1 : 0;
}
