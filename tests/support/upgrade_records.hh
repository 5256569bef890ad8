// Records for the upgrade lists, and what a list holds.
#ifndef CMPNT_TESTS_UPGRADE_RECORDS_HH
#define CMPNT_TESTS_UPGRADE_RECORDS_HH

#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "libcmpnt_db.h"

template <size_t size>
void set_text(char (&field)[size], const std::string &text) {
    snprintf(field, size, "%s", text.c_str());
}

inline cmpnt_upgrade_value upgrade_record(const std::string &patch_name,
                                          const std::string &pkg_name,
                                          const std::string &version = "1.0",
                                          const std::string &state = "active",
                                          const std::string &path = "") {
    cmpnt_upgrade_value record = {};
    set_text(record.patch_name, patch_name);
    set_text(record.pkg_name, pkg_name);
    set_text(record.cur_version, version);
    set_text(record.state_name, state);
    set_text(record.pkg_state_name, state);
    set_text(record.cur_pkg_path, path);
    return record;
}

// Whether the records are the same to the last byte, that of the padding included.
inline bool same_record(const cmpnt_upgrade_value &a, const cmpnt_upgrade_value &b) {
    const void *first = &a;
    const void *second = &b;
    return memcmp(first, second, sizeof(a)) == 0;
}

// "PATCH PACKAGE VERSION" of each node.
inline std::vector<std::string> records_of(const cmpnt_list_head &head) {
    std::vector<std::string> records;
    for (cmpnt_list_head *link = head.next; link != &head; link = link->next) {
        const cmpnt_upgrade_value &value = CMPNT_UPGRADE_NODE(link)->value;
        records.push_back(std::string(value.patch_name) + " " + value.pkg_name + " " +
                          value.cur_version);
    }
    return records;
}

// Whether the links back mirror the links forth.
inline bool is_well_linked(const cmpnt_list_head &head) {
    const cmpnt_list_head *link = &head;
    do {
        if (link->next->prev != link) {
            return false;
        }
        link = link->next;
    } while (link != &head);
    return true;
}

#endif
