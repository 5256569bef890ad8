// Which rows a query wants, and what it takes from them.
#include <string.h>

#include "db/query.hh"

namespace {

bool same_text(const Row &row, const char *name, const char *wanted) {
    const char *text = row.text(name);
    return text != nullptr && strcmp(text, wanted) == 0;
}

bool same_patch(const Row &row, const cmpnt_pkg_record &wanted) {
    return same_text(row, column::patch_name, wanted.patch_name);
}

bool same_pkg(const Row &row, const cmpnt_pkg_record &wanted) {
    return same_text(row, column::pkg_name, wanted.pkg_name);
}

bool patch_of_pkg(const Row &row, const cmpnt_pkg_record &wanted) {
    return same_patch(row, wanted) && same_pkg(row, wanted);
}

bool version_of_pkg(const Row &row, const cmpnt_pkg_record &wanted) {
    return same_pkg(row, wanted) && same_text(row, column::cur_version, wanted.cur_version);
}

bool same_path(const Row &row, const cmpnt_pkg_record &wanted) {
    return same_text(row, column::cur_pkg_path, wanted.cur_pkg_path);
}

bool newer_in_force(const Row &row, const cmpnt_pkg_record &wanted) {
    const char *version = row.text(column::cur_version);
    if (!same_pkg(row, wanted) || version == nullptr ||
        cmpnt_version_compare(version, wanted.cur_version) != CMPNT_VERSION_NEWER) {
        return false;
    }
    const int32_t state = row.number(column::pkg_state);
    return state == CMPNT_STATE_RUNNING || state == CMPNT_STATE_ACTIVE;
}

template <int32_t state>
bool in_state(const Row &row, const cmpnt_pkg_record &) {
    return row.number(column::pkg_state) == state;
}

bool active(const Row &row, const cmpnt_pkg_record &) {
    const int32_t state = row.number(column::pkg_state);
    return state == CMPNT_STATE_ACTIVE || state == CMPNT_STATE_INVALID_HP_ACTIVE;
}

bool active_current(const Row &row, const cmpnt_pkg_record &) {
    return row.number(column::pkg_state) == CMPNT_STATE_ACTIVE && row.number(column::cur_flag) != 0;
}

bool current(const Row &row, const cmpnt_pkg_record &) { return row.number(column::cur_flag) == 1; }

bool op_flag_bit_2(const Row &row, const cmpnt_pkg_record &) {
    return (row.number(column::op_flag) & 4) != 0;
}

// What is done with a row that matches.
enum : uint32_t { copy = 1, found = 2, add_to_list = 4, or_fail = 8 };

struct QueryRule {
    int32_t cmd;
    bool (*matches)(const Row &row, const cmpnt_pkg_record &wanted);
    uint32_t actions;
};

constexpr QueryRule rules[] = {
    {query_patch_of_pkg, patch_of_pkg, copy | or_fail},
    {query_newer_version, newer_in_force, found},
    {query_patch, same_patch, found | copy},
    {query_version_of_pkg, version_of_pkg, found | copy},
    {query_path, same_path, found | copy},
    {query_active, active, found | copy},
    {query_active_current, active_current, copy},
    {query_patch_into_list, same_patch, found | copy | add_to_list},
    {query_current, current, copy},
    {query_active_ready, in_state<CMPNT_STATE_ACTIVE_READY>, copy},
    {query_deactive_ready, in_state<CMPNT_STATE_DEACTIVE_READY>, copy},
    {query_op_flag_bit_2, op_flag_bit_2, copy},
};

const QueryRule *find_rule(int32_t cmd) {
    for (const QueryRule &rule : rules) {
        if (rule.cmd == cmd) {
            return &rule;
        }
    }
    return nullptr;
}

void set_found(Query &query) {
    query.row_was_found = true;
    query.req->exist = 1;
}

int match_upgrade_row(Query &query, const Row &row) {
    cmpnt_db_request *req = query.req;
    const QueryRule *rule = find_rule(req->cmd);
    if (rule == nullptr) {
        return 0;
    }
    if (!rule->matches(row, req->record)) {
        return (rule->actions & or_fail) != 0 ? -1 : 0;
    }
    if ((rule->actions & found) != 0) {
        set_found(query);
    }
    if ((rule->actions & copy) != 0) {
        query.pkg_records.copy(row, &req->record);
    }
    if ((rule->actions & add_to_list) != 0) {
        cmpnt_upgrade_value value;
        set_global_info_from_db(&value, row, query.upgrade_values);
        cmpnt_add_upgrade_value_to_list(&value, CMPNT_UPGRADE_LIST);
    }
    return 0;
}

void match_base_row(Query &query, const Row &row) {
    cmpnt_db_request *req = query.req;
    if (req->cmd == base_query_deactive_cold &&
        row.number(column::package_state) == CMPNT_STATE_DEACTIVE_COLD) {
        set_found(query);
        cmpnt_set_base_value(req, row, query.base_records);
    } else if (req->cmd == base_query_package &&
               same_text(row, column::package_name, req->base.package_name)) {
        cmpnt_set_base_value(req, row, query.base_records);
    }
}

// The first match wins: what is left of the request asks nothing of the rows that follow.
void match_server_row(Query &query, const Row &row) {
    cmpnt_db_request *req = query.req;
    if (req->cmd != server_query_sync_id || row.number(column::sync_id) != req->sync_id) {
        return;
    }
    memset(req, 0, sizeof(*req));
    set_found(query);
    req->sync_id = row.number(column::sync_id);
    req->sync_flag = row.number(column::sync_flag);
}

}  // namespace

int read_pkg_info_table_callback(void *context, int columns, char **values, char **names) {
    const Row row = {columns, values, names};
    if (row.is_null()) {
        return -1;
    }
    Query &query = *static_cast<Query *>(context);
    if (query.req->cmd == query_active && !query.row_was_found) {
        query.req->exist = 2;  // rows there are, but none that is active
    }
    switch (query.req->table) {
        case CMPNT_PACKAGE_INFO_TABLE:
            match_base_row(query, row);
            return 0;
        case CMPNT_PKG_UPGRADE_TABLE:
            return match_upgrade_row(query, row);
        case CMPNT_SERVER_TABLE:
            match_server_row(query, row);
            return 0;
        default:
            return 0;
    }
}
