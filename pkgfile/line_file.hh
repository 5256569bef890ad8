// A file that a line handler parses into a record.
#ifndef CMPNT_PKGFILE_LINE_FILE_HH
#define CMPNT_PKGFILE_LINE_FILE_HH

#include "pkgfile/stream_reader.hh"

struct LineFile {
    const char *path;
    TextLineHandler handler;
    void *record;
    size_t zeroed;  // bytes of the record to zero once the file and the buffers are there
};

// Messages bear the caller's name.
int32_t parse_line_file(const char *caller, const LineFile &file, cmpnt_file_param *param);

#endif
