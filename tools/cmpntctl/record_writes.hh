// The commands that write records, and the one that makes the tables.
#ifndef CMPNTCTL_RECORD_WRITES_HH
#define CMPNTCTL_RECORD_WRITES_HH

#include <string>

#include "command.hh"

namespace cmpntctl {

// A record to be added: what is empty or 0 is not known.
struct NewRecord {
    std::string patch, package, version, last_version, file, description, patch_version, time;
    std::string state = "installed";
    bool is_cold = false, is_app = false, is_hot = false, is_single = false;
    int card_id = 0, patch_size = 0;
};

void run_record_add(Session &session, const NewRecord &record);
// With a package, the record of that one; else all of the patch.
void run_record_state(Session &session, const std::string &patch, const std::string &state,
                      const std::string &package);
void run_record_delete(Session &session, const std::string &patch);
// A time, "now", or "" for none.
void run_record_time(Session &session, const std::string &patch, const std::string &time);

void run_init(Session &session);

}  // namespace cmpntctl

#endif
