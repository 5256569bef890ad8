#include "db/list_rows.hh"

#include "tests/support/device_test.hh"
#include "tests/support/fake_row.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

const cmpnt_upgrade_value &first_of(const cmpnt_list_head &head) {
    return CMPNT_UPGRADE_NODE(head.next)->value;
}

// What an allocation failure says, from the allocator up to the given function.
Texts out_of_memory(const std::string &function) {
    return {"error cmpnt_malloc: malloc failed, size(" +
                std::to_string(sizeof(cmpnt_upgrade_node)) + "), error(Cannot allocate memory).\n",
            "error malloc_cmpnt_node: malloc cmpnt_db_list failed\n",
            "error insert_cmpnt_upgrade_db_to_list: malloc_cmpnt_node failed!\n",
            "error " + function + ": insert_cmpnt_upgrade_db_to_list fail.\n"};
}

}  // namespace

class ListRows : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    }

    void add(const std::string &patch, const std::string &pkg, const std::string &version,
             int32_t state = CMPNT_STATE_ACTIVE) {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, pkg_state) values('" +
                patch + "', '" + pkg + "', '" + version + "', " + std::to_string(state) + ")");
    }

    void add_single(const std::string &patch, int32_t smu_id, const std::string &version,
                    int32_t patch_type = 1) {
        add(patch, "pkg", version);
        sql(main_db, "update pkg_upgrade_table set card_id = " + std::to_string(smu_id) +
                         ", patch_type = " + std::to_string(patch_type) +
                         " where rowid = (select max(rowid) from pkg_upgrade_table)");
    }

    // Unpacked in the download directory, with this file.
    static void unpack(const std::string &smu, const std::string &file = "one.deb") {
        write_file("/data/cmpnt/opkg/download/" + smu + ".single/" + file, "x");
    }

    // So many rows with names of their own.
    void add_many(int count) {
        sql(main_db,
            "with recursive n(i) as (select 0 union all select i + 1 from n where i + 1 < " +
                std::to_string(count) +
                ") insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, pkg_state) "
                "select 'SMU-' || i, 'pkg-' || i, '1.' || i, 4 from n");
    }

    int32_t load(int32_t mode) {
        forget_log();
        Connection connection(main_db);
        return select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE, mode, 0);
    }
};

TEST_F(ListRows, ToTheUpgradeListInTheOrderOfTheTable) {
    add("SMU-2", "b", "2.0");
    add("SMU-1", "a", "1.0");
    add("SMU-1", "b", "3.0", CMPNT_STATE_INSTALLED);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-2 b 2.0", "SMU-1 a 1.0", "SMU-1 b 3.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_TRUE(records_of(cmpnt_hp_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ListRows, ToTheHotPatchList) {
    add("SMU-2", "b", "2.0");
    add("SMU-1", "a", "1.0");
    EXPECT_EQ(load(CMPNT_ROWS_TO_HP_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_hp_list), (Texts{"SMU-2 b 2.0", "SMU-1 a 1.0"}));
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ListRows, ARowIsHeldWhole) {
    sql(main_db,
        "insert into pkg_upgrade_table values('SMU-1', 'a', '/p', '1.1', '1.0', 6, 5, 1, 32, 'd', "
        "'v', 'id', 'now', 'SMU-0', 8, 1, 10, 'f', 't', 'tp', 'tpp', 'm', 's')");
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    ASSERT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
    const cmpnt_upgrade_value &value = first_of(cmpnt_upgrade_list);
    EXPECT_STREQ(value.cur_pkg_path, "/p");
    EXPECT_STREQ(value.state_name, "running");
    EXPECT_STREQ(value.pkg_state_name, "running");
    EXPECT_EQ(value.op_flag, 32);
    EXPECT_EQ(value.patch_type, 1);
    EXPECT_EQ(value.patch_order, 10);
    EXPECT_STREQ(value.hotpatch_target_md5, "m");
    EXPECT_STREQ(value.hotpatch_target_strip_md5, "s");
}

// Patch and package together are what makes a duplicate here, whatever the version.
TEST_F(ListRows, ToAListKeepsTheFirstOfTheSamePatchAndPackage) {
    for (int32_t mode : {CMPNT_ROWS_TO_UPGRADE_LIST, CMPNT_ROWS_TO_HP_LIST}) {
        sql(main_db, "delete from pkg_upgrade_table");
        add("SMU-1", "a", "1.0");
        add("SMU-1", "b", "1.0");
        add("SMU-2", "a", "1.0");
        add("SMU-1", "a", "1.0");
        add("SMU-2", "a", "9.0");
        EXPECT_EQ(load(mode), 0);
        const cmpnt_list_head &list =
            mode == CMPNT_ROWS_TO_HP_LIST ? cmpnt_hp_list : cmpnt_upgrade_list;
        EXPECT_EQ(records_of(list), (Texts{"SMU-1 a 1.0", "SMU-1 b 1.0", "SMU-2 a 1.0"}));
        const Texts messages = trace_messages();
        ASSERT_EQ(messages.size(), 2u);
        EXPECT_NE(messages[0].find("patch(SMU-1), pkg(a) already exist, pkg_ver(1.0)\n"),
                  std::string::npos);
    }
}

TEST_F(ListRows, ToAListAgainAddsNothing) {
    add_many(30);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    const Texts once = records_of(cmpnt_upgrade_list);
    EXPECT_EQ(once.size(), 30u);
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), once);
    EXPECT_EQ(trace_messages().size(), 30u);
}

