#include "criteria.hh"

#include <algorithm>

#include "command.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

constexpr size_t longest = 1023, most_items = 31;
constexpr const char *known_keys[] = {"Is_hotpatch",          "Package", "Hotpatch_file",
                                      "Hotpatch_target_pkg",  "Version", "State",
                                      "Hotpatch_target_path", "Pkg_path"};

[[noreturn]] void refuse(const std::string &what) {
    throw Failure(ExitCode::usage, "the criteria " + what,
                  "Ask as in: cmpntctl hotpatch find \"Package:*#State:*#Is_hotpatch:1\"");
}

std::string trimmed(const std::string &text) {
    constexpr char blanks[] = " \t\n\v\f\r";
    const size_t start = text.find_first_not_of(blanks);
    return start == std::string::npos
               ? ""
               : text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

std::vector<std::string> split(const std::string &text) {
    std::vector<std::string> items;
    for (size_t start = 0; start <= text.size();) {
        const size_t end = std::min(text.find('#', start), text.size());
        items.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return items;
}

void check_key(const std::string &key) {
    if (std::find(std::begin(known_keys), std::end(known_keys), key) == std::end(known_keys)) {
        std::string known;
        for (const char *name : known_keys) {
            known += (known.empty() ? "" : ", ") + std::string(name);
        }
        refuse("have the key \"" + printable(key) + "\", and there are only " + known);
    }
}

// The library fills in where the key first occurs, and as many characters as key and value have.
void check_wildcard(const std::string &text, const std::string &item, size_t position,
                    const std::string &key) {
    if (item != key + ":*") {
        refuse("have blanks in \"" + printable(item) + "\", which is to be filled in");
    }
    if (text.find(key) != position) {
        refuse("name " + key + " before \"" + item + "\": write what is to be filled in first");
    }
    if (key == "Version") {
        refuse("ask for the version, which can be no more than a condition");
    }
}

}  // namespace

Criteria::Criteria(const std::string &text) : text_(text) {
    const std::vector<std::string> items = split(text);
    if (text.size() > longest || items.size() > most_items) {
        refuse("are too long: no more than " + std::to_string(longest) + " bytes and " +
               std::to_string(most_items) + " items are looked at");
    }
    size_t position = 0, wildcards = 0;
    for (const std::string &item : items) {
        const size_t colon = item.find(':');
        if (colon == std::string::npos || item.find(':', colon + 1) != std::string::npos) {
            refuse("have the item \"" + printable(item) +
                   "\", and one has a key, \":\" and a value");
        }
        const std::string key = trimmed(item.substr(0, colon));
        check_key(key);
        if (trimmed(item.substr(colon + 1)) == "*") {
            check_wildcard(text, item, position, key);
            wildcards++;
        }
        keys_.push_back(item.substr(0, colon));
        position += item.size() + 1;
    }
    if (wildcards == 0 || wildcards == items.size()) {
        refuse(wildcards == 0 ? "ask for nothing: there is no item such as \"Package:*\""
                              : "have no condition: there is no item such as \"Is_hotpatch:1\"");
    }
}

std::vector<std::pair<std::string, std::string>> Criteria::take_apart(
    const std::string &answer) const {
    std::vector<std::pair<std::string, std::string>> values;
    size_t start = 0;
    for (size_t i = 0; i < keys_.size(); i++) {
        start += keys_[i].size() + 1;
        const bool is_last = i + 1 == keys_.size();
        const size_t end =
            is_last ? std::string::npos : answer.find("#" + keys_[i + 1] + ":", start);
        const std::string value = start <= answer.size() ? answer.substr(start, end - start) : "";
        values.emplace_back(trimmed(keys_[i]), value);
        start = end == std::string::npos ? answer.size() : end + 1;
    }
    return values;
}

}  // namespace cmpntctl
