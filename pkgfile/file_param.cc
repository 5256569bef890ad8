// What a line handler is told, besides the line.
#include <string.h>

#include "libcmpnt_db.h"

void set_file_param(cmpnt_file_param *param, int32_t mode, intptr_t name, intptr_t second,
                    intptr_t third) {
    if (param == nullptr) {
        return;
    }
    memset(param, 0, sizeof(*param));
    param->mode = mode;
    param->name = name;
    param->second = second;
    param->third = third;
}
