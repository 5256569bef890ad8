#include "tests/support/device_test.hh"
#include "tests/support/hotpatch_record.hh"
#include "tests/support/sqlite.hh"

namespace {

using Texts = std::vector<std::string>;

const std::string finder = "libcmpnt_db_find";
const std::string record_step = "get_hotpatch_to_db";
const std::string hot_patches = "Is_hotpatch:1#Package:*";

// What the callback was told, and what it does.
Texts told;
int32_t verdict;
void (*inside)();

int32_t callback(const char *filled) {
    told.push_back(filled);
    if (inside != nullptr) {
        inside();
    }
    return verdict;
}

int32_t find(const std::string &criteria) { return libcmpnt_db_find(criteria.c_str(), callback); }

int32_t examine(const cmpnt_upgrade_value &record, const std::string &criteria) {
    return get_hotpatch_to_db(&record, criteria.c_str(), callback);
}

void add_row(const std::string &patch, const std::string &package, int op_flag = 0x20,
             const std::string &version = "1.0", int state = CMPNT_STATE_ACTIVE) {
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, op_flag, pkg_state) "
        "values('" +
            patch + "', '" + package + "', '" + version + "', " + std::to_string(op_flag) + ", " +
            std::to_string(state) + ")");
}

Texts packages(const Texts &names) {
    Texts filled;
    for (const std::string &name : names) {
        filled.push_back("Is_hotpatch:1#Package:" + name);
    }
    return filled;
}

}  // namespace

class HotpatchFindTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        told.clear();
        verdict = 0;
        inside = nullptr;
        make_directories("/var/lib/opkg");
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
        fault::reset();
    }

    // a, b and c belong to hot patches, x does not.
    void add_rows() {
        add_row("SMU-1", "a");
        add_row("SMU-1", "x", 0x1);
        add_row("SMU-2", "b", 0x21, "2.0", CMPNT_STATE_RUNNING);
        add_row("SMU-3", "c", 0x28);
    }

    void expect_empty_list() {
        EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
        EXPECT_TRUE(is_well_linked(cmpnt_hp_list));
    }
};

TEST_F(HotpatchFindTest, TellsEachRecordThatMatchesInDatabaseOrder) {
    add_rows();
    EXPECT_EQ(find(hot_patches), 0);
    EXPECT_EQ(told, packages({"a", "b", "c"}));
    EXPECT_EQ(trace_messages(),
              (Texts{"trace get_hotpatch_to_db: cmpnt_db_find (Is_hotpatch:1#Package:a)\n",
                     "trace get_hotpatch_to_db: cmpnt_db_find (Is_hotpatch:1#Package:b)\n",
                     "trace get_hotpatch_to_db: cmpnt_db_find (Is_hotpatch:1#Package:c)\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", record_step, "cmpnt_db_find (Is_hotpatch:1#Package:a)\n"));
    expect_empty_list();
}

TEST_F(HotpatchFindTest, TracesAnAnswerBeforeItIsTold) {
    add_row("SMU-1", "a");
    inside = [] {
        EXPECT_EQ(traced("trace", record_step, "cmpnt_db_find (Is_hotpatch:1#Package:a)\n"), 1);
    };
    EXPECT_EQ(find(hot_patches), 0);
    EXPECT_EQ(told, packages({"a"}));
}

TEST_F(HotpatchFindTest, LooksAtRecordsOfEveryKind) {
    add_rows();
    EXPECT_EQ(find("Is_hotpatch:*#State:active"), 0);
    EXPECT_EQ(told, (Texts{"Is_hotpatch:1#State:active", "Is_hotpatch:0#State:active",
                           "Is_hotpatch:1#State:active"}));
}

TEST_F(HotpatchFindTest, FillsInWhatTheDatabaseHolds) {
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, pkg_name, cur_pkg_path, cur_version, pkg_state, "
        "op_flag, hotpatch_file, hotpatch_target, hotpatch_target_path, hotpatch_target_pkg_path) "
        "values('SMU', 'routed', '/d/r.deb', '2.4.1', 6, 32, 'routed.ko', 'routed;bgpd', "
        "'/usr/sbin/routed', '/cache/routed.ipk')");
    EXPECT_EQ(find("Version:2.4.1#Is_hotpatch:*#Package:*#Hotpatch_file:*#Hotpatch_target_pkg:*#"
                   "Hotpatch_target_path:*#State:*#Pkg_path:*"),
              0);
    EXPECT_EQ(told, (Texts{"Version:2.4.1#Is_hotpatch:1#Package:routed#Hotpatch_file:routed.ko#"
                           "Hotpatch_target_pkg:routed;bgpd#Hotpatch_target_path:/usr/sbin/routed#"
                           "State:running#Pkg_path:/d/r.deb"}));
}

