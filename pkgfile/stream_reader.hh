// The reader beneath parse_info_from_stream, for callers inside the library.
#ifndef CMPNT_PKGFILE_STREAM_READER_HH
#define CMPNT_PKGFILE_STREAM_READER_HH

#include "libcmpnt_db.h"

inline constexpr uint32_t line_buffer_size = 1024;
inline constexpr int32_t handler_stop = -1;
inline constexpr int32_t handler_error = -4;

// As parse_info_from_stream, but the buffer stays the caller's to free in every outcome.
// Results: 0, -1, and read_without_memory when the buffer could not grow.
inline constexpr int32_t read_without_memory = -2;
int32_t read_lines(cmpnt_line_handler handler, void *record, FILE *stream, char *&line_buffer,
                   cmpnt_file_param *param);

#endif
