// What a host keeps of its connections, before there are any.
#include <string.h>

#include "common/log.hh"

void cmpnt_init_communication_struct(cmpnt_communication *record) {
    if (record == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return;
    }
    memset(record, 0, sizeof(*record));
    for (int32_t &fd : record->fds) {
        fd = -1;
    }
}
