// The words are the library's own.
#include "states.hh"

#include <strings.h>

#include "command.hh"
#include "libcmpnt_db.h"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr int32_t last_state = CMPNT_STATE_INVALID_DEACTIVE_COLD;

}  // namespace

std::string state_word(int64_t code) {
    if (code < CMPNT_STATE_INIT || code > last_state) {
        return "unknown (" + std::to_string(code) + ")";
    }
    return cmpnt_conver_state_to_str(static_cast<int32_t>(code));
}

int32_t state_code(const std::string &word) {
    std::string words;
    for (int32_t code = CMPNT_STATE_INIT; code <= last_state; code++) {
        const char *known = cmpnt_conver_state_to_str(code);
        if (strcasecmp(word.c_str(), known) == 0 || word == std::to_string(code)) {
            return code;
        }
        words += std::string(words.empty() ? "" : ", ") + known;
    }
    throw Failure(ExitCode::usage, "there is no state \"" + printable(word) + "\"",
                  "The states: " + words + ".");
}

}  // namespace cmpntctl
