// Filling records. A null text and a zero number mean that no value is given.
#include <string.h>

#include "common/log.hh"
#include "db/copy_text.hh"

namespace {

void copy_number(int32_t &field, int32_t number) {
    if (number != 0) {
        field = number;
    }
}

}  // namespace

void set_base_db_value(cmpnt_base_pkg_record *rec, const char *package_name,
                       const char *base_version, const char *current_version, int32_t package_state,
                       int32_t package_is_new, int32_t upgrade_count) {
    if (rec == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return;
    }
    memset(rec, 0, sizeof(*rec));
    copy_text(rec->package_name, package_name);
    copy_text(rec->base_version, base_version);
    copy_text(rec->current_version, current_version);
    copy_number(rec->package_state, package_state);
    copy_number(rec->package_is_new, package_is_new);
    copy_number(rec->upgrade_count, upgrade_count);
}

void set_upgrade_db_value(cmpnt_pkg_record *rec, const char *patch_name, const char *pkg_name,
                          const char *cur_pkg_path, const char *cur_version,
                          const char *last_version, int32_t pkg_state, int32_t card_id,
                          int32_t cur_flag, int32_t op_flag, const char *description) {
    if (rec == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return;
    }
    memset(rec, 0, sizeof(*rec));
    copy_text(rec->patch_name, patch_name);
    copy_text(rec->pkg_name, pkg_name);
    copy_text(rec->cur_pkg_path, cur_pkg_path);
    copy_text(rec->cur_version, cur_version);
    copy_text(rec->last_version, last_version);
    copy_text(rec->description, description);
    copy_number(rec->pkg_state, pkg_state);
    copy_number(rec->card_id, card_id);
    copy_number(rec->cur_flag, cur_flag);
    copy_number(rec->op_flag, op_flag);
}

void set_single_patch_db_value(cmpnt_pkg_record *rec, const cmpnt_single_patch_value *val) {
    if (rec == nullptr || val == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return;
    }
    copy_text(rec->patch_ver, val->patch_ver);
    copy_text(rec->patch_id, val->patch_id);
    copy_text(rec->effective_time, val->effective_time);
    copy_text(rec->last_patch, val->last_patch);
    copy_number(rec->patch_size, val->patch_size);
    copy_number(rec->patch_order, val->patch_order);
    copy_number(rec->patch_type, val->patch_type);
}
