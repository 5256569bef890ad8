#include "list/smu_kind.hh"

int32_t cmpnt_smu_is_cold(int32_t op_flag) { return is_smu_kind(op_flag, smu_cold) ? 1 : 0; }

int32_t cmpnt_smu_is_app(int32_t op_flag) { return is_smu_kind(op_flag, smu_application) ? 1 : 0; }

int32_t cmpnt_smu_is_hp(int32_t op_flag) { return is_smu_kind(op_flag, smu_hot_patch) ? 1 : 0; }
