// Package states as words and numbers.
#ifndef CMPNTCTL_STATES_HH
#define CMPNTCTL_STATES_HH

#include <cstdint>
#include <string>

namespace cmpntctl {

// "active"; "unknown (99)" for a number without a word.
std::string state_word(int64_t code);

// The number of a word, of either case, or of a number from 0 to 14; a Failure (usage) that lists the
// words for anything else.
int32_t state_code(const std::string &word);

}  // namespace cmpntctl

#endif
