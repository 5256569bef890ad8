// The input guard: the library puts texts into SQL and shell commands as they are, so those that would
// be misread there are refused here.
#ifndef CMPNTCTL_GUARD_HH
#define CMPNTCTL_GUARD_HH

#include <cstddef>
#include <string>

namespace cmpntctl {

// Each throws a Failure (usage) that names what was given and why it is refused: "the patch name".

// A name or a version: at least one byte, no more than max_length, no "/", not "." or "..".
void guard_name(const std::string &what, const std::string &text, size_t max_length);

// A path: at least one byte, no more than the 259 that fit the library's buffers.
void guard_path(const std::string &what, const std::string &text);

// A text for people, which no shell ever sees: may be empty and have blanks, but no single quote,
// backslash or control character.
void guard_text(const std::string &what, const std::string &text, size_t max_length);

}  // namespace cmpntctl

#endif
