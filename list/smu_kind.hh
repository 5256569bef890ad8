// The bits of op_flag that tell the kinds of SMU apart.
#ifndef CMPNT_LIST_SMU_KIND_HH
#define CMPNT_LIST_SMU_KIND_HH

#include "libcmpnt_db.h"

enum SmuKind : int32_t { smu_cold = 1 << 0, smu_application = 1 << 3, smu_hot_patch = 1 << 5 };

inline bool is_smu_kind(int32_t op_flag, SmuKind kind) { return (op_flag & kind) != 0; }

inline bool is_smu_kind(const cmpnt_upgrade_value &value, SmuKind kind) {
    return is_smu_kind(value.op_flag, kind);
}

#endif
