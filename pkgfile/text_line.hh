// A line together with its length, which whoever found the line knows anyway.
#ifndef CMPNT_PKGFILE_TEXT_LINE_HH
#define CMPNT_PKGFILE_TEXT_LINE_HH

#include <stddef.h>

struct TextLine {
    char *text;  // ends with a zero byte
    size_t length;
};

#endif
