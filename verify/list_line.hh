// The lines of the lists that verification reads: digests, whitelists, installed files, saved patches.
#ifndef CMPNT_VERIFY_LIST_LINE_HH
#define CMPNT_VERIFY_LIST_LINE_HH

#include <stdio.h>

#include "libcmpnt_db.h"

struct ListLine {
    char text[CMPNT_LINE_SIZE];  // zero behind the text, unless the file holds zero bytes
    bool was_empty;              // there was nothing to cut: it begins with a zero byte
};

// Reads the next line, or the next 1023 bytes of a longer one, and cuts its last character, which is
// taken for the newline. False at the end.
bool read_list_line(FILE *list, ListLine &line);

#endif
