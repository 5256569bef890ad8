// The reader beneath parse_info_from_stream, for callers inside the library.
#ifndef CMPNT_PKGFILE_STREAM_READER_HH
#define CMPNT_PKGFILE_STREAM_READER_HH

#include "libcmpnt_db.h"
#include "pkgfile/line_block.hh"

inline constexpr uint32_t line_buffer_size = 1024;
inline constexpr int32_t handler_stop = -1;
inline constexpr int32_t handler_error = -4;

// As cmpnt_line_handler.
using TextLineHandler = int32_t (*)(void *record, TextLine line, cmpnt_file_param *param);

struct LineReceiver {
    TextLineHandler handler;
    void *record;
    cmpnt_file_param *param;
};

// As parse_info_from_stream, but the buffer stays the caller's to free in every outcome.
// Results: 0, -1, and read_without_memory when the buffer could not grow.
inline constexpr int32_t read_without_memory = -2;
int32_t read_lines(const LineReceiver &receiver, FILE *source, char *&line_buffer);
int32_t read_lines(const LineReceiver &receiver, LineBlock *source, char *&line_buffer);

#endif
