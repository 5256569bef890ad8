// White space at both ends of a text, taken away in place.
#include <string.h>

#include "pkgfile/field.hh"

char *cmpnt_trim(char *text) {
    if (text == nullptr) {
        return nullptr;
    }
    size_t length = strlen(text);
    while (length > 0 && is_space(text[length - 1])) {
        text[--length] = '\0';
    }
    size_t leading = 0;
    while (is_space(text[leading])) {
        leading++;
    }
    if (leading > 0) {
        memmove(text, text + leading, length - leading + 1);
    }
    return text;
}
