// White space at both ends of a text, taken away in place.
#include <ctype.h>
#include <string.h>

#include "libcmpnt_db.h"

char *cmpnt_trim(char *text) {
    if (text == nullptr) {
        return nullptr;
    }
    size_t length = strlen(text);
    while (length > 0 && isspace(static_cast<unsigned char>(text[length - 1]))) {
        text[--length] = '\0';
    }
    size_t leading = 0;
    while (isspace(static_cast<unsigned char>(text[leading]))) {
        leading++;
    }
    if (leading > 0) {
        memmove(text, text + leading, length - leading + 1);
    }
    return text;
}
