// Streams over files that others name.
#include "common/open_stream.hh"

#include <fcntl.h>

#include "common/guard.hh"

namespace {

FILE *open_without_waiting(const char *path, int access, const char *mode) {
    Descriptor file(open(path, access | O_NONBLOCK | O_CLOEXEC));
    FILE *stream = file ? fdopen(file.get(), mode) : nullptr;
    if (stream != nullptr) {
        file.release();
    }
    return stream;
}

}  // namespace

FILE *open_to_read(const char *path) { return open_without_waiting(path, O_RDONLY, "r"); }

FILE *open_to_update(const char *path) { return open_without_waiting(path, O_RDWR, "r+"); }
