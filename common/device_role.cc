// What a board of a given role may be asked to do. The caller brings the role and the flag, on a scale
// of its own; they are not those of g_dev_info.
#include "libcmpnt_db.h"

namespace {

constexpr int32_t role_of_master = 1;
constexpr int32_t role_of_member = 2;
constexpr int32_t flag_of_backup = 1;

}  // namespace

int32_t cmpnt_device_is_master_mgnt(int32_t role) { return role == role_of_master ? 1 : 0; }

int32_t cmpnt_device_is_backup_mgnt(int32_t role, int32_t flag) {
    return role == role_of_member && flag == flag_of_backup ? 1 : 0;
}

int32_t cmpnt_device_is_slot_card(int32_t role, int32_t flag) {
    return role == role_of_member && flag != flag_of_backup ? 1 : 0;
}
