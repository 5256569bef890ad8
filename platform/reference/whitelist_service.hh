// The keeper of the dynamic whitelist, as the data store knows it.
#ifndef CMPNT_REFERENCE_WHITELIST_SERVICE_HH
#define CMPNT_REFERENCE_WHITELIST_SERVICE_HH

#include "platform/platform.h"

namespace reference {

constexpr char whitelist_record_kind[] = "p_utils.sv_whitelist_info";

// Applies such a record to the whitelist: a vx_mom_callback, without a context.
int32_t apply_whitelist_record(void *, vx_mom_record *record);

}  // namespace reference

#endif
