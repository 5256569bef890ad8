// UTF-8 that may be broken: a field that was cut to its width may end within a character.
#ifndef CMPNTCTL_UTF8_HH
#define CMPNTCTL_UTF8_HH

#include <cstddef>

namespace cmpntctl {

// The length of the character at the beginning of the bytes, or 0 when they begin with none. There is
// at least one byte.
size_t utf8_length(const unsigned char *bytes, size_t count);

// How many bytes at the beginning, at least one, stand for one replacement character.
size_t utf8_broken_length(const unsigned char *bytes, size_t count);

}  // namespace cmpntctl

#endif