TEST_F(ListRows, TheNodesOfAHostCountAsDuplicates) {
    add("SMU-1", "a", "1.0");
    add("SMU-2", "b", "1.0");
    const cmpnt_upgrade_value record = upgrade_record("SMU-2", "b", "7.0");
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-2 b 7.0", "SMU-1 a 1.0"}));
}

// Names are compared as the list holds them: cut.
TEST_F(ListRows, NamesThatAreCutAlikeAreDuplicates) {
    const std::string name(79, 'n');
    add(name + "-first", "a", "1.0");
    add(name + "-second", "a", "2.0");
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{name + " a 1.0"}));
    EXPECT_EQ(traced("error", "cmpnt_snprintf", "truncate occured\n"), 2);
}

TEST_F(ListRows, RowsWithoutNamesAreDuplicatesOfEachOther) {
    sql(main_db, "insert into pkg_upgrade_table(cur_version) values('1.0')");
    sql(main_db,
        "insert into pkg_upgrade_table(cur_version, patch_name, pkg_name) "
        "values('2.0', '', '')");
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"  1.0"}));
}

TEST_F(ListRows, ByPackageNameKeepsTheFirstOfEachPackage) {
    add("SMU-1", "a", "1.0");
    add("SMU-2", "a", "2.0");
    add("SMU-1", "b", "1.0");
    EXPECT_EQ(load(CMPNT_ROWS_BY_PKG_NAME), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-1 a 1.0", "SMU-1 b 1.0"}));
    const Texts messages = trace_messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_NE(messages[0].find("upgrade list is null\n"), std::string::npos);
    EXPECT_NE(messages[1].find("search found: pkg_name(a)\n"), std::string::npos);
}

TEST_F(ListRows, ByPackageNameOverManyPackages) {
    add_many(40);
    add_many(40);
    EXPECT_EQ(load(CMPNT_ROWS_BY_PKG_NAME), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 40u);
    EXPECT_EQ(trace_messages().size(), 41u);
}

// No test for duplicates here: a second load doubles the nodes.
TEST_F(ListRows, NotInstalledTakesEveryOtherStateEachTime) {
    add("SMU-1", "a", "1.0", CMPNT_STATE_INSTALLED);
    add("SMU-2", "a", "2.0", CMPNT_STATE_INSTALL_READY);
    add("SMU-2", "a", "2.0", CMPNT_STATE_RUNNING);
    add("SMU-3", "a", "3.0", 99);
    const Texts taken = {"SMU-2 a 2.0", "SMU-2 a 2.0", "SMU-3 a 3.0"};
    EXPECT_EQ(load(CMPNT_ROWS_NOT_INSTALLED), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), taken);
    EXPECT_EQ(load(CMPNT_ROWS_NOT_INSTALLED), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 6u);
    EXPECT_TRUE(trace_messages().empty());
}

