// Streams over files that others name.
#include "common/open_stream.hh"

#include <fcntl.h>

#include "common/guard.hh"

FILE *open_to_read(const char *path) {
    Descriptor file(open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    FILE *stream = file ? fdopen(file.get(), "r") : nullptr;
    if (stream != nullptr) {
        file.release();
    }
    return stream;
}
