// What makes a record a single patch.
#ifndef CMPNT_LIST_SINGLE_PATCH_HH
#define CMPNT_LIST_SINGLE_PATCH_HH

#include "libcmpnt_db.h"

template <typename Value>
bool is_single_patch(const Value &value) {
    constexpr int32_t single_patch_type = 1;
    return value.patch_type == single_patch_type;
}

#endif
