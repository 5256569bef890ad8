// The columns that fill a list's record. Its texts are shorter than those of a request.
#include "db/upgrade_value_row.hh"

#include <string.h>

namespace {

#define FIELD(name) CMPNT_RECORD_FIELD(cmpnt_upgrade_value, name)

constexpr RecordField upgrade_value_fields[] = {
    FIELD(patch_name),
    FIELD(pkg_name),
    FIELD(cur_pkg_path),
    FIELD(cur_version),
    FIELD(last_version),
    // The state is held as its word, twice.
    {column::pkg_state, offsetof(cmpnt_upgrade_value, state_name),
     sizeof(cmpnt_upgrade_value::state_name), FieldKind::state_word},
    {column::pkg_state, offsetof(cmpnt_upgrade_value, pkg_state_name),
     sizeof(cmpnt_upgrade_value::pkg_state_name), FieldKind::state_word},
    FIELD(card_id),
    FIELD(cur_flag),
    FIELD(op_flag),
    FIELD(description),
    FIELD(patch_ver),
    FIELD(patch_id),
    FIELD(effective_time),
    FIELD(last_patch),
    FIELD(patch_size),
    FIELD(patch_type),
    FIELD(patch_order),
    FIELD(hotpatch_file),
    FIELD(hotpatch_target),
    FIELD(hotpatch_target_path),
    FIELD(hotpatch_target_pkg_path),
    FIELD(hotpatch_target_md5),
    FIELD(hotpatch_target_strip_md5),
};

#undef FIELD

}  // namespace

RowCopier upgrade_value_copier() { return RowCopier(upgrade_value_fields); }

void set_global_info_from_db(cmpnt_upgrade_value *record, const Row &row, RowCopier &copier) {
    memset(record, 0, sizeof(*record));
    copier.copy(row, record);
}
