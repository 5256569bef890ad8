// A lookup of hot patches, against SQLite's own select into an array of the same records, a
// comparison and a print. One record matches; its answer is traced and synced on both sides.
#include <string.h>

#include "bench/pair.hh"
#include "bench/upgrade_database.hh"
#include "libcmpnt_db.h"

namespace {

constexpr char criteria[] = "Package:*#State:*#Is_hotpatch:1#Hotpatch_file:hotpatch-500.ko";
constexpr char wanted_file[] = "hotpatch-500.ko";
constexpr char expected[] =
    "Package:package-500#State:running#Is_hotpatch:1#Hotpatch_file:hotpatch-500.ko";
constexpr int32_t hot_patch_bit = 1 << 5;

int right_answers = 0;

int32_t take_answer(const char *filled) {
    right_answers += strcmp(filled, expected) == 0;
    return 0;
}

void check(benchmark::State &state) {
    if (right_answers != 1) {
        state.SkipWithError("not the one right answer");
    }
    right_answers = 0;
}

void answer(const cmpnt_upgrade_value &record) {
    char filled[CMPNT_LINE_SIZE];
    snprintf(filled, sizeof(filled), "Package:%s#State:%s#Is_hotpatch:1#Hotpatch_file:%s",
             record.pkg_name, record.state_name, record.hotpatch_file);
    cmpnt_write_debug_log("trace", __func__, __LINE__, "cmpnt_db_find (%s)\n", filled);
    take_answer(filled);
}

void find_by_hand(benchmark::State &state) {
    provide_database(state.range(0));
    for (auto _ : state) {
        RecordArray array;
        select_into_array(array);
        for (size_t i = 0; i < array.count; i++) {
            const cmpnt_upgrade_value &record = array.records[i];
            if ((record.op_flag & hot_patch_bit) != 0 &&
                strcmp(record.hotpatch_file, wanted_file) == 0) {
                answer(record);
            }
        }
        check(state);
    }
}

void find_by_library(benchmark::State &state) {
    provide_database(state.range(0));
    for (auto _ : state) {
        libcmpnt_db_find(criteria, take_answer);
        check(state);
    }
}

bool add_pairs() {
    add_pair("hotpatch_find/1000", 1.6, find_by_library, find_by_hand, 1000);
    return add_pair("hotpatch_find/10000", 1.6, find_by_library, find_by_hand, 10000);
}

const bool pairs_are_added = add_pairs();

}  // namespace