// Whatever its package; only the first test meets an empty list.
TEST_F(ListRows, BySmuKeepsTheFirstOfEachPatch) {
    add("SMU-1", "a", "1.0");
    add("SMU-1", "b", "2.0");
    add("SMU-2", "a", "3.0", CMPNT_STATE_INSTALLED);
    add("SMU-1", "a", "4.0");
    EXPECT_EQ(load(CMPNT_ROWS_BY_SMU), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"SMU-1 a 1.0", "SMU-2 a 3.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_EQ(trace_messages(), (Texts{"trace cmpnt_is_exist_current_upgrade_list: the current "
                                       "upgrade list is null.\n"}));
    EXPECT_EQ(load(CMPNT_ROWS_BY_SMU), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 2u);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ListRows, BySmuOverManyPatches) {
    add_many(40);
    add_many(40);
    EXPECT_EQ(load(CMPNT_ROWS_BY_SMU), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 40u);
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(ListRows, SinglePatchesKeepTheFirstOfEachPatchOfAnSmu) {
    add_single("p", 1, "1.0");
    add_single("smu", 1, "1.0", 0);
    add_single("p", 2, "2.0");
    add_single("q", 1, "3.0");
    add_single("odd", 1, "1.0", 2);
    add_single("p", 1, "4.0");
    EXPECT_EQ(load(CMPNT_ROWS_SINGLE_PATCHES), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"p pkg 1.0", "p pkg 2.0", "q pkg 3.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ListRows, SinglePatchesWithoutAnSmuAreToldAndAllTaken) {
    add_single("p", 0, "1.0");
    add_single("p", 0, "1.0");
    add_single("smu", 0, "1.0", 0);
    EXPECT_EQ(load(CMPNT_ROWS_SINGLE_PATCHES), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"p pkg 1.0", "p pkg 1.0"}));
    const std::string told = "error cmpnt_is_exist_by_smu_id: param is null\n";
    EXPECT_EQ(trace_messages(), (Texts{told, told, told}));
}

TEST_F(ListRows, SinglePatchesOverManyRows) {
    for (int smu_id = 1; smu_id <= 3; smu_id++) {
        add_many(20);
        sql(main_db, "update pkg_upgrade_table set patch_type = 1, card_id = " +
                         std::to_string(smu_id) + " where card_id is null");
    }
    EXPECT_EQ(load(CMPNT_ROWS_SINGLE_PATCHES), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 60u);
    EXPECT_EQ(load(CMPNT_ROWS_SINGLE_PATCHES), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 60u);
}

TEST_F(ListRows, ToAutoSyncTakesEachUnpackedSmuOnce) {
    for (const char *smu : {"a.bin", "b.bin", "gone.bin", "a.bin", "c.bin"}) {
        add(smu, "pkg", "1.0");
    }
    unpack("a.bin");
    unpack("c.bin");
    unpack("b.bin", "one.deb.sign");
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"a.bin pkg 1.0", "c.bin pkg 1.0"}));
    EXPECT_TRUE(is_well_linked(auto_sync_list));
    EXPECT_TRUE(records_of(app_sync_list).empty());
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    EXPECT_EQ(records_of(auto_sync_list).size(), 2u);
}

