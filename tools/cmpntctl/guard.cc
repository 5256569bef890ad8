// Which texts are refused, and why.
#include "guard.hh"

#include <stdio.h>
#include <string.h>

#include "command.hh"
#include "libcmpnt_db.h"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr char misread[] = "'\"` ;&|<>$\\*?[]{}!";
constexpr char misread_in_front[] = "~#-";

bool is_control(char byte) {
    const unsigned char value = static_cast<unsigned char>(byte);
    return value < 0x20 || value == 0x7F;
}

std::string name_of(char byte) {
    if (is_control(byte)) {
        char text[40];
        snprintf(text, sizeof(text), "the control character 0x%02x", static_cast<unsigned>(byte));
        return text;
    }
    return byte == ' ' ? "a blank" : std::string("the character ") + byte;
}

[[noreturn]] void refuse(const std::string &what, const std::string &text,
                         const std::string &reason) {
    throw Failure(ExitCode::usage, what + " \"" + printable(text) + "\" " + reason,
                  "Nothing was done. Give a text without it.");
}

void guard_length(const std::string &what, const std::string &text, size_t max_length) {
    if (text.size() > max_length) {
        refuse(what, text.substr(0, 40) + "...",
               "has " + std::to_string(text.size()) + " bytes, and no more than " +
                   std::to_string(max_length) + " fit");
    }
}

void guard_characters(const std::string &what, const std::string &text) {
    if (text.empty()) {
        refuse(what, text, "is empty");
    }
    for (const char byte : text) {
        if (is_control(byte) || strchr(misread, byte) != nullptr) {
            refuse(what, text, "has " + name_of(byte) + ", which SQL or a shell would misread");
        }
    }
    if (strchr(misread_in_front, text[0]) != nullptr) {
        refuse(what, text, "begins with " + name_of(text[0]) + ", which a shell would misread");
    }
}

}  // namespace

void guard_name(const std::string &what, const std::string &text, size_t max_length) {
    guard_length(what, text, max_length);
    guard_characters(what, text);
    if (text.find('/') != std::string::npos || text == "." || text == "..") {
        refuse(what, text, "is a path, and would lead elsewhere as part of a file's name");
    }
}

void guard_path(const std::string &what, const std::string &text) {
    guard_length(what, text, CMPNT_PATH_SIZE - 1);
    guard_characters(what, text);
}

void guard_text(const std::string &what, const std::string &text, size_t max_length) {
    guard_length(what, text, max_length);
    for (const char byte : text) {
        if (is_control(byte) || byte == '\'' || byte == '\\') {
            refuse(what, text, "has " + name_of(byte) + ", which SQL would misread");
        }
    }
}

}  // namespace cmpntctl