TEST_F(HotpatchFindTest, TakesTheFirstRowOfAPatchAndPackage) {
    add_row("SMU-1", "a", 0x20, "1.0");
    add_row("SMU-1", "a", 0x20, "2.0");
    add_row("SMU-2", "a", 0x20, "2.0");
    EXPECT_EQ(find("Package:*#Version:1.0"), 0);
    EXPECT_EQ(find("Package:*#Version:2.0"), 0);
    EXPECT_EQ(told, (Texts{"Package:a#Version:1.0", "Package:a#Version:2.0"}));
}

TEST_F(HotpatchFindTest, GivesZeroWhenNothingMatches) {
    add_rows();
    EXPECT_EQ(find("Package:z#State:*"), 0);
    EXPECT_EQ(told, Texts());
    EXPECT_EQ(trace_messages(), Texts());
}

TEST_F(HotpatchFindTest, RefusesNullAndLeavesTheList) {
    const cmpnt_upgrade_value record = hotpatch_record();
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    EXPECT_EQ(libcmpnt_db_find(nullptr, callback), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", finder, "param is null.\n"));
    EXPECT_EQ(libcmpnt_db_find(hot_patches.c_str(), nullptr), -1);
    EXPECT_EQ(traced("error", finder, "param is null.\n"), 2);
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}

TEST_F(HotpatchFindTest, ExaminesTheDatabaseAndNotWhatTheListHeld) {
    add_row("SMU-1", "a");
    for (const char *patch : {"SMU-1", "SMU-9"}) {
        cmpnt_upgrade_value record = hotpatch_record();
        set_text(record.patch_name, patch);
        insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
        insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    }
    EXPECT_EQ(find(hot_patches), 0);
    EXPECT_EQ(told, packages({"a"}));
    expect_empty_list();
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 2u);
}

TEST_F(HotpatchFindTest, StopsAtTheCallbacksFirstNonZeroResult) {
    add_rows();
    for (int32_t result : {5, -1, -2, INT32_MIN}) {
        forget_log();
        told.clear();
        verdict = result;
        EXPECT_EQ(find(hot_patches), result);
        EXPECT_EQ(told, packages({"a"}));
        EXPECT_TRUE(logged("CMPNT_ERROR", record_step,
                           "cmpnt_db_find fail ret (" + std::to_string(result) + ")\n"));
        EXPECT_TRUE(
            logged("CMPNT_ERROR", finder, "get_hotpatch_to_db fail " + hot_patches + ".\n"));
        EXPECT_EQ(trace_lines().size(), 3u);
        expect_empty_list();
    }
}

