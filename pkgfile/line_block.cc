// A file read in blocks, whose lines are handed out where they lie.
#include "pkgfile/line_block.hh"

#include <unistd.h>

namespace {

size_t held(const LineBlock &block) { return static_cast<size_t>(block.end - block.next); }

}  // namespace

bool refill_block(LineBlock &block) {
    if (block.failed) {
        return false;
    }
    const size_t kept = held(block);
    memmove(block.text, block.next, kept);
    const ssize_t count = read(block.fd, block.text + kept, block.capacity - kept);
    block.failed = count < 0;
    block.next = block.text;
    block.end = block.text + kept + (count > 0 ? count : 0);
    *block.end = '\0';
    return count > 0;
}

char *gets_from_block(LineBlock &block, char *destination, size_t size) {
    size_t length = 0;
    bool ended = false;
    while (!ended && length < size - 1 && (held(block) > 0 || refill_block(block))) {
        const size_t room = size - 1 - length;
        const size_t count = held(block) < room ? held(block) : room;
        const char *newline = static_cast<const char *>(memchr(block.next, '\n', count));
        ended = newline != nullptr;
        const size_t taken = ended ? static_cast<size_t>(newline + 1 - block.next) : count;
        memcpy(destination + length, block.next, taken);
        block.next += taken;
        length += taken;
    }
    if (length == 0 || block.failed) {
        return nullptr;
    }
    destination[length] = '\0';
    return destination;
}