// As a host asks: a table of its own in a file of its own, under the lock.
TEST_F(ListRows, ToAutoSyncFromTheAutoSyncFile) {
    unpack("a.bin");
    unpack("main.bin");
    add("main.bin", "pkg", "1.0");
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_DB_AUTO_SYNC), 0);
    sql(auto_sync_db,
        "insert into auto_sync_table(patch_name, cur_pkg_path, op_flag) values('a.bin', '/p', 8), "
        "('gone.bin', '/q', 8)");
    forget_log();
    EXPECT_EQ(traverse_pkg_info_table(CMPNT_AUTO_SYNC_TABLE, CMPNT_ROWS_TO_AUTO_SYNC, 0,
                                      CMPNT_DB_AUTO_SYNC),
              0);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"a.bin  "}));
    EXPECT_STREQ(first_of(auto_sync_list).cur_pkg_path, "/p");
    EXPECT_EQ(first_of(auto_sync_list).op_flag, 8);
    EXPECT_TRUE(trace_messages().empty());
}

// The name of the patch is what lies unpacked, wherever the record's own path leads.
TEST_F(ListRows, ToAutoSyncAsksForThePatchsName) {
    unpack("a.bin");
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, cur_pkg_path) values('a.deb', 'a.bin'), "
        "('/data/cmpnt/opkg/download/a.bin', 'a.bin'), ('a.bin', '/nowhere/x.deb')");
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"a.bin  "}));
}

TEST_F(ListRows, ToAutoSyncDeletesStrayFilesOnTheWay) {
    add("a.bin", "pkg", "1.0");
    add("a.bin", "pkg", "2.0");
    add("b.bin", "pkg", "1.0");
    unpack("a.bin");
    unpack("a.bin", "stray.txt");
    unpack("b.bin", "stray.txt");
    unpack("c.bin", "stray.txt");
    // In the list or not: every row is looked at.
    const cmpnt_upgrade_value listed = upgrade_record("a.bin", "host", "7.0");
    ASSERT_EQ(insert_auto_sync_node_to_list(&listed, CMPNT_AUTO_SYNC_LIST), 0);
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    const std::string download = "/data/cmpnt/opkg/download/";
    EXPECT_EQ(names_in(download + "a.bin.single"), (Texts{"one.deb"}));
    EXPECT_EQ(names_in(download + "b.bin.single"), Texts());
    EXPECT_EQ(names_in(download + "c.bin.single"), (Texts{"stray.txt"}));  // no row asked for it
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"a.bin host 7.0"}));
}

TEST_F(ListRows, ToAutoSyncPassesOverNamesWithoutAType) {
    add("SMU-1", "pkg", "1.0");
    sql(main_db, "insert into pkg_upgrade_table(cur_version) values('1.0')");
    add("b.bin", "pkg", "1.0");
    unpack("b.bin");
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"b.bin pkg 1.0"}));
    EXPECT_EQ(traced("error", "smu_dir_path_is_null", "Invalid package type, please check!\n"), 2);
}

TEST_F(ListRows, ToAutoSyncSkipsARowWithoutMemory) {
    add("a.bin", "pkg", "1.0");
    add("b.bin", "pkg", "1.0");
    unpack("a.bin");
    unpack("b.bin");
    fault::fail("calloc", 2, ENOMEM);  // the first holds the name of the file found
    EXPECT_EQ(load(CMPNT_ROWS_TO_AUTO_SYNC), 0);
    EXPECT_EQ(traced("error", "insert_auto_sync_node_to_list", "malloc_auto_sync_node failed!\n"),
              1);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"b.bin pkg 1.0"}));
}

