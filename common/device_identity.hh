// What the management data store calls with the device identity record.
#ifndef CMPNT_COMMON_DEVICE_IDENTITY_HH
#define CMPNT_COMMON_DEVICE_IDENTITY_HH

#include "platform/platform.h"

// Sets g_dev_info.role. 0 when the record was handled, -1 when it was refused.
int32_t cmpnt_get_dp_lib_my_info_cb(void *context, vx_mom_record *record);

#endif
