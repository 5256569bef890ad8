// The auto-sync configuration file: one text, replaced as a whole.
#include "common/log.hh"

int32_t cmpnt_write_auto_sync_config(const char *config, const char *path) {
    if (config == nullptr || path == nullptr) {
        CMPNT_LOG(log_client_error, "param is error\n");
        return -1;
    }
    cmpnt_system_cmd_run("rm -rf", path);
    if (cmpnt_write_to_file(config, path) != 0) {
        CMPNT_LOG(log_client_error, "write fail, file_name(%s), config(%s).\n", path, config);
        return -1;
    }
    return 0;
}
