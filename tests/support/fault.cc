#include "tests/support/fault.hh"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <time.h>

#include <algorithm>

struct sqlite3;

namespace {

constexpr int64_t nanoseconds = 1000000000;  // of a second

struct WrappedFunction {
    const char *name;
    int calls = 0;
    int fail_from = 0;  // the call number, 0: never
    int fail_to = 0;
    int error = 0;
    int limited_call = 0;
    size_t limit = 0;
};

#define WRAPPED(name)                                                                              \
    { #name }
WrappedFunction functions[] = {
    WRAPPED(calloc),       WRAPPED(realloc),
    WRAPPED(strdup),       WRAPPED(strndup),
    WRAPPED(open64),       WRAPPED(close),
    WRAPPED(dup),          WRAPPED(dup2),
    WRAPPED(fcntl64),      WRAPPED(fsync),
    WRAPPED(sync),         WRAPPED(write),
    WRAPPED(fopen64),      WRAPPED(fclose),
    WRAPPED(fwrite),       WRAPPED(fileno),
    WRAPPED(opendir),      WRAPPED(closedir),
    WRAPPED(lstat64),      WRAPPED(statvfs64),
    WRAPPED(rename),       WRAPPED(remove),
    WRAPPED(rmdir),        WRAPPED(chmod),
    WRAPPED(chdir),        WRAPPED(popen),
    WRAPPED(pclose),       WRAPPED(nanosleep),
    WRAPPED(ferror),       WRAPPED(sqlite3_open),
    WRAPPED(sqlite3_exec), WRAPPED(sqlite3_close),
    WRAPPED(mkdir),        WRAPPED(vsnprintf),
    WRAPPED(fseeko64),     WRAPPED(fflush),
    WRAPPED(read),         WRAPPED(cmpnt_get_dest_path),
    WRAPPED(fputs),        WRAPPED(readdir64),
};
const char *sequence[256];
int sequence_length = 0;
bool sleeps_are_skipped = false;
int64_t nanoseconds_slept = 0;
bool entry_types_are_hidden = false;
bool space_is_told = false;
unsigned long told_block_size = 0;
unsigned long long told_blocks = 0;

WrappedFunction *find(const char *name) {
    for (WrappedFunction &function : functions) {
        if (strcmp(function.name, name) == 0) {
            return &function;
        }
    }
    fprintf(stderr, "fault: %s is not wrapped\n", name);
    __builtin_trap();
}

// The names alone, and no memory taken: calloc comes through here too.
void remember(const char *name) {
    const int place = __atomic_fetch_add(&sequence_length, 1, __ATOMIC_RELAXED);
    if (place < static_cast<int>(std::size(sequence))) {
        sequence[place] = name;
    }
}

// Counts the call; true when it is to fail, with errno set.
bool fails(const char *name) {
    WrappedFunction *function = find(name);
    function->calls++;
    remember(function->name);
    if (function->fail_from == 0 || function->calls < function->fail_from ||
        function->calls > function->fail_to) {
        return false;
    }
    errno = function->error;
    return true;
}

size_t limited(const char *name, size_t size) {
    const WrappedFunction *function = find(name);
    return function->calls == function->limited_call ? std::min(size, function->limit) : size;
}

int64_t in_nanoseconds(const timespec &time) {
    return static_cast<int64_t>(time.tv_sec) * nanoseconds + time.tv_nsec;
}

}  // namespace

namespace fault {

void fail(const char *name, int call, int error, int times) {
    WrappedFunction *function = find(name);
    function->fail_from = function->calls + call;
    function->fail_to = function->fail_from + times - 1;
    function->error = error;
}

void limit(const char *name, int call, size_t size) {
    WrappedFunction *function = find(name);
    function->limited_call = function->calls + call;
    function->limit = size;
}

int calls(const char *name) { return find(name)->calls; }

std::string order_of(std::initializer_list<const char *> names) {
    std::string order;
    const int known = std::min(sequence_length, static_cast<int>(std::size(sequence)));
    for (int i = 0; i < known; i++) {
        for (const char *name : names) {
            if (find(name)->name == sequence[i]) {
                order += (order.empty() ? "" : " ") + std::string(name);
            }
        }
    }
    return known < sequence_length ? order + " ..." : order;
}

void skip_sleeps() { sleeps_are_skipped = true; }

double slept() { return static_cast<double>(nanoseconds_slept) / nanoseconds; }

void hide_entry_types() { entry_types_are_hidden = true; }

void tell_space(unsigned long block_size, unsigned long long blocks) {
    space_is_told = true;
    told_block_size = block_size;
    told_blocks = blocks;
}

void reset() {
    for (WrappedFunction &function : functions) {
        function = {function.name};
    }
    sequence_length = 0;
    sleeps_are_skipped = false;
    nanoseconds_slept = 0;
    entry_types_are_hidden = false;
    space_is_told = false;
}

}  // namespace fault

// WRAP(result, name, parameters, arguments, failure): the plain cases.
#define WRAP(result, name, parameters, arguments, failure)                                         \
    result __real_##name parameters;                                                               \
    result __wrap_##name parameters {                                                              \
        if (fails(#name)) {                                                                        \
            return failure;                                                                        \
        }                                                                                          \
        return __real_##name arguments;                                                            \
    }

extern "C" {

WRAP(void *, calloc, (size_t count, size_t size), (count, size), nullptr)
WRAP(void *, realloc, (void *block, size_t size), (block, size), nullptr)
WRAP(char *, strdup, (const char *text), (text), nullptr)
WRAP(char *, strndup, (const char *text, size_t size), (text, size), nullptr)
WRAP(int, close, (int fd), (fd), -1)
WRAP(int, dup, (int fd), (fd), -1)
WRAP(int, dup2, (int from, int to), (from, to), -1)
WRAP(int, fsync, (int fd), (fd), -1)
WRAP(ssize_t, read, (int fd, void *buffer, size_t size), (fd, buffer, limited("read", size)), -1)
WRAP(ssize_t, write, (int fd, const void *data, size_t size), (fd, data, limited("write", size)),
     -1)
WRAP(FILE *, fopen64, (const char *path, const char *mode), (path, mode), nullptr)
WRAP(size_t, fwrite, (const void *data, size_t size, size_t count, FILE *stream),
     (data, size, count, stream), 0)
WRAP(int, fputs, (const char *text, FILE *stream), (text, stream), EOF)
WRAP(int, fflush, (FILE * stream), (stream), EOF)
WRAP(int, fseeko64, (FILE * stream, off64_t offset, int whence), (stream, offset, whence), -1)
WRAP(int, fileno, (FILE * stream), (stream), -1)
WRAP(int, ferror, (FILE * stream), (stream), 1)
WRAP(DIR *, opendir, (const char *path), (path), nullptr)
WRAP(int, lstat64, (const char *path, struct stat64 *status), (path, status), -1)
WRAP(int, vsnprintf, (char *text, size_t size, const char *format, va_list arguments),
     (text, size, format, arguments), -1)
WRAP(int, rename, (const char *from, const char *to), (from, to), -1)
WRAP(int, remove, (const char *path), (path), -1)
WRAP(int, rmdir, (const char *path), (path), -1)
WRAP(int, chmod, (const char *path, mode_t mode), (path, mode), -1)
WRAP(int, chdir, (const char *path), (path), -1)
WRAP(int, mkdir, (const char *path, mode_t mode), (path, mode), -1)
WRAP(FILE *, popen, (const char *command, const char *mode), (command, mode), nullptr)

struct dirent64 *__real_readdir64(DIR *directory);
struct dirent64 *__wrap_readdir64(DIR *directory) {
    struct dirent64 *entry = fails("readdir64") ? nullptr : __real_readdir64(directory);
    if (entry != nullptr && entry_types_are_hidden) {
        entry->d_type = DT_UNKNOWN;
    }
    return entry;
}

// What is to be closed is closed all the same.
int __real_fclose(FILE *stream);
int __wrap_fclose(FILE *stream) {
    const bool failing = fails("fclose");
    const int error = errno;
    const int result = __real_fclose(stream);
    if (failing) {
        errno = error;
        return EOF;
    }
    return result;
}

int __real_closedir(DIR *directory);
int __wrap_closedir(DIR *directory) {
    const bool failing = fails("closedir");
    const int error = errno;
    const int result = __real_closedir(directory);
    if (failing) {
        errno = error;
        return -1;
    }
    return result;
}

int __real_pclose(FILE *stream);
int __wrap_pclose(FILE *stream) {
    const bool failing = fails("pclose");
    const int error = errno;
    const int result = __real_pclose(stream);
    if (failing) {
        errno = error;
        return -1;
    }
    return result;
}

int __real_statvfs64(const char *path, struct statvfs64 *status);
int __wrap_statvfs64(const char *path, struct statvfs64 *status) {
    if (fails("statvfs64")) {
        return -1;
    }
    const int result = __real_statvfs64(path, status);
    if (result == 0 && space_is_told) {
        status->f_frsize = told_block_size;
        status->f_bavail = told_blocks;
    }
    return result;
}

void __real_sync(void);
void __wrap_sync(void) {
    fails("sync");  // only counted: a sync of the whole machine is nobody's test
}

// One that fails is half over.
int __real_nanosleep(const timespec *time, timespec *rest);
int __wrap_nanosleep(const timespec *time, timespec *rest) {
    const int64_t asked = in_nanoseconds(*time);
    int64_t left = 0;
    int result = 0;
    if (fails("nanosleep")) {
        left = asked / 2;
        *rest = {static_cast<time_t>(left / nanoseconds), static_cast<long>(left % nanoseconds)};
        result = -1;
    } else if (!sleeps_are_skipped) {
        result = __real_nanosleep(time, rest);
        left = result == 0 ? 0 : in_nanoseconds(*rest);
    }
    nanoseconds_slept += asked - left;
    return result;
}

int __real_open64(const char *path, int flags, ...);
int __wrap_open64(const char *path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return fails("open64") ? -1 : __real_open64(path, flags, mode);
}

int __real_fcntl64(int fd, int command, ...);
int __wrap_fcntl64(int fd, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    return fails("fcntl64") ? -1 : __real_fcntl64(fd, command, argument);
}

WRAP(int, sqlite3_open, (const char *path, sqlite3 **db), (path, db), 14 /* SQLITE_CANTOPEN */)
WRAP(int, sqlite3_exec,
     (sqlite3 * db, const char *sql, int (*callback)(void *, int, char **, char **), void *context,
      char **message),
     (db, sql, callback, context, message), 1 /* SQLITE_ERROR */)

// One of the library's own: its caller handles a failure that no file name leads to today.
WRAP(int32_t, cmpnt_get_dest_path, (const char *base, char *dst, uint32_t type), (base, dst, type),
     -1)

// As SQLite does with statements left open: the handle stays, so close it behind the caller's back.
int __real_sqlite3_close(sqlite3 *db);
int __wrap_sqlite3_close(sqlite3 *db) {
    const bool failing = fails("sqlite3_close");
    const int result = __real_sqlite3_close(db);
    return failing ? 5 /* SQLITE_BUSY */ : result;
}

}  // extern "C"
