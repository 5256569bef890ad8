// A text on its way into a field of a record.
#ifndef CMPNT_DB_COPY_TEXT_HH
#define CMPNT_DB_COPY_TEXT_HH

#include <string.h>

#include "libcmpnt_db.h"

// A null text leaves the field as it is; one that does not fit is cut, and that is a failure.
inline int32_t copy_text(char *field, size_t size, const char *text) {
    if (text == nullptr) {
        return 0;
    }
    const size_t length = strnlen(text, size);
    if (length >= size) {
        return cmpnt_snprintf(field, static_cast<int32_t>(size), "%s", text);  // cuts, and says so
    }
    memcpy(field, text, length + 1);
    return 0;
}

template <size_t size>
int32_t copy_text(char (&field)[size], const char *text) {
    return copy_text(field, size, text);
}

#endif
