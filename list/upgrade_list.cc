// Adding records to the upgrade lists, and freeing them again.
#include "list/upgrade_list.hh"

#include <string.h>

#include "common/log.hh"
#include "list/list.hh"

namespace {

// Ends at a link that a host left null, too, and answers false then.
bool free_nodes(cmpnt_list_head *head) {
    cmpnt_list_head *link = head->next;
    while (link != nullptr && link != head) {
        cmpnt_list_head *next = link->next;
        list_make_empty(link);
        cmpnt_free_pointer(CMPNT_UPGRADE_NODE(link));
        link = next;
    }
    list_make_empty(head);
    return link != nullptr;
}

}  // namespace

void hand_over(OwnedUpgradeNode &node, const cmpnt_upgrade_value &record, cmpnt_list_head *list) {
    node.get()->value = record;
    if (list != nullptr) {
        list_append(list, &node.release()->link);
    }
}

const cmpnt_upgrade_node *find_node(const cmpnt_list_head *list, const NameIndex *index,
                                    NameKey key, const cmpnt_upgrade_value &record) {
    return index != nullptr ? index->find(record) : first_node_like(list, key, record);
}

static cmpnt_upgrade_node *malloc_cmpnt_node() {
    void *node = cmpnt_malloc(sizeof(cmpnt_upgrade_node));
    if (node == nullptr) {
        CMPNT_LOG(log_error, "malloc cmpnt_db_list failed\n");
    }
    return static_cast<cmpnt_upgrade_node *>(node);
}

static bool cmpnt_search_list_by_smu_pkg(const cmpnt_list_head *list, const NameIndex *index,
                                         const cmpnt_upgrade_value &record) {
    const cmpnt_upgrade_node *node = find_node(list, index, NameKey::patch_and_package, record);
    if (node == nullptr) {
        return false;
    }
    CMPNT_LOG(log_trace, "patch(%s), pkg(%s) already exist, pkg_ver(%s)\n", node->value.patch_name,
              node->value.pkg_name, node->value.cur_version);
    return true;
}

static bool search_cmpnt_upgrade_list_by_pkg_name(const NameIndex *index,
                                                  const cmpnt_upgrade_value &record) {
    if (list_is_empty(&cmpnt_upgrade_list)) {
        CMPNT_LOG(log_trace, "upgrade list is null\n");
        return false;
    }
    const cmpnt_upgrade_node *node =
        find_node(&cmpnt_upgrade_list, index, NameKey::package, record);
    if (node == nullptr) {
        return false;
    }
    CMPNT_LOG(log_trace, "search found: pkg_name(%s)\n", node->value.pkg_name);
    return true;
}

// A list that nobody knows takes nothing, and that is no failure.
int32_t insert_cmpnt_upgrade_db_to_list(const cmpnt_upgrade_value *record, int32_t list) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    OwnedUpgradeNode node(malloc_cmpnt_node());
    if (!node) {
        CMPNT_LOG(log_error, "malloc_cmpnt_node failed!\n");
        return -1;
    }
    hand_over(node, *record, selected_list(list));
    return 0;
}

int32_t append_record(const cmpnt_upgrade_value &record, int32_t list, NameIndex *index,
                      const char *function) {
    if (insert_cmpnt_upgrade_db_to_list(&record, list) != 0) {
        CMPNT_LOG_AS(log_error, function, "insert_cmpnt_upgrade_db_to_list fail.\n");
        return -1;
    }
    const cmpnt_list_head *head = selected_list(list);
    if (index != nullptr && head != nullptr) {
        index->add(upgrade_node_of(head->prev));
    }
    return 0;
}

int32_t cmpnt_add_upgrade_value_to_list(const cmpnt_upgrade_value &record, int32_t list,
                                        NameIndex *index) {
    const cmpnt_list_head *head = selected_list(list);
    if (head == nullptr) {
        CMPNT_LOG(log_error, "list is null.\n");
    } else if (cmpnt_search_list_by_smu_pkg(head, index, record)) {
        return 0;
    }
    return append_record(record, list, index, __func__);
}

int32_t cmpnt_add_upgrade_value_to_list(const cmpnt_upgrade_value *record, int32_t list) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    return cmpnt_add_upgrade_value_to_list(*record, list, nullptr);
}

int32_t cmpnt_add_to_list_by_pkg_version(const cmpnt_upgrade_value *record) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    if (strcmp(record->state_name, "installed") == 0) {
        return 0;
    }
    return append_record(*record, CMPNT_UPGRADE_LIST, nullptr, __func__);
}

int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const cmpnt_upgrade_value &record, NameIndex *index) {
    if (search_cmpnt_upgrade_list_by_pkg_name(index, record)) {
        return 0;
    }
    return append_record(record, CMPNT_UPGRADE_LIST, index, __func__);
}

int32_t cmpnt_add_to_upgrade_list_by_pkg_name(const cmpnt_upgrade_value *record) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    return cmpnt_add_to_upgrade_list_by_pkg_name(*record, nullptr);
}

void recycle_upgrade_list(int32_t list) {
    cmpnt_list_head *head = selected_list(list);
    if (head == nullptr) {
        CMPNT_LOG(log_error, "list is null.\n");
        return;
    }
    if (!free_nodes(head)) {
        CMPNT_LOG(log_error, "upgrade_list_node is null.\n");
    }
}

void cmpnt_recycle_upgrade_list(int32_t list) { recycle_upgrade_list(list); }

// The nodes are freed last: the texts asked for may lie in one of them.
void del_pkg_name_from_upgrade_list(const char *patch_name, const char *pkg_name,
                                    const char *version) {
    if (patch_name == nullptr || pkg_name == nullptr || version == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return;
    }
    cmpnt_list_head removed;
    list_make_empty(&removed);
    cmpnt_list_head *next = nullptr;
    for (cmpnt_list_head *link = cmpnt_upgrade_list.next; link != &cmpnt_upgrade_list;
         link = next) {
        next = link->next;
        const cmpnt_upgrade_value &value = upgrade_node_of(link)->value;
        if (strcmp(value.patch_name, patch_name) == 0 && strcmp(value.pkg_name, pkg_name) == 0 &&
            strcmp(value.cur_version, version) == 0) {
            list_unlink(link);
            list_append(&removed, link);
            CMPNT_LOG(log_trace, "delete smu_name(%s), pkg_name(%s), version(%s)\n", patch_name,
                      pkg_name, version);
        }
    }
    CMPNT_LOG(log_trace, "del_pkg_name_from_upgrade_list ok\n");
    free_nodes(&removed);
}