TEST_F(ListRows, OfManyRowsEachIsFoundInItsPlace) {
    add_many(3000);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    const Texts records = records_of(cmpnt_upgrade_list);
    ASSERT_EQ(records.size(), 3000u);
    for (size_t i = 0; i < records.size(); i++) {
        char record[64];
        snprintf(record, sizeof(record), "SMU-%zu pkg-%zu 1.%zu", i, i, i);
        EXPECT_EQ(records[i], record);
    }
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ListRows, ARowWithoutMemoryIsSkippedAndTheLoadGoesOn) {
    struct Case {
        int32_t mode;
        const char *function;
    };
    for (const Case &c : {Case{CMPNT_ROWS_TO_UPGRADE_LIST, "cmpnt_add_upgrade_value_to_list"},
                          Case{CMPNT_ROWS_TO_HP_LIST, "cmpnt_add_upgrade_value_to_list"},
                          Case{CMPNT_ROWS_NOT_INSTALLED, "cmpnt_add_to_list_by_pkg_version"},
                          Case{CMPNT_ROWS_BY_SMU, "cmpnt_add_to_list_by_smu"},
                          Case{CMPNT_ROWS_SINGLE_PATCHES, "cmpnt_add_to_list_by_single"},
                          Case{CMPNT_ROWS_BY_PKG_NAME, "cmpnt_add_to_upgrade_list_by_pkg_name"}}) {
        SetUp();
        add("SMU-1", "a", "1.0");
        add("SMU-2", "b", "2.0");
        sql(main_db, "update pkg_upgrade_table set card_id = 1, patch_type = 1");
        cmpnt_list_head &list =
            c.mode == CMPNT_ROWS_TO_HP_LIST ? cmpnt_hp_list : cmpnt_upgrade_list;
        const cmpnt_upgrade_value record = upgrade_record("SMU-0", "z");
        ASSERT_EQ(
            insert_cmpnt_upgrade_db_to_list(
                &record, c.mode == CMPNT_ROWS_TO_HP_LIST ? CMPNT_HP_LIST : CMPNT_UPGRADE_LIST),
            0);
        fault::fail("calloc", 1, ENOMEM);
        EXPECT_EQ(load(c.mode), 0);
        EXPECT_EQ(trace_messages(), out_of_memory(c.function)) << c.mode;
        EXPECT_EQ(records_of(list), (Texts{"SMU-0 z 1.0", "SMU-2 b 2.0"})) << c.mode;
    }
}

// The index of names is a help that a load can do without.
TEST_F(ListRows, DuplicatesAreKnownWithoutMemoryForTheIndex) {
    add_many(30);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(load(CMPNT_ROWS_TO_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 30u);
    EXPECT_EQ(trace_messages().size(), 30u);
}

TEST_F(ListRows, StopAtANullRow) {
    struct Case {
        int (*callback)(void *load, int columns, char **values, char **names);
        const char *name;
    };
    FakeRow row({{"patch_name", "SMU-1"}});
    for (const Case &c :
         {Case{select_current_callback, "select_current_callback"},
          Case{select_all_to_list_callback, "select_all_to_list_callback"},
          Case{select_to_list_by_pkg_version_cb, "select_to_list_by_pkg_version_cb"},
          Case{select_to_list_by_smu_cb, "select_to_list_by_smu_cb"},
          Case{select_to_list_by_single_patch_cb, "select_to_list_by_single_patch_cb"},
          Case{select_to_auto_sync_list_cb, "select_to_auto_sync_list_cb"},
          Case{select_all_to_hp_list_callback, "select_all_to_hp_list_callback"}}) {
        ListLoad load(&cmpnt_upgrade_list, NameKey::package);
        for (const Row &null : {Row{1, nullptr, row.names()}, Row{1, row.values(), nullptr}}) {
            forget_log();
            EXPECT_EQ(c.callback(&load, null.columns, null.values, null.names), -1);
            EXPECT_TRUE(logged("CMPNT_ERROR", c.name, "input param is null.\n"));
        }
    }
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_TRUE(records_of(cmpnt_hp_list).empty());
    EXPECT_TRUE(records_of(auto_sync_list).empty());
}

TEST_F(ListRows, ANullRowFailsTheSelect) {
    Connection connection(main_db);
    connection.run("pragma empty_result_callbacks = 1");
    EXPECT_EQ(select_pkg_info_table(connection.db(), CMPNT_PKG_UPGRADE_TABLE,
                                    CMPNT_ROWS_TO_UPGRADE_LIST, 0),
              -1);
    EXPECT_EQ(trace_messages(),
              (Texts{"error select_all_to_list_callback: input param is null.\n",
                     "error select_pkg_info_table: sqlite error: query aborted\n"}));
}
