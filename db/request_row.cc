// The columns that a query puts into its request.
#include "db/request_row.hh"

namespace {

#define FIELD(name) CMPNT_RECORD_FIELD(cmpnt_pkg_record, name)

// All but the two MD5 columns, which queries never hand over.
constexpr RecordField pkg_record_fields[] = {
    FIELD(patch_name),
    FIELD(pkg_name),
    FIELD(cur_pkg_path),
    FIELD(cur_version),
    FIELD(last_version),
    FIELD(pkg_state),
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
};

#undef FIELD
#define FIELD(name) CMPNT_RECORD_FIELD(cmpnt_base_pkg_record, name)

constexpr RecordField base_record_fields[] = {
    FIELD(package_name),  FIELD(base_version),   FIELD(current_version),
    FIELD(package_state), FIELD(package_is_new), FIELD(upgrade_count),
};

#undef FIELD

}  // namespace

RowCopier pkg_record_copier() { return RowCopier(pkg_record_fields); }

RowCopier base_record_copier() { return RowCopier(base_record_fields); }

void cmpnt_set_base_value(cmpnt_db_request *req, const Row &row, RowCopier &copier) {
    copier.copy(row, &req->base);
}
