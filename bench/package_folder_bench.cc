// Listing a directory of as many package files as a list holds, beside the same walk done by hand.
#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr int files = CMPNT_FILE_LIST_MAX;

const char *package_directory() {
    static const char *const directory = [] {
        const char *const path = "/tmp/packages";
        mkdir(path, 0755);
        for (int i = 0; i < files; i++) {
            char name[CMPNT_PATH_SIZE];
            snprintf(name, sizeof(name), "%s/app-module-%d_2.4.%d-r1_cortexa9.%s", path, i, i % 7,
                     i % 2 == 0 ? "bin" : "deb");
            if (FILE *file = fopen(name, "w")) {
                fclose(file);
            }
        }
        return path;
    }();
    return directory;
}

bool is_package(const char *name) {
    const char *dot = strrchr(name, '.');
    return dot != nullptr && (strcmp(dot, ".bin") == 0 || strcmp(dot, ".deb") == 0);
}

void list_by_hand(const char *path, file_name_list &list) {
    DIR *directory = opendir(path);
    while (const struct dirent *entry = directory == nullptr ? nullptr : readdir(directory)) {
        char name[CMPNT_PATH_SIZE];
        snprintf(name, sizeof(name), "%s/%s", path, entry->d_name);
        struct stat status;
        if (lstat(name, &status) == 0 && S_ISREG(status.st_mode) && list.count < files &&
            is_package(name)) {
            list.total_size += static_cast<uint32_t>(status.st_size);
            list.names[list.count++] = strdup(name);
        }
    }
    if (directory != nullptr) {
        closedir(directory);
    }
}

// Both sides list, count and free.
template <typename List>
void run_listing(benchmark::State &state, List list_directory) {
    const char *path = package_directory();
    for (auto _ : state) {
        file_name_list list = {};
        list_directory(path, list);
        if (list.count != files) {
            state.SkipWithError("not every package was listed");
        }
        cmpnt_free_file_name(&list);
    }
}

void list_with_library(benchmark::State &state) {
    run_listing(state, [](const char *path, file_name_list &list) {
        cmpnt_traverse_folder(path, &list);  // a failure shows in the count
    });
}

void list_raw(benchmark::State &state) { run_listing(state, list_by_hand); }

const bool added = add_pair("listing of 300 package files", 1.5, list_with_library, list_raw);

}  // namespace
