// This node's address in the cluster, as the node's start-up left it.
#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "pkgfile/number.hh"

namespace {

constexpr char address_path[] = "/tmp/addr/.node_addr";

}  // namespace

int32_t cmpnt_get_local_tipc_instance(void) {
    Stream file(fopen(address_path, "re"));
    if (!file) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", address_path, strerror(errno));
        return -1;
    }
    char line[CMPNT_LINE_SIZE];
    if (fgets(line, sizeof(line), file.get()) == nullptr) {
        return -1;
    }
    char *end = line;
    const int32_t address = decimal_number(line, &end);
    return end == line ? -1 : address;
}
