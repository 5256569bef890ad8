// A line of the trace file beside the system calls that it takes, made by hand with a ready line of
// the same size.
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr char directory[] = "/var/cache/opkg/debug";
constexpr char raw_path[] = "/var/cache/opkg/debug/.by_hand_log.log";
constexpr char raw_backup[] = "/var/cache/opkg/debug/.by_hand_log.log_bak";
constexpr off_t rotation_size = 0x40000;
constexpr char line[] =
    "[2024-03-01 10:15:02-004211, error, cmpnt_copy_file_by_write-50]"
    "file(/var/cache/opkg/download/routed_2.4.ipk) is no exist.\n";

void write_with_library(benchmark::State &state) {
    for (auto _ : state) {
        cmpnt_write_debug_log("error", "cmpnt_copy_file_by_write", 50, "file(%s) is no exist.\n",
                              "/var/cache/opkg/download/routed_2.4.ipk");
    }
}

void write_by_hand(benchmark::State &state) {
    cmpnt_mkdir(directory);
    close(open(raw_path, O_WRONLY | O_CREAT | O_CLOEXEC, 0755));
    for (auto _ : state) {
        char name[16];
        prctl(PR_GET_NAME, name);
        benchmark::DoNotOptimize(name);
        int fd = open(raw_path, O_WRONLY | O_APPEND | O_CLOEXEC);
        struct stat status;
        if (fstat(fd, &status) == 0 && status.st_size >= rotation_size) {
            close(fd);
            rename(raw_path, raw_backup);
            fd = open(raw_path, O_WRONLY | O_CREAT | O_CLOEXEC, 0755);
        }
        if (write(fd, line, strlen(line)) < 0 || fsync(fd) != 0) {
            state.SkipWithError("the line cannot be written");
        }
        close(fd);
    }
}

const bool added = add_pair("trace line", 1.10, write_with_library, write_by_hand);

}  // namespace
