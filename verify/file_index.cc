// A list file in memory. Whatever stands in the way of that, the file is read for each question.
#include "verify/file_index.hh"

#include <time.h>

#include "common/guard.hh"
#include "common/open_stream.hh"
#include "verify/list_line.hh"

namespace {

constexpr off_t largest_file = 2 << 20;  // of short lines the index is many times as large

bool same_time(const struct timespec &a, const struct timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

bool same_state(const struct stat &a, const struct stat &b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           same_time(a.st_mtim, b.st_mtim) && same_time(a.st_ctim, b.st_ctim);
}

// A file that was written at the clock's present tick may be written again without a trace in its
// times. They are whole seconds where the file system knows no finer ones.
bool is_settled(const struct stat &status) {
    const struct timespec &written = status.st_mtim;
    struct timespec now;
    if (clock_gettime(CLOCK_REALTIME_COARSE, &now) != 0) {
        return false;
    }
    return now.tv_sec > written.tv_sec ||
           (now.tv_sec == written.tv_sec && written.tv_nsec != 0 && now.tv_nsec > written.tv_nsec);
}

}  // namespace

bool add_whole_line(FileIndex &index, char *line) { return index.texts.add(line); }

bool FileIndex::is_current() {
    struct stat status;
    if (stat(path_, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > largest_file) {
        return false;
    }
    if (same_state(status, tried_)) {
        return is_loaded_;
    }
    if (!is_settled(status)) {
        return false;
    }
    tried_ = status;
    is_loaded_ = load();
    return is_loaded_;
}

bool FileIndex::load() {
    texts.clear();
    marked_texts.clear();
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
    texts.sort();
    marked_texts.sort();
    return ferror(list.get()) == 0;
}
