// The running maximum of a search for the newest version.
#ifndef CMPNT_LIST_NEWEST_VERSION_HH
#define CMPNT_LIST_NEWEST_VERSION_HH

#include <stdio.h>

#include "libcmpnt_db.h"

struct NewestVersion {
    char text[CMPNT_VERSION_SIZE] = {};

    // Of equal versions the first stays.
    bool raise_to(const char *version) {
        if (cmpnt_version_compare(version, text) != CMPNT_VERSION_NEWER) {
            return false;
        }
        snprintf(text, sizeof(text), "%s", version);
        return true;
    }
};

#endif
