// The operations that cmpntctl made, kept so that "who did this, and when?" has an answer: one JSON
// document a line in "/var/cache/opkg/.cmpntctl_history". A full file is renamed to "..._bak".
#ifndef CMPNTCTL_HISTORY_HH
#define CMPNTCTL_HISTORY_HH

#include <string>
#include <vector>

#include "command.hh"

namespace cmpntctl {

// Appends one line and syncs it: time, user, process, operation ("rollback"), the details (what was
// asked for: {"patch": "smu_1"}) and what it came to. Called once by each command that changes
// something, after it was done or when it failed. Never throws: what cannot be written is lost.
void record_history(const std::string &operation, Json details, ExitCode code) noexcept;

// The lines that are there, the oldest first; what is no JSON document is left out.
std::vector<Json> read_history();

}  // namespace cmpntctl

#endif