TEST_F(HotpatchFindTest, EndsAtTheFirstRecordThatFails) {
    struct Case {
        const char *criteria;
        int32_t result;
        Texts messages;
    };
    const Case cases[] = {
        {"Is_hotpatch:1#State",
         -1,
         {"error cmpnt_parse_hotpatch_match: hotpatch match err (State).\n",
          "error get_hotpatch_to_db: cmpnt_parse_hotpatch_match fail Is_hotpatch:1#State\n"}},
        {"",
         -1,
         {"error cmpnt_parse_hotpatch_match: cmpnt_detach_install_queue is null.\n",
          "error get_hotpatch_to_db: cmpnt_parse_hotpatch_match fail \n"}},
        {"Package:*#State:*", -1, {"error cmpnt_equal_hotpatch_match: param is null.\n"}},
        {"Package:a#Patch_name:*#Patch_name:SMU-1",
         -4,
         {"error get_hotpatch_to_db: cmpnt_equal_hotpatch_match fail search critera err \n"}},
        {"Package:c",
         -1,
         {"error cmpnt_pack_hotpatch_match: param is null.\n",
          "error get_hotpatch_to_db: cmpnt_pack_hotpatch_match fail Package:c\n"}},
        {"Package:c#Version:*",
         -1,
         {"error cmpnt_pack_hotpatch_match: pack criteria do not match Version\n",
          "error get_hotpatch_to_db: cmpnt_pack_hotpatch_match fail Package:c#Version:*\n"}},
    };
    add_rows();
    for (const Case &c : cases) {
        forget_log();
        EXPECT_EQ(find(c.criteria), c.result) << c.criteria;
        Texts messages = c.messages;
        messages.push_back("error libcmpnt_db_find: get_hotpatch_to_db fail " +
                           std::string(c.criteria) + ".\n");
        EXPECT_EQ(trace_messages(), messages) << c.criteria;
        for (const TraceLine &line : trace_lines()) {
            EXPECT_TRUE(logged("CMPNT_ERROR", line.function, line.message));
        }
        expect_empty_list();
    }
    EXPECT_EQ(told, Texts());
}

TEST_F(HotpatchFindTest, MeetsAnUnknownKeyOnlyBehindConditionsThatHold) {
    add_rows();
    EXPECT_EQ(find("State:running#Nonsense:1#Package:*"), -4);
    EXPECT_EQ(find("State:installed#Nonsense:1#Package:*"), 0);
}

TEST_F(HotpatchFindTest, LearnsNothingOfTheCriteriaWithoutRecords) {
    for (const char *criteria : {"", "State", "A:B:C", "Package:*", "Nonsense:1"}) {
        EXPECT_EQ(find(criteria), 0) << criteria;
    }
    EXPECT_EQ(trace_messages(), Texts());
    remove_tree(main_db);
    EXPECT_EQ(find("State"), 0);
    EXPECT_EQ(trace_messages(),
              (Texts{"trace traverse_pkg_info_table: sqlite database is not exist, delay "
                     "traversal.\n"}));
    EXPECT_FALSE(exists(main_db));
    EXPECT_EQ(told, Texts());
}

TEST_F(HotpatchFindTest, FailsWhenTheRecordsCannotBeLoaded) {
    const cmpnt_upgrade_value record = hotpatch_record();
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    write_file(main_db, std::string(4096, 'x'));
    EXPECT_EQ(find(hot_patches), -2);
    EXPECT_TRUE(logged("CMPNT_ERROR", finder, "traverse_pkg_info_table fail.\n"));
    expect_empty_list();
}

TEST_F(HotpatchFindTest, FreesWhatAFailedLoadHadLoaded) {
    add_rows();
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(find(hot_patches), -2);
    EXPECT_EQ(trace_lines().back().message, "traverse_pkg_info_table fail.\n");
    EXPECT_EQ(told, Texts());
    expect_empty_list();
}

TEST_F(HotpatchFindTest, LetsTheCallbackDoWhatItLikesWithTheList) {
    void (*const deeds[])() = {
        [] { cmpnt_recycle_upgrade_list(CMPNT_HP_LIST); },
        [] { cmpnt_hp_list_init(); },
        [] { EXPECT_EQ(libcmpnt_db_check_hp_tgt_md5("/nowhere"), 0); },
        [] { EXPECT_EQ(cmpnt_get_database_hp_list(), 0); },
        [] {
            EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
            EXPECT_EQ(cmpnt_get_database_hp_list(), 0);
            EXPECT_EQ(records_of(cmpnt_hp_list).size(), 4u);
            cmpnt_recycle_upgrade_list(CMPNT_HP_LIST);
        },
        [] { sql(main_db, "delete from pkg_upgrade_table"); },
    };
    add_rows();
    for (size_t i = 0; i < std::size(deeds); i++) {
        told.clear();
        inside = deeds[i];
        EXPECT_EQ(find(hot_patches), 0) << i;
        EXPECT_EQ(told, packages({"a", "b", "c"})) << i;
        expect_empty_list();
    }
}

