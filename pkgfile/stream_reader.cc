// Reads a stream line by line into a handler, in a buffer that grows with the lines.
#include "pkgfile/stream_reader.hh"

#include <stdlib.h>
#include <string.h>

#include "common/log.hh"

namespace {

constexpr char reader_name[] = "parse_info_from_stream";
constexpr size_t largest_size_that_grows = 0xFFFFF;

// What lines are read from: a host's stream, of which no more is taken than the lines handed over, or
// a block of our own, which leaves most lines where they lie.
TextLine whole_line(FILE *, size_t) { return {nullptr, 0}; }
TextLine whole_line(LineBlock *block, size_t longest) {
    return next_line_in_block(*block, longest);
}

char *get_text(FILE *stream, char *text, size_t size) {
    return fgets(text, static_cast<int>(size), stream);
}
char *get_text(LineBlock *block, char *text, size_t size) {
    return gets_from_block(*block, text, size);
}

bool has_failed(FILE *stream) { return ferror(stream) != 0; }
bool has_failed(const LineBlock *block) { return block->failed; }

template <typename Source>
struct LineReader {
    Source *source;
    char *&buffer;
    size_t size;
    TextLine line;
    int32_t line_number;
};

enum class Next { line, line_without_newline, end, failure, no_memory };

// What the end of the stream means with `held` characters of a line in the buffer.
template <typename Source>
Next end_of_stream(const LineReader<Source> &reader, size_t held) {
    if (has_failed(reader.source)) {
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

bool grow(char *&buffer, size_t &size) {
    char *grown = static_cast<char *>(xrealloc(buffer, size * 2));
    if (grown == nullptr) {
        return false;
    }
    buffer = grown;
    size *= 2;
    return true;
}

// Reads one line, however long, into the buffer and ends it at its newline.
template <typename Source>
Next line_into_buffer(LineReader<Source> &reader) {
    size_t held = 0;
    reader.buffer[0] = '\0';
    for (;;) {
        char *text = reader.buffer + held;
        const size_t room = reader.size - held - 1;
        if (get_text(reader.source, text, room + 1) == nullptr) {
            reader.line = {reader.buffer, held};
            return end_of_stream(reader, held);
        }
        char *end = strchrnul(text, '\n');
        const bool has_newline = *end == '\n';
        *end = '\0';
        held = static_cast<size_t>(end - reader.buffer);
        reader.line = {reader.buffer, held};
        if (has_newline) {
            return Next::line;
        }
        if (held < reader.size - 1) {
            CMPNT_LOG_AS(log_error, reader_name, "Missing new line character at end of file!\n");
            return Next::line_without_newline;
        }
        if (reader.size > largest_size_that_grows) {
            CMPNT_LOG_AS(log_error, reader_name,
                         "Excessively long line at %d. maybe corrupt file.\n", reader.line_number);
            return Next::failure;
        }
        if (!grow(reader.buffer, reader.size)) {
            return Next::no_memory;
        }
    }
}

// A line that would fit the buffer may stay where it lies.
template <typename Source>
Next next_line(LineReader<Source> &reader) {
    reader.line = whole_line(reader.source, reader.size - 2);
    return reader.line.text != nullptr ? Next::line : line_into_buffer(reader);
}

template <typename Source>
int32_t read_source(const LineReceiver &receiver, Source *source, char *&line_buffer) {
    LineReader<Source> reader = {source, line_buffer, line_buffer_size, {}, 1};
    for (;;) {
        switch (next_line(reader)) {
            case Next::line: {
                reader.line_number++;
                const int32_t result =
                    receiver.handler(receiver.record, reader.line, receiver.param);
                if (result == handler_error) {
                    CMPNT_LOG_AS(log_error, reader_name, "parse_line error\n");
                    return -1;
                }
                if (result != 0) {
                    return 0;
                }
                if (reader.buffer == nullptr) {
                    return -1;  // lost by a handler that read into it as well
                }
                break;
            }
            case Next::line_without_newline:
                receiver.handler(receiver.record, reader.line, receiver.param);
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

// A host's handler behind ours.
struct HostReceiver {
    cmpnt_line_handler handler;
    void *record;
};

int32_t call_host(void *receiver, TextLine line, cmpnt_file_param *param) {
    const HostReceiver *host = static_cast<HostReceiver *>(receiver);
    return host->handler(host->record, line.text, param);
}

}  // namespace

int32_t read_lines(const LineReceiver &receiver, FILE *source, char *&line_buffer) {
    return read_source(receiver, source, line_buffer);
}

int32_t read_lines(const LineReceiver &receiver, LineBlock *source, char *&line_buffer) {
    return read_source(receiver, source, line_buffer);
}

int32_t parse_info_from_stream(cmpnt_line_handler handler, void *record, FILE *stream,
                               char **line_buffer, cmpnt_file_param *param) {
    if (handler == nullptr || stream == nullptr || line_buffer == nullptr ||
        *line_buffer == nullptr) {
        return -1;
    }
    HostReceiver host = {handler, record};
    const int32_t result = read_lines({call_host, &host, param}, stream, *line_buffer);
    if (result == read_without_memory) {
        *line_buffer = nullptr;
    }
    return result == 0 ? 0 : -1;
}
