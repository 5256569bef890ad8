// Verification beside the work that nobody can spare it: the archives, the walk over the unpacked
// files, for each a look whether the whitelist is still what it was, the digests by the same service,
// and the trace line that goes with each. What is left is the looking up of names, in lists as long as
// the tree has files.
#include <dirent.h>
#include <ftw.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>

#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>

#include "bench/pair.hh"
#include "libcmpnt_db.h"
#include "platform/platform.h"
#include "verify/hash_file.hh"
#include "verify/trusted_directory.hh"
#include "verify/verify_paths.hh"

namespace {

// All files are alike, so that by hand no digest has to be looked up; but some have changed, and are on
// the dynamic whitelist.
constexpr char contents[] = "every file of a tree is the same, and some are not\n";
constexpr char digest[] = "f3baa80ec9062c19c3ea15993db7f08df3231aa4fac8672f81ed0423197fd2df";
constexpr int files_per_directory = 250;
constexpr int changed_files = 20;  // one in so many

constexpr char trace_function[] = "cmpnt_global_hash_file_verify";

double thread_seconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void write_text(const std::string &path, const std::string &text) {
    cmpnt_mkdir(path.substr(0, path.rfind('/')).c_str());
    std::ofstream(path) << text;
}

// --- a walk by hand -----------------------------------------------------------------

// The whitelist counts while its signature is there.
void look_at_whitelist() {
    struct stat status;
    benchmark::DoNotOptimize(stat(global_whitelist_signature_path, &status));
    benchmark::DoNotOptimize(stat(global_whitelist_path, &status));
}

void check_by_hand(const char *path, const char *installed_path) {
    cmpnt_write_debug_log("trace", trace_function, __LINE__,
                          "hash_check hash_name(%s) hash_value(%s)\n", installed_path, digest);
    const int32_t result = do_verify_signature("", path, digest, sizeof(digest) - 1);
    if (result != 0) {
        cmpnt_write_debug_log("error", trace_function, __LINE__,
                              "(%s) do_verify_signature fail ret(%d).\n", installed_path, result);
    }
}

// How many files there were.
long walk_by_hand(const char *directory, bool are_listed) {
    long files = 0;
    DIR *opened = opendir(directory);
    while (const struct dirent *entry = opened == nullptr ? nullptr : readdir(opened)) {
        char path[CMPNT_PATH_SIZE];
        snprintf(path, sizeof(path), "%s/%s", directory, entry->d_name);
        if (entry->d_type == DT_REG) {
            files++;
            look_at_whitelist();
            if (are_listed) {
                check_by_hand(path, path + scratch_directory_length);
            }
        } else if (entry->d_type == DT_DIR && entry->d_name[0] != '.') {
            files += walk_by_hand(path, are_listed);
        }
    }
    if (opened != nullptr) {
        closedir(opened);
    }
    return files;
}

// --- trees and their lists ----------------------------------------------------------

// Of the length of the scratch directory, by which paths in it are told.
std::string trees() { return "/opt/" + std::string(scratch_directory_length - 5, 't'); }

std::string tree(long files) { return "/tree-" + std::to_string(files); }

std::string file_of(const std::string &tree, long number) {
    return tree + "/part-" + std::to_string(number / files_per_directory) + "/libmodule-" +
           std::to_string(number) + ".so.1";
}

std::string list_path(long files) { return "/opt/list-" + std::to_string(files); }

void make_tree(long files) {
    std::string list;
    for (long i = 0; i < files; i++) {
        const std::string installed = file_of(tree(files), i);
        write_text(trees() + installed, i % changed_files == 0 ? "changed" : contents);
        list += digest + ("  " + installed + "\n");
    }
    write_text(list_path(files), list);
}

// Whitelists as long, with other files and, the dynamic one, with those that have changed.
void provide_whitelists(long files) {
    std::string global, dynamic;
    for (long i = 0; i < files; i++) {
        const bool has_changed = i % changed_files == 0;
        global += file_of("/usr/lib/other", i) + "\n";
        dynamic += file_of(has_changed ? tree(files) : "/usr/lib/other", i) + ",cmpnt_upgrade_c\n";
    }
    write_text(global_whitelist_path, global);
    write_text(global_whitelist_signature_path, "");
    write_text(dynamic_whitelist_path, dynamic);
}

// The tree with so many files; their digests are in the list, or others' are.
std::string provide_tree(long files, bool are_listed) {
    std::string path = trees() + tree(files);
    if (file_is_exist(path.c_str()) == 0) {
        make_tree(files);
    }
    provide_whitelists(files);
    cmpnt_recycle_hash_verify_list();
    cmpnt_get_hash_info(list_path(files).c_str());
    for (cmpnt_list_head *link = hash_verify_list.next; !are_listed && link != &hash_verify_list;
         link = link->next) {
        CMPNT_HASH_NODE(link)->name[1] = 'T';
    }
    return path;
}

// What has changed is found, if it is not on the dynamic whitelist.
bool is_verified(const std::string &path) {
    rename(dynamic_whitelist_path, "/var/safe-verify/sm3/aside");
    const bool refused = cmpnt_global_hash_file_verify(path.c_str()) == -1;
    rename("/var/safe-verify/sm3/aside", dynamic_whitelist_path);
    return refused;
}

template <bool are_listed>
void verify_tree(benchmark::State &state) {
    const std::string path = provide_tree(state.range(0), are_listed);
    bool good = is_verified(path) == are_listed;
    for (auto _ : state) {
        good = cmpnt_global_hash_file_verify(path.c_str()) == 0 && good;
    }
    if (!good) {
        state.SkipWithError("not every file was verified as it should be");
    }
}

template <bool are_listed>
void walk_tree(benchmark::State &state) {
    const std::string path = provide_tree(state.range(0), are_listed);
    for (auto _ : state) {
        if (walk_by_hand(path.c_str(), are_listed) != state.range(0)) {
            state.SkipWithError("not every file was met");
        }
    }
}

// --- loading a list -----------------------------------------------------------------

// Names and digests; of several of a name the first.
using Digests = std::unordered_map<std::string_view, char *>;

Digests read_list_by_hand(const char *path) {
    Digests digests;
    FILE *list = fopen(path, "re");
    char *line = nullptr;
    size_t size = 0;
    for (ssize_t length; (length = getline(&line, &size, list)) > 0;) {
        line[length - 1] = '\0';
        char *rest = line;
        const char *text = strsep(&rest, " ");
        strsep(&rest, " ");
        if (digests.find(rest) == digests.end()) {
            digests.emplace(strdup(rest), strdup(text));
        }
    }
    free(line);
    fclose(list);
    return digests;
}

void free_digests(const Digests &digests) {
    for (const auto &[name, text] : digests) {
        free(const_cast<char *>(name.data()));
        free(text);
    }
}

// Freeing what was loaded is not in it.
void load_list(benchmark::State &state) {
    provide_tree(state.range(0), true);
    for (auto _ : state) {
        cmpnt_recycle_hash_verify_list();
        const double start = thread_seconds();
        const int32_t result = cmpnt_get_hash_info(list_path(state.range(0)).c_str());
        state.SetIterationTime(thread_seconds() - start);
        if (result != 0) {
            state.SkipWithError("the list was not loaded");
        }
    }
}

void load_list_by_hand(benchmark::State &state) {
    provide_tree(state.range(0), true);
    for (auto _ : state) {
        const double start = thread_seconds();
        const Digests digests = read_list_by_hand(list_path(state.range(0)).c_str());
        state.SetIterationTime(thread_seconds() - start);
        if (digests.size() != static_cast<size_t>(state.range(0))) {
            state.SkipWithError("the list was not loaded");
        }
        free_digests(digests);
    }
}

// --- a whole package ------------------------------------------------------------------

constexpr char package[] = "/opt/package/bench_1.0.ipk";
constexpr char package_maker[] = CMPNT_PACKAGE_MAKER;

bool run(const std::string &command) { return system(command.c_str()) == 0; }

bool make_package(long files) {
    for (long i = 0; i < files; i++) {
        write_text(file_of("/opt/package/tree/usr/lib", i), contents);
    }
    const std::string maker = std::string("cd /opt/package && '") + package_maker + "' ";
    return run(maker + "key key.pem") && run(maker + "package " + package + " tree") &&
           run(maker + "global / key.pem tree");
}

bool provide_package(long files) {
    static const bool made = make_package(files);
    cmpnt_remove(global_whitelist_signature_path);
    cmpnt_remove(dynamic_whitelist_path);
    return made && cmpnt_mkdir("/var/cache/opkg") == 0 && cmpnt_enable_safe_verify() == 0;
}

int remove_entry(const char *path, const struct stat *, int, struct FTW *) { return remove(path); }

bool verify_package() {
    cmpnt_sign_verify_init();
    const bool good = cmpnt_safe_verify(package, 0, 0, 0) == 0;
    cmpnt_free_sign_verify();
    return good;
}

bool unpack_and_walk(long files) {
    const std::string scratch = scratch_directory;
    if (safe_verify_file_signature_with_id(global_hash_list_path, global_hash_signature_path,
                                           public_key_path) == 0) {
        return false;
    }
    free_digests(read_list_by_hand(global_hash_list_path));
    cmpnt_mkdir(scratch_directory);
    const std::string into = " -C " + scratch;
    bool good = run("tar -xf " + std::string(package) + into) &&
                run("tar -xf " + scratch + "/" + inner_archive_name + into);
    long met = 0;
    for (const char *directory : trusted_directories) {
        met += walk_by_hand((scratch + directory).c_str(), true);
    }
    nftw(scratch_directory, remove_entry, 16, FTW_DEPTH | FTW_PHYS);
    return good && met == files;
}

template <typename Work>
void run_package(benchmark::State &state, Work work) {
    bool good = provide_package(state.range(0));
    for (auto _ : state) {
        const double start = seconds_with_children();
        good = good && work();
        state.SetIterationTime(seconds_with_children() - start);
    }
    if (!good) {
        state.SkipWithError("the package was not verified");
    }
}

void verify_whole_package(benchmark::State &state) { run_package(state, verify_package); }

void verify_by_hand(benchmark::State &state) {
    run_package(state, [&] { return unpack_and_walk(state.range(0)); });
}

bool add_pairs() {
    const BenchClock thread = BenchClock::thread;
    const BenchClock manual = BenchClock::manual;
    for (const long files : {100, 1000, 10000}) {
        const std::string size = "/" + std::to_string(files);
        const int repetitions = files < 10000 ? 15 : 7;
        add_pair(("verified tree" + size).c_str(), 1.15, verify_tree<true>, walk_tree<true>, files,
                 thread, repetitions);
        add_pair(("tree of unlisted files" + size).c_str(), 1.4, verify_tree<false>,
                 walk_tree<false>, files, thread, repetitions);
        add_pair(("hash list" + size).c_str(), 3, load_list, load_list_by_hand, files, manual,
                 repetitions);
    }
    return add_pair("whole package of 2000 files", 1.15, verify_whole_package, verify_by_hand, 2000,
                    manual, 9);
}

const bool pairs_are_added = add_pairs();

}  // namespace
