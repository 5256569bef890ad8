// A file read in blocks, whose lines are handed out where they lie.
#include "pkgfile/line_block.hh"

#include <unistd.h>

namespace {

size_t held(const LineBlock &block) { return static_cast<size_t>(block.end - block.next); }

// Moves what is held to the front and reads more behind it; false when there is no room or no more.
bool refill(LineBlock &block) {
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

}  // namespace

TextLine line_across_blocks(LineBlock &block, size_t longest) {
    const char *end = strchrnul(block.next, '\n');
    if (end != block.end || !refill(block)) {
        return {nullptr, 0};
    }
    return next_line_in_block(block, longest);
}

char *gets_from_block(LineBlock &block, char *destination, size_t size) {
    size_t length = 0;
    bool ended = false;
    while (!ended && length < size - 1 && (held(block) > 0 || refill(block))) {
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
