// Loading a whole table into a list, against SQLite's own select into an array of the same records.
#include <limits.h>
#include <malloc.h>
#include <time.h>

#include "bench/pair.hh"
#include "bench/upgrade_database.hh"
#include "libcmpnt_db.h"

namespace {

size_t list_length() {
    size_t length = 0;
    for (const cmpnt_list_head *link = cmpnt_upgrade_list.next; link != &cmpnt_upgrade_list;
         link = link->next) {
        length++;
    }
    return length;
}

// The thread's own time: a busy machine disturbs it least, and freeing what was loaded is not in it.
double thread_seconds() {
    timespec now = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void check(benchmark::State &state, size_t records) {
    if (records != static_cast<size_t>(state.range(0))) {
        state.SkipWithError("not every row was loaded");
    }
}

void select_into_array(benchmark::State &state) {
    provide_database(state.range(0));
    for (auto _ : state) {
        RecordArray array;
        const double start = thread_seconds();
        select_into_array(array);
        state.SetIterationTime(thread_seconds() - start);
        check(state, array.count);
    }
}

template <int32_t mode>
void load_into_list(benchmark::State &state) {
    provide_database(state.range(0));
    for (auto _ : state) {
        const double start = thread_seconds();
        traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, mode, 0, CMPNT_DB_MAIN);
        state.SetIterationTime(thread_seconds() - start);
        check(state, list_length());
        recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    }
}

bool add_pairs() {
    // Neither side gives its memory back between runs: to whom that happens is chance, and costs as
    // much as the load.
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, INT_MAX);
    const BenchClock clock = BenchClock::manual;
    const auto load_all = load_into_list<CMPNT_ROWS_TO_UPGRADE_LIST>;
    const auto load_smus = load_into_list<CMPNT_ROWS_BY_SMU>;
    add_pair("list_load/100", 1.6, load_all, select_into_array, 100, clock);
    add_pair("list_load/1000", 1.6, load_all, select_into_array, 1000, clock);
    add_pair("list_load/10000", 1.6, load_all, select_into_array, 10000, clock);
    add_pair("list_load_by_smu/10000", 1.6, load_smus, select_into_array, 10000, clock);
    return add_pair("list_load/100000", 2.5, load_all, select_into_array, 100000, clock);
}

const bool pairs_are_added = add_pairs();

}  // namespace
