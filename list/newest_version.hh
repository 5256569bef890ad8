// The running maximum of a search for the newest version.
#ifndef CMPNT_LIST_NEWEST_VERSION_HH
#define CMPNT_LIST_NEWEST_VERSION_HH

#include <stdio.h>

#include "libcmpnt_db.h"

struct NewestVersion {
    char text[CMPNT_VERSION_SIZE] = {};

    // Of equal versions the first stays.
    bool raise_to(const char *version) {
        constexpr int32_t newer = 4;
        if (cmpnt_version_compare(version, text) != newer) {
            return false;
        }
        snprintf(text, sizeof(text), "%s", version);
        return true;
    }
};

#endif
