// Which kind of board we run on, as the management data store tells it.
#include "common/device_identity.hh"

#include <string.h>

#include "common/log.hh"
#include "p_dev.pb-c.h"

cmpnt_dev_info g_dev_info = {};

namespace {

// The subscription may keep the key, so it lives for ever.
const PDev__DpLibMyInfo identity_key = P_DEV__DP_LIB_MY_INFO__INIT;

// The platform may know more node types than we do: the word is read as a plain number.
int32_t role_of(const PDev__DpLibMyInfo *identity) {
    int32_t node_type = 0;
    static_assert(sizeof(node_type) == sizeof(identity->dm_my_node_type));
    memcpy(&node_type, &identity->dm_my_node_type, sizeof(node_type));
    switch (node_type) {
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_BOX:
            return CMPNT_ROLE_BOX;
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_MB:
            return CMPNT_ROLE_MANAGEMENT_BOARD;
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_LC:
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_SUB_LC:
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_SFC:
        case P_DEV__DM_NODE_TYPE_E__DM_TYPE_MSC:
            return CMPNT_ROLE_CARD;
        default:
            return CMPNT_ROLE_UNKNOWN;
    }
}

// The first known role stays: later notifications do not change it, only an unknown one resets it.
// The notification thread and the first reader may come together, and loggers of other threads read
// the word without a lock.
int32_t learn_role(int32_t role) {
    if (role == CMPNT_ROLE_UNKNOWN) {
        __atomic_store_n(&g_dev_info.role, role, __ATOMIC_RELAXED);
        return role;
    }
    int32_t current = CMPNT_ROLE_UNKNOWN;
    const bool learned = __atomic_compare_exchange_n(&g_dev_info.role, &current, role, false,
                                                     __ATOMIC_RELAXED, __ATOMIC_RELAXED);
    return learned ? role : current;
}

bool is_good(const vx_mom_wrapped_value *value) { return value != nullptr && value->status == 0; }

}  // namespace

int32_t cmpnt_get_dp_lib_my_info_cb(void *, vx_mom_record *record) {
    if (record == nullptr || record->status != 0) {
        CMPNT_LOG(log_error, "param is error\n");
        return -1;
    }
    const void *message = nullptr;
    switch (record->command) {
        case VX_MOM_SUBSCRIBED:
            CMPNT_LOG(log_trace, "get dp lib my info subscribe success\n");
            return 0;
        case VX_MOM_VALUE:
        case VX_MOM_VALUE_24:
            message = record->result;
            break;
        case VX_MOM_WRAPPED_VALUE_4:
        case VX_MOM_WRAPPED_VALUE_6:
        case VX_MOM_WRAPPED_VALUE_8: {
            const auto *wrapped = static_cast<const vx_mom_wrapped_value *>(record->result);
            if (!is_good(wrapped)) {
                CMPNT_LOG(log_error, "res unexpected, error!\n");
                return -1;
            }
            message = wrapped->message;
            break;
        }
        default:
            CMPNT_LOG(log_trace, "ignore my info callback cmd: %d\n", record->command);
            return -1;
    }
    if (message == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    const int32_t role = learn_role(role_of(static_cast<const PDev__DpLibMyInfo *>(message)));
    CMPNT_LOG(log_trace, "get node_type is %d\n", role);
    return 0;
}

int32_t cmpnt_get_dp_lib_my_info(uint32_t store) {
    int32_t result = vx_mom_subscribe(store, 1, &identity_key.base, nullptr,
                                      cmpnt_get_dp_lib_my_info_cb, nullptr);
    if (result != 0) {
        CMPNT_LOG(log_error, "vx_mom_subscribe failed\n");
        return result;
    }
    result = vx_mom_hgetall(store, 1, &identity_key.base, cmpnt_get_dp_lib_my_info_cb, nullptr);
    if (result != 0) {
        CMPNT_LOG(log_error, "vx_mom_hgetall failed\n");
    }
    return result;
}
