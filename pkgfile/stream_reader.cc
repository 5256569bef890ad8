// Reads a stream line by line into a handler, in a buffer that grows with the lines.
#include "pkgfile/stream_reader.hh"

#include <stdlib.h>
#include <string.h>

#include "common/log.hh"

namespace {

constexpr char reader_name[] = "parse_info_from_stream";
constexpr size_t largest_size_that_grows = 0xFFFFF;

struct LineReader {
    FILE *stream;
    char *&buffer;
    size_t size;
    int32_t line_number;
};

enum class Next { line, line_without_newline, end, failure, no_memory };

// What the end of the stream means with `held` characters of a line in the buffer.
Next end_of_stream(const LineReader &reader, size_t held) {
    if (ferror(reader.stream)) {
        CMPNT_LOG_AS(log_error, reader_name, "fgets fail.\n");
        return Next::failure;
    }
    if (held == 0) {
        return Next::end;
    }
    CMPNT_LOG_AS(log_trace, reader_name, "Missing new line character at end of file!\n");
    return Next::line_without_newline;
}

void *xrealloc(void *block, size_t size) {
    void *grown = realloc(block, size);
    if (grown == nullptr) {
        CMPNT_LOG(log_error, "realloc fail.\n");
    }
    return grown;
}

bool grow(LineReader &reader) {
    char *grown = static_cast<char *>(xrealloc(reader.buffer, reader.size * 2));
    if (grown == nullptr) {
        return false;
    }
    reader.buffer = grown;
    reader.size *= 2;
    return true;
}

// Reads one line, however long, and ends it at its newline.
Next next_line(LineReader &reader) {
    size_t held = 0;
    reader.buffer[0] = '\0';
    for (;;) {
        char *text = reader.buffer + held;
        const size_t room = reader.size - held - 1;
        if (fgets_unlocked(text, static_cast<int>(room + 1), reader.stream) == nullptr) {
            return end_of_stream(reader, held);
        }
        char *newline = strchr(text, '\n');
        if (newline != nullptr) {
            *newline = '\0';
            reader.line_number++;
            return Next::line;
        }
        const size_t length = strlen(text);
        if (length < room) {
            CMPNT_LOG_AS(log_error, reader_name, "Missing new line character at end of file!\n");
            return Next::line_without_newline;
        }
        if (reader.size > largest_size_that_grows) {
            CMPNT_LOG_AS(log_error, reader_name,
                         "Excessively long line at %d. maybe corrupt file.\n", reader.line_number);
            return Next::failure;
        }
        held += length;
        if (!grow(reader)) {
            return Next::no_memory;
        }
    }
}

}  // namespace

int32_t read_lines(cmpnt_line_handler handler, void *record, FILE *stream, char *&line_buffer,
                   cmpnt_file_param *param) {
    LineReader reader = {stream, line_buffer, line_buffer_size, 1};
    for (;;) {
        switch (next_line(reader)) {
            case Next::line: {
                const int32_t result = handler(record, reader.buffer, param);
                if (result == handler_error) {
                    CMPNT_LOG_AS(log_error, reader_name, "parse_line error\n");
                    return -1;
                }
                if (result != 0) {
                    return 0;
                }
                break;
            }
            case Next::line_without_newline:
                handler(record, reader.buffer, param);
                return 0;
            case Next::end:
                return 0;
            case Next::failure:
                return -1;
            case Next::no_memory:
                return read_without_memory;
        }
    }
}

int32_t parse_info_from_stream(cmpnt_line_handler handler, void *record, FILE *stream,
                               char **line_buffer, cmpnt_file_param *param) {
    if (handler == nullptr || stream == nullptr || line_buffer == nullptr ||
        *line_buffer == nullptr) {
        return -1;
    }
    const int32_t result = read_lines(handler, record, stream, *line_buffer, param);
    if (result == read_without_memory) {
        *line_buffer = nullptr;
    }
    return result == 0 ? 0 : -1;
}
