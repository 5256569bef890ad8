// "Field: value" lines.
#ifndef CMPNT_PKGFILE_FIELD_HH
#define CMPNT_PKGFILE_FIELD_HH

#include "libcmpnt_db.h"

// The trimmed value of a line, inside the line; its length is 0 when there is none.
struct FieldValue {
    const char *text;
    size_t length;
};

// The value starts one character, the colon, behind the field's name; neither is compared.
FieldValue field_value(const char *field, const char *line);

bool line_is_blank(const char *line);  // empty or white space alone

#endif
