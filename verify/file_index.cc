// A list file in memory. Whatever stands in the way of that, the file is read for each question.
#include "verify/file_index.hh"

#include <stdlib.h>
#include <string.h>

#include "common/guard.hh"
#include "common/open_stream.hh"
#include "verify/list_line.hh"

namespace {

constexpr off_t largest_file = 8 << 20;

bool same_time(const struct timespec &a, const struct timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

}  // namespace

bool FileIndex::is_seen(const struct stat &status) const {
    return state_ != State::unknown && status.st_dev == seen_.st_dev &&
           status.st_ino == seen_.st_ino && status.st_size == seen_.st_size &&
           same_time(status.st_mtim, seen_.st_mtim) && same_time(status.st_ctim, seen_.st_ctim);
}

bool FileIndex::is_current() {
    struct stat status;
    if (stat(path_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largest_file) {
        forget();
        return false;
    }
    if (!is_seen(status)) {
        forget();
        seen_ = status;
        state_ = State::seen;
        return false;
    }
    if (state_ == State::seen) {
        state_ = load() ? State::loaded : State::refused;
    }
    return state_ == State::loaded;
}

void FileIndex::forget() {
    texts.clear();
    marked_texts.clear();
    free(block_);
    block_ = nullptr;
    used_ = 0;
    state_ = State::unknown;
}

// A line loses a character and is given a zero byte, so the lines have room in a block of the file's
// size; if not, the file has grown.
const char *FileIndex::keep(const char *text) {
    const size_t size = strlen(text) + 1;
    if (size > static_cast<size_t>(seen_.st_size) - used_) {
        return nullptr;
    }
    char *copy = block_ + used_;
    memcpy(copy, text, size);
    used_ += size;
    return copy;
}

bool FileIndex::add_lines() {
    const Stream list(open_to_read(path_));
    if (!list) {
        return false;
    }
    ListLine line;
    while (read_list_line(list.get(), line)) {
        if (!add_line_(*this, line.text)) {
            return false;
        }
    }
    return ferror(list.get()) == 0;
}

bool FileIndex::load() {
    block_ = static_cast<char *>(calloc(1, static_cast<size_t>(seen_.st_size) + 1));
    if (block_ == nullptr || !add_lines()) {
        return false;
    }
    texts.sort();
    marked_texts.sort();
    return true;
}
