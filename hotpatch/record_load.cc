#include "hotpatch/record_load.hh"

#include "common/log.hh"

namespace {

// Moves all nodes to a list that is empty.
void move_nodes(cmpnt_list_head *from, cmpnt_list_head *to) {
    if (list_is_empty(from)) {
        return;
    }
    *to = *from;
    to->next->prev = to;
    to->prev->next = to;
    list_make_empty(from);
}

}  // namespace

bool LoadedHotpatchRecords::load(const char *caller) {
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
    if (traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_HP_LIST, 0, CMPNT_DB_MAIN) !=
        0) {
        CMPNT_LOG_AS(log_error, caller, "traverse_pkg_info_table fail.\n");
        return false;
    }
    move_nodes(&cmpnt_hp_list, &nodes_);
    return true;
}

// First what a callback loaded, then what it could not reach.
LoadedHotpatchRecords::~LoadedHotpatchRecords() {
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
    move_nodes(&nodes_, &cmpnt_hp_list);
    cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
}
