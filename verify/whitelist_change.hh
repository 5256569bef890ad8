// Asking the verification service to change the dynamic whitelist.
#ifndef CMPNT_VERIFY_WHITELIST_CHANGE_HH
#define CMPNT_VERIFY_WHITELIST_CHANGE_HH

#include "libcmpnt_db.h"

enum WhitelistChannel { channel_data_store = 0, channel_call = 1 };

// Zeroed before use.
struct whitelist_change_request {
    int32_t channel;
    int32_t change_status;  // handed on as it is
    char file_path[CMPNT_PATH_SIZE];
};

// 0 or -1.
int32_t cmpnt_dynamic_whitelist_operate(uint32_t store, whitelist_change_request *request);

#endif
