// Step 5: a hot patch, found again by criteria, and the file that it is for.
#include <stdio.h>

#include "tools/demo/demo.hh"

namespace demo {
namespace {

enum { INSERT = 2 };  // a write code of cmpnt_operate_pkg_database

constexpr int32_t hot_patch_smu = 0x20;

constexpr char machine_program[] = "/bin/bash";
constexpr char target[] = "/opt/bin/bash";
// What the hot patch was built against: the machine's program with symbols behind it, and without.
constexpr char shipped[] = "/opt/build/bash";
constexpr char stripped[] = "/opt/build/bash.stripped";
constexpr char symbols[] = "symbols: main execute_command parse_command";

bool copy(const char *from, const char *to) { return cmpnt_copy_file_by_write(from, to) != -1; }

bool make_programs() {
    return cmpnt_mkdir("/opt/bin") == 0 && cmpnt_mkdir("/opt/build") == 0 &&
           copy(machine_program, stripped) && copy(machine_program, shipped) &&
           cmpnt_write_to_file(symbols, shipped) == 0 && copy(shipped, target);
}

std::string patch_file() {
    return package_file(std::string(download_cache) + "/hp_bash", "bash",
                        base_version_of("bash") + "+hp1");
}

bool record_hot_patch() {
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    request.db_type = CMPNT_DB_MAIN;
    request.cmd = INSERT;
    const std::string base = base_version_of("bash");
    cmpnt_pkg_record &record = request.record;
    set_upgrade_db_value(&record, "hp_bash", "bash", patch_file().c_str(), (base + "+hp1").c_str(),
                         base.c_str(), CMPNT_STATE_ACTIVE, 0x302, 1, hot_patch_smu,
                         "demo hot patch");
    snprintf(record.hotpatch_file, sizeof(record.hotpatch_file), "bash_hp1.so");
    snprintf(record.hotpatch_target, sizeof(record.hotpatch_target), "bash");
    snprintf(record.hotpatch_target_path, sizeof(record.hotpatch_target_path), "%s", target);
    return calculate_file_md5sum(shipped, record.hotpatch_target_md5) == 0 &&
           calculate_file_md5sum(stripped, record.hotpatch_target_strip_md5) == 0 &&
           cmpnt_operate_pkg_database(&request, INSERT) == 0;
}

std::vector<std::string> answers;

int32_t take_answer(const char *filled) {
    answers.push_back(filled);
    printf("  %s\n", filled);
    return 0;
}

bool ask(const char *criteria, const std::vector<std::string> &expected) {
    printf("asking %s\n", criteria);
    answers.clear();
    const int32_t result = libcmpnt_db_find(criteria, take_answer);
    if (answers.empty()) {
        printf("  (none)\n");
    }
    return result == 0 && answers == expected;
}

bool answers_are_expected() {
    return ask("Is_hotpatch:1#Package:*#State:*#Hotpatch_target_path:*",
               {"Is_hotpatch:1#Package:bash#State:active#Hotpatch_target_path:" +
                std::string(target)}) &&
           ask("Package:*#Is_hotpatch:*#State:active",
               {"Package:sed#Is_hotpatch:0#State:active",
                "Package:bash#Is_hotpatch:1#State:active"}) &&
           ask("Is_hotpatch:1#State:running#Package:*", {});
}

bool check_target(const char *which, int32_t expected) {
    const int32_t result = libcmpnt_db_check_hp_tgt_md5(patch_file().c_str());
    printf("  %-26s -> %s\n", which, result == 0 ? "may be patched" : "refused");
    return result == expected;
}

bool target_is_checked() {
    printf("checking the target %s\n", target);
    return check_target("as shipped", 0) && change_a_byte(target) &&
           check_target("with one byte changed", -1) && copy(stripped, target) &&
           check_target("stripped of its symbols", 0);
}

}  // namespace

bool try_hot_patch() {
    if (!make_programs() || !record_hot_patch()) {
        return fail("recording a hot patch");
    }
    printf("recorded the hot patch hp_bash for %s\n", target);
    if (!answers_are_expected()) {
        return fail("finding every answer as expected");
    }
    return target_is_checked() || fail("checking the target as expected");
}

}  // namespace demo
