// JSON written as text, where there is too much of it to be kept as objects.
#ifndef CMPNTCTL_JSON_TEXT_HH
#define CMPNTCTL_JSON_TEXT_HH

#include <cstddef>
#include <string>

namespace cmpntctl {

// Appends the bytes as a JSON string. What is no UTF-8 becomes the replacement character.
void append_json_string(std::string &json, const char *text, size_t size);

}  // namespace cmpntctl

#endif
