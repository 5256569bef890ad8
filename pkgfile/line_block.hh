// A file read in blocks, whose lines are handed out where they lie. It reads ahead, so it is for files
// that nobody else reads from.
#ifndef CMPNT_PKGFILE_LINE_BLOCK_HH
#define CMPNT_PKGFILE_LINE_BLOCK_HH

#include <stddef.h>
#include <string.h>

#include "pkgfile/text_line.hh"

struct LineBlock {
    static constexpr size_t capacity = 16 * 1024;

    int fd;
    bool failed;  // a read did
    char *next;   // what is not handed out yet, up to the zero byte at end
    char *end;
    char text[capacity + 1];
};

// The block is the caller's memory, too much for a stack beneath other people's handlers.
inline void start_block(LineBlock &block, int fd) {
    block.fd = fd;
    block.failed = false;
    block.next = block.text;
    block.end = block.text;
    *block.end = '\0';
}

// Moves what is held to the front and reads more behind it; false when there is no room or no more.
bool refill_block(LineBlock &block);

// The next line, ended at its newline, when it has at most `longest` characters and no zero byte;
// else a null text, and nothing is taken.
inline TextLine next_line_in_block(LineBlock &block, size_t longest) {
    char *newline = strchrnul(block.next, '\n');
    while (newline == block.end) {
        const size_t searched = static_cast<size_t>(newline - block.next);
        if (!refill_block(block)) {
            return {nullptr, 0};
        }
        newline = strchrnul(block.next + searched, '\n');
    }
    const TextLine line = {block.next, static_cast<size_t>(newline - block.next)};
    if (*newline == '\0' || line.length > longest) {
        return {nullptr, 0};
    }
    *newline = '\0';
    block.next = newline + 1;
    return line;
}

// As fgets.
char *gets_from_block(LineBlock &block, char *destination, size_t size);

#endif
