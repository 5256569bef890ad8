// A field of a request together with its column, so that statements can be described in tables.
#ifndef CMPNT_DB_FIELD_HH
#define CMPNT_DB_FIELD_HH

#include <stddef.h>

#include "db/tables.hh"
#include "libcmpnt_db.h"

struct Field {
    const char *column;
    size_t offset;  // in cmpnt_db_request

    const char *text(const cmpnt_db_request &request) const {
        return reinterpret_cast<const char *>(&request) + offset;
    }
    int32_t number(const cmpnt_db_request &request) const {
        return *reinterpret_cast<const int32_t *>(text(request));
    }
};

namespace field {

inline constexpr Field package_name = {column::package_name,
                                       offsetof(cmpnt_db_request, base.package_name)};
inline constexpr Field base_version = {column::base_version,
                                       offsetof(cmpnt_db_request, base.base_version)};
inline constexpr Field package_state = {column::package_state,
                                        offsetof(cmpnt_db_request, base.package_state)};
inline constexpr Field patch_name = {column::patch_name,
                                     offsetof(cmpnt_db_request, record.patch_name)};
inline constexpr Field pkg_name = {column::pkg_name, offsetof(cmpnt_db_request, record.pkg_name)};
inline constexpr Field cur_pkg_path = {column::cur_pkg_path,
                                       offsetof(cmpnt_db_request, record.cur_pkg_path)};
inline constexpr Field cur_version = {column::cur_version,
                                      offsetof(cmpnt_db_request, record.cur_version)};
inline constexpr Field last_version = {column::last_version,
                                       offsetof(cmpnt_db_request, record.last_version)};
inline constexpr Field pkg_state = {column::pkg_state,
                                    offsetof(cmpnt_db_request, record.pkg_state)};
inline constexpr Field card_id = {column::card_id, offsetof(cmpnt_db_request, record.card_id)};
inline constexpr Field cur_flag = {column::cur_flag, offsetof(cmpnt_db_request, record.cur_flag)};
inline constexpr Field op_flag = {column::op_flag, offsetof(cmpnt_db_request, record.op_flag)};
inline constexpr Field effective_time = {column::effective_time,
                                         offsetof(cmpnt_db_request, record.effective_time)};
inline constexpr Field last_patch = {column::last_patch,
                                     offsetof(cmpnt_db_request, record.last_patch)};
inline constexpr Field hotpatch_target_pkg_path = {
    column::hotpatch_target_pkg_path, offsetof(cmpnt_db_request, record.hotpatch_target_pkg_path)};
inline constexpr Field sync_id = {column::sync_id, offsetof(cmpnt_db_request, sync_id)};
inline constexpr Field sync_flag = {column::sync_flag, offsetof(cmpnt_db_request, sync_flag)};
inline constexpr Field none = {nullptr, 0};

}  // namespace field

#endif
