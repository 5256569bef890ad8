// Faults on purpose: calls that the library makes can be made to fail, and are counted.
//
// The functions in wrapped_functions.txt are wrapped at link time, in everything that is linked into
// a test program and not in shared libraries. With 64-bit file offsets the C library's names carry
// "64" (open64, fopen64, lstat64, fcntl64 ...).
#ifndef CMPNT_TESTS_FAULT_HH
#define CMPNT_TESTS_FAULT_HH

#include <stddef.h>

#include <initializer_list>
#include <string>

namespace fault {

// The call-th next call of the function (1: the very next) fails with this errno, and so do the
// `times - 1` calls after it.
void fail(const char *function, int call, int error, int times = 1);

// The call-th next read() or write() moves no more than this many bytes.
void limit(const char *function, int call, size_t size);

// Calls of the function since the last reset.
int calls(const char *function);

// The calls of these functions since the last reset in their order: "write fsync close". Ends in
// "..." when there were more calls than are remembered.
std::string order_of(std::initializer_list<const char *> functions);

// nanosleep() returns at once, and is only counted.
void skip_sleeps();

// Seconds spent in nanosleep() since the last reset, skipped ones too. One that fails is half over.
double slept();

// readdir() tells no types, as on a file system that does not keep them with the names.
void hide_entry_types();

// statvfs() tells of this room on every file system: the fragment size and the blocks available.
void tell_space(unsigned long block_size, unsigned long long blocks);

// All functions behave again; counters are zero.
void reset();

}  // namespace fault

#endif
