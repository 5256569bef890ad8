// The filter of single-patch queries.
#ifndef CMPNT_LIST_GLOBAL_INFO_HH
#define CMPNT_LIST_GLOBAL_INFO_HH

#include "libcmpnt_db.h"

enum NewestType : int32_t { newest_in_force = 1, newest_of_all = 2, newest_of_any = 3 };

// Copies the record into out when the type accepts it: newest_in_force only in a state in force
// (otherwise out stays, and the result is 0 all the same), the two others always. -1 for null or
// another type.
int32_t cmpnt_get_global_info(cmpnt_upgrade_value *out, const cmpnt_upgrade_value *record,
                              int32_t newest_type);

#endif
