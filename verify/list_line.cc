// The lines of the lists that verification reads.
#include "verify/list_line.hh"

#include <string.h>

bool read_list_line(FILE *list, ListLine &line) {
    memset(line.text, 0, sizeof(line.text));
    if (fgets(line.text, sizeof(line.text), list) == nullptr) {
        return false;
    }
    const size_t length = strlen(line.text);
    line.was_empty = length == 0;
    if (!line.was_empty) {
        line.text[length - 1] = '\0';
    }
    return true;
}