TEST_F(HotpatchFindTest, LetsTheCallbackAskAgain) {
    add_rows();
    inside = [] {
        inside = nullptr;  // once
        EXPECT_EQ(find("Package:*#State:running"), 0);
    };
    EXPECT_EQ(find(hot_patches), 0);
    Texts all = packages({"a", "b", "c"});
    all.insert(all.begin() + 1, "Package:b#State:running");
    EXPECT_EQ(told, all);
    expect_empty_list();
}

TEST_F(HotpatchFindTest, FreesWhatTheCallbackLoadedBeforeItFailed) {
    add_rows();
    verdict = 7;
    inside = [] { cmpnt_get_database_hp_list(); };
    EXPECT_EQ(find(hot_patches), 7);
    expect_empty_list();
}

TEST_F(HotpatchFindTest, ParsesTheCriteriaOnce) {
    const std::string criteria = "Package:nothing has this name#State:*";
    add_row("SMU-1", "p1");
    EXPECT_EQ(find(criteria), 0);
    const int with_one = fault::calls("calloc");
    add_row("SMU-1", "p2");
    add_row("SMU-1", "p3");
    fault::reset();
    EXPECT_EQ(find(criteria), 0);
    EXPECT_EQ(fault::calls("calloc"), with_one + 2);  // a node for each record
}

TEST_F(HotpatchFindTest, SurvivesEveryLackOfMemory) {
    add_rows();
    EXPECT_EQ(find(hot_patches), 0);
    const int calls = fault::calls("calloc");
    int failures = 0;
    for (int call = 1; call <= calls; call++) {
        fault::reset();
        fault::fail("calloc", call, ENOMEM);
        const int32_t result = find(hot_patches);
        EXPECT_TRUE(result == 0 || result == -1) << call;  // 0: a record less
        failures += result != 0;
        expect_empty_list();
    }
    EXPECT_EQ(failures, calls - 4);
}

TEST_F(HotpatchFindTest, AsksOneRecordAlone) {
    const cmpnt_upgrade_value record = hotpatch_record();
    EXPECT_EQ(examine(record, "Package:routed#State:*"), 0);
    EXPECT_EQ(told, (Texts{"Package:routed#State:active"}));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", record_step, "cmpnt_db_find (Package:routed#State:active)\n"));
    EXPECT_EQ(examine(record, "Package:bgpd#State:*"), 0);
    EXPECT_EQ(examine(record, "State"), -1);
    EXPECT_EQ(examine(record, "Package:*"), -1);
    EXPECT_EQ(examine(record, "Package:routed"), -1);
    EXPECT_EQ(examine(record, "Nonsense:1#Package:*"), -4);
    EXPECT_EQ(told.size(), 1u);
    verdict = 5;
    EXPECT_EQ(examine(record, "Package:routed#State:*"), 5);
    EXPECT_TRUE(logged("CMPNT_ERROR", record_step, "cmpnt_db_find fail ret (5)\n"));
    EXPECT_TRUE(same_record(record, hotpatch_record()));
}

TEST_F(HotpatchFindTest, LetsTheCallbackFreeTheOneRecord) {
    const cmpnt_upgrade_value record = hotpatch_record();
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    inside = [] { cmpnt_recycle_upgrade_list(CMPNT_HP_LIST); };
    const cmpnt_upgrade_value &listed = CMPNT_UPGRADE_NODE(cmpnt_hp_list.next)->value;
    EXPECT_EQ(examine(listed, "Package:*#State:active"), 0);
    EXPECT_EQ(told, (Texts{"Package:routed#State:active"}));
}

TEST_F(HotpatchFindTest, AsksNothingOfNull) {
    const cmpnt_upgrade_value record = hotpatch_record();
    EXPECT_EQ(get_hotpatch_to_db(nullptr, "Package:*", callback), -1);
    EXPECT_EQ(get_hotpatch_to_db(&record, nullptr, callback), -1);
    EXPECT_EQ(get_hotpatch_to_db(&record, "Package:routed#State:*", nullptr), -1);
    EXPECT_FALSE(exists(trace_path()));
}
