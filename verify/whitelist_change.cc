// Asking the verification service to change the dynamic whitelist.
#include "verify/whitelist_change.hh"

#include <string.h>

#include "common/log.hh"
#include "p_utils.pb-c.h"
#include "verify/dynamic_whitelist.hh"

namespace {

constexpr int32_t write_record = 3;  // what the data store is to do

// The status need not be one that the message's enumeration knows.
void set_type(PUtils__SvWhitelistInfo &message, int32_t change_status) {
    static_assert(sizeof(message.type) == sizeof(change_status));
    memcpy(&message.type, &change_status, sizeof(change_status));
}

bool publish(uint32_t store, whitelist_change_request *request) {
    PUtils__SvWhitelistInfo message = P_UTILS__SV_WHITELIST_INFO__INIT;
    set_type(message, request->change_status);
    message.file_path = request->file_path;
    message.client_name = whitelist_client_name;
    return vx_mom_set(store, write_record, &message.base, nullptr, nullptr) == 0;
}

}  // namespace

int32_t cmpnt_dynamic_whitelist_operate(uint32_t store, whitelist_change_request *request) {
    if (request == nullptr) {
        return -1;
    }
    switch (request->channel) {
        case channel_data_store:
            if (!publish(store, request)) {
                CMPNT_LOG(log_error, "vx_mom_set fail\n");
                return -1;
            }
            return 0;
        case channel_call:
            if (safe_verify_whitelist_update(request->file_path, whitelist_client_name,
                                             request->change_status) == -1) {
                CMPNT_LOG(log_error, "safe_verify_whitelist_update fail\n");
                return -1;
            }
            return 0;
        default:
            return -1;
    }
}
