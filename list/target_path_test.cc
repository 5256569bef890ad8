#include <stdlib.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

constexpr int32_t slots = 8;

// Messages as the steps say them, for whole sequences.
std::string said(const std::string &function, const std::string &message) {
    return "trace " + function + ": " + message + "\n";
}

std::string failed(const std::string &function, const std::string &message) {
    return "error " + function + ": " + message + "\n";
}

const std::string target_path = "cmpnt_get_target_pkg_path";
const std::string base_step = "cmpnt_backup_pkg_is_base_version";
const std::string list_step = "cmpnt_get_path_from_upgrade_list";
const std::string delete_step = "del_max_version_from_upgrade_list";
const std::string second_step = "cmpnt_find_second_version";

Texts start_of_search(const std::string &pkg, const std::string &version, int count,
                      const std::string &indexes = "backup_index(0), remove_index(0)") {
    return {
        said(target_path, "get path: pkg_name(" + pkg + "), version(" + version + "), " + indexes),
        said("traverse_count_by_pkg_name", "traverse cmpnt upgrade list, pkg_name(" + pkg +
                                               "). count(" + std::to_string(count) + ")")};
}

Texts operator+(Texts texts, const Texts &more) {
    texts.insert(texts.end(), more.begin(), more.end());
    return texts;
}

}  // namespace

class TargetPath : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
    }

    void TearDown() override {
        cmpnt_recycle_pointer_array(backup_paths, slots);
        cmpnt_recycle_pointer_array(remove_names, slots);
        DeviceTest::TearDown();
    }

    void add(const std::string &pkg, const std::string &version, const std::string &state,
             const std::string &path = "") {
        const cmpnt_upgrade_value record = upgrade_record("smu", pkg, version, state, path);
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }

    void create_base_table() {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    }

    void add_base(const std::string &pkg, const std::string &version) {
        sql(main_db, "insert into package_info_table(package_name, base_version) values('" + pkg +
                         "', '" + version + "')");
    }

    int32_t ask(const char *pkg, const char *version) {
        return cmpnt_get_target_pkg_path(pkg, version, backup_paths, &backup_index, remove_names,
                                         &remove_index);
    }

    // What the arrays hold up to their indexes; "(null)" for an empty slot.
    static Texts stored(char *const *array, int32_t index) {
        Texts texts;
        for (int32_t i = 0; i < index; i++) {
            texts.push_back(array[i] == nullptr ? "(null)" : array[i]);
        }
        return texts;
    }
    Texts backups() const { return stored(backup_paths, backup_index); }
    Texts removes() const { return stored(remove_names, remove_index); }

    char *backup_paths[slots] = {};
    char *remove_names[slots] = {};
    int32_t backup_index = 0;
    int32_t remove_index = 0;
};

TEST_F(TargetPath, RefusesNullBeforeItLooksAtAnythingElse) {
    EXPECT_EQ(cmpnt_get_target_pkg_path(nullptr, "1", nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", target_path, "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_get_target_pkg_path("pkg", nullptr, nullptr, nullptr, nullptr, nullptr), -1);
    EXPECT_EQ(trace_messages(), (Texts{failed(target_path, "param is null.")}));
    EXPECT_TRUE(logged("CMPNT_ERROR", target_path, "param is null.\n"));
}

TEST_F(TargetPath, SurvivesMissingIndexesAndArrays) {
    EXPECT_EQ(
        cmpnt_get_target_pkg_path("pkg", "1", backup_paths, nullptr, remove_names, &remove_index),
        -1);
    EXPECT_EQ(
        cmpnt_get_target_pkg_path("pkg", "1", backup_paths, &backup_index, remove_names, nullptr),
        -1);
    EXPECT_EQ(cmpnt_get_target_pkg_path("pkg", "1", nullptr, &backup_index, nullptr, &remove_index),
              -1);
    backup_index = -1;
    EXPECT_EQ(ask("pkg", "1"), -1);
    EXPECT_EQ(backup_index, -1);
}

TEST_F(TargetPath, SurvivesMissingArraysForTheBasePackageToo) {
    create_base_table();
    add_base("pkg", "1.0");
    write_file("/var/cache/opkg/backup/pkg_1.0.ipk", "base");
    add("pkg", "1.1", "active");
    EXPECT_EQ(
        cmpnt_get_target_pkg_path("pkg", "1.1", nullptr, &backup_index, nullptr, &remove_index),
        -1);
    EXPECT_EQ(backup_index, 0);
    backup_index = -1;
    EXPECT_EQ(ask("pkg", "1.1"), -1);
    EXPECT_EQ(backup_index, -1);
}

// ---- Several records, or none, in force ---------------------------------------------------------

TEST_F(TargetPath, TakesTheNewestThatRemainsAndDeletesTheVersionTakenAway) {
    add("pkg", "1.0.9", "active", "/smu/a/pkg_1.0.9.ipk");
    add("pkg", "1.0.10", "active", "/smu/b/pkg_1.0.10.ipk");
    EXPECT_EQ(ask("pkg", "1.0.10"), 0);
    EXPECT_EQ(backups(), (Texts{"/smu/a/pkg_1.0.9.ipk"}));
    EXPECT_EQ(removes(), Texts());
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0.9"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_EQ(
        trace_messages(),
        start_of_search("pkg", "1.0.10", 2) +
            (Texts{
                said(target_path, "have many packages in database, pkg_name(pkg), ret(2)."),
                said(list_step, "cmpnt_get_path_from_upgrade_list start"),
                said(delete_step, "delete list prepare: pkg_name(pkg), max_version(1.0.10)"),
                said(delete_step,
                     "delete from upgrade list, pkg_name(pkg), version(1.0.10), state(active)"),
                said(delete_step, "del_max_version_from_upgrade_list ok"),
                said(second_step, "cmpnt_find_second_version start"),
                said(second_step, "find max version, pkg_name(pkg), version(1.0.9), state(active)"),
                said(second_step,
                     "find backup path, pkg_name(pkg), current_path(/smu/a/pkg_1.0.9.ipk)"),
                said(second_step, "cmpnt_find_second_version ok"),
                said(list_step, "cmpnt_get_path_from_upgrade_list ok")}));
}

TEST_F(TargetPath, SaysEachStepOnTheTraceChannel) {
    add("pkg", "1", "active", "/1");
    add("pkg", "2", "running", "/2");
    EXPECT_EQ(ask("pkg", "2"), 0);
    for (const TraceLine &line : trace_lines()) {
        EXPECT_TRUE(logged("CMPNT_TRACE", line.function, line.message));
    }
    EXPECT_EQ(trace_lines().size(), 12u);
}

struct Row {
    const char *version;
    const char *state;
    const char *path;
};

struct SearchCase {
    const char *name;
    std::vector<Row> rows;  // of package "pkg"
    const char *taken_away;
    const char *path;
    Texts left;
};

const SearchCase search_cases[] = {
    {"ThreeVersionsInAnyOrder",
     {{"2", "active", "/2"}, {"10", "active", "/10"}, {"9", "running", "/9"}},
     "10",
     "/9",
     {"2", "9"}},
    {"OneThatIsNotTheNewest", {{"2", "active", "/2"}, {"10", "active", "/10"}}, "2", "/10", {"10"}},
    {"OneThatIsNotThere",
     {{"2", "active", "/2"}, {"10", "active", "/10"}},
     "11",
     "/10",
     {"2", "10"}},
    {"OfTwoAlikeTheFirst",
     {{"5", "active", "/first"}, {"5", "active", "/second"}, {"4", "active", "/4"}},
     "5",
     "/second",
     {"5", "4"}},
    {"OfEqualRemainingTheFirst",
     {{"9", "active", "/9"}, {"5", "active", "/first"}, {"5", "running", "/second"}},
     "9",
     "/first",
     {"5", "5"}},
    {"OfVersionsThatCompareEqualTheFirst",
     {{"9", "active", "/9"}, {"1.01", "active", "/first"}, {"1.1", "active", "/second"}},
     "9",
     "/first",
     {"1.01", "1.1"}},
    {"RunningAsWellAsActive", {{"2", "running", "/2"}, {"3", "running", "/3"}}, "3", "/2", {"2"}},
    {"OneThatIsOnlyDeactiveStays",
     {{"3", "Deactive_cold", "/3"}, {"2", "active", "/2"}},
     "3",
     "/2",
     {"3", "2"}},
    {"TheActiveOneOfTwoThatAreAlike",
     {{"3", "Deactive_ready", "/d"}, {"3", "active", "/a"}},
     "3",
     "",
     {"3"}},
    {"NoDeactiveOneAsSecond",
     {{"3", "active", "/3"}, {"2", "Deactive_ready", "/2"}, {"1", "Deactive_cold", "/1"}},
     "3",
     "",
     {"2", "1"}},
    {"NoOtherStateAsSecond",
     {{"4", "active", "/4"},
      {"3", "running", "/3"},
      {"8", "installed", "/8"},
      {"7", "Active_ready", "/7"},
      {"6", "invalid_hp_active", "/6"},
      {"5", "Active", "/5"}},
     "4",
     "/3",
     {"3", "8", "7", "6", "5"}},
    {"NoRecordInForceAtAll", {{"3", "installed", "/3"}}, "3", "", {"3"}},
    {"ARemainingOneWithoutAPath", {{"3", "active", "/3"}, {"2", "active", ""}}, "3", "", {"2"}},
    {"VersionsNoNewerThanNone",
     {{"3", "active", "/3"}, {"0", "active", "/0"}, {"~1", "active", "/1"}},
     "3",
     "",
     {"0", "~1"}},
    {"AnEmptyVersion", {{"3", "active", "/3"}, {"", "active", "/empty"}}, "3", "/empty", {""}},
};

class TargetPathSearch : public TargetPath, public testing::WithParamInterface<SearchCase> {};

TEST_P(TargetPathSearch, StoresAPath) {
    const SearchCase &test = GetParam();
    Texts left;
    for (const Row &row : test.rows) {
        add("pkg", row.version, row.state, row.path);
        add("other", "99", "active", "/other");
    }
    EXPECT_EQ(ask("pkg", test.taken_away), 0);
    EXPECT_EQ(backups(), (Texts{test.path}));
    EXPECT_EQ(removes(), Texts());
    for (const std::string &record : records_of(cmpnt_upgrade_list)) {
        if (record.compare(0, 8, "smu pkg ") == 0) {
            left.push_back(record.substr(8));
        }
    }
    EXPECT_EQ(left, test.left);
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
}

INSTANTIATE_TEST_SUITE_P(Of, TargetPathSearch, testing::ValuesIn(search_cases),
                         [](const auto &test) { return test.param.name; });

TEST_F(TargetPath, IsEmptyWhenThePackageHasNoRecordInForce) {
    add("other", "1", "active", "/other");
    EXPECT_EQ(ask("pkg", "1"), 0);
    EXPECT_EQ(backups(), (Texts{""}));
    EXPECT_EQ(
        trace_messages(),
        start_of_search("pkg", "1", 0) +
            (Texts{said(target_path, "have many packages in database, pkg_name(pkg), ret(0)."),
                   said(list_step, "cmpnt_get_path_from_upgrade_list start"),
                   said(delete_step, "delete list prepare: pkg_name(pkg), max_version(1)"),
                   said(delete_step, "del_max_version_from_upgrade_list ok"),
                   said(second_step, "cmpnt_find_second_version start"),
                   said(second_step, "cmpnt_find_second_version ok"),
                   said(list_step, "cmpnt_get_path_from_upgrade_list ok")}));
}

TEST_F(TargetPath, FailsOnAnEmptyListAndLeavesTheBufferInItsSlot) {
    EXPECT_EQ(ask("pkg", "1"), -1);
    EXPECT_EQ(backup_index, 0);
    EXPECT_EQ(remove_index, 0);
    ASSERT_NE(backup_paths[0], nullptr);
    EXPECT_EQ(cmpnt_name_is_null(backup_paths[0], CMPNT_PATH_SIZE), 1);
    EXPECT_EQ(
        trace_messages(),
        start_of_search("pkg", "1", 0) +
            (Texts{said(target_path, "have many packages in database, pkg_name(pkg), ret(0)."),
                   said(list_step, "cmpnt_get_path_from_upgrade_list start"),
                   said(delete_step, "delete list prepare: pkg_name(pkg), max_version(1)"),
                   failed(delete_step, "cmpnt upgrade list is null"),
                   failed(list_step, "del_max_version_from_upgrade_list fail."),
                   failed(target_path, "cmpnt_get_path_from_upgrade_list fail.")}));
    EXPECT_TRUE(logged("CMPNT_ERROR", delete_step, "cmpnt upgrade list is null\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", list_step, "del_max_version_from_upgrade_list fail.\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", target_path, "cmpnt_get_path_from_upgrade_list fail.\n"));
}

TEST_F(TargetPath, OverwritesThePointerThatAFailureLeftBehind) {
    EXPECT_EQ(ask("pkg", "1"), -1);
    char *left_behind = backup_paths[0];
    add("pkg", "1", "active", "/1");
    add("pkg", "2", "active", "/2");
    EXPECT_EQ(ask("pkg", "2"), 0);
    EXPECT_NE(backup_paths[0], left_behind);
    EXPECT_STREQ(backup_paths[0], "/1");
    EXPECT_STREQ(left_behind, "");  // still the caller's, who has lost it
    free(left_behind);
}

TEST_F(TargetPath, LeavesTheListWhenMemoryIsOut) {
    add("pkg", "1", "active", "/1");
    add("pkg", "2", "active", "/2");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(ask("pkg", "2"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", target_path, "cmpnt_malloc fail!\n"));
    EXPECT_EQ(backup_index, 0);
    EXPECT_EQ(backup_paths[0], nullptr);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1", "smu pkg 2"}));
}

TEST_F(TargetPath, StoresAPathThatFillsItsField) {
    const std::string longest = "/" + std::string(258, 'p');
    add("pkg", "1", "active", longest);
    add("pkg", "2", "active", "/2");
    EXPECT_EQ(ask("pkg", "2"), 0);
    EXPECT_EQ(backups(), (Texts{longest}));
}

TEST_F(TargetPath, TakesNamesThatLieInTheNodeItDeletes) {
    add("pkg", "1", "active", "/1");
    add("pkg", "2", "active", "/2");
    const cmpnt_upgrade_value &newest = CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev)->value;
    EXPECT_EQ(ask(newest.pkg_name, newest.cur_version), 0);
    EXPECT_EQ(backups(), (Texts{"/1"}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1"}));
}

TEST_F(TargetPath, DoesNotTakeOverlongTextsForTheOnesTheyBeginWith) {
    const std::string name(79, 'n');
    add(name, "1", "active", "/1");
    add(name, "2", "active", "/2");
    EXPECT_EQ(ask((name + "n").c_str(), "2"), 0);
    EXPECT_EQ(ask(name.c_str(), std::string(40, '2').c_str()), 0);
    EXPECT_EQ(backups(), (Texts{"", "/2"}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 2u);
}

// ---- One record in force ------------------------------------------------------------------------

TEST_F(TargetPath, IsTheBasePackageWhenOneRecordAloneIsInForce) {
    create_base_table();
    add_base("pkg", "1.0.2");
    write_file("/var/cache/opkg/backup/pkg_1.0.2.ipk", "base");
    for (const char *state : {"active", "running", "Deactive_ready", "Deactive_cold"}) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        add("pkg", "2", state, "/2");
        add("pkg", "3", "installed", "/3");
        add("other", "4", "active", "/4");
        EXPECT_EQ(ask("pkg", "not looked at"), 0) << state;
        EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 3u);
    }
    const std::string path = "/var/cache/opkg/backup/pkg_1.0.2.ipk";
    EXPECT_EQ(backups(), (Texts{path, path, path, path}));
    EXPECT_EQ(removes(), Texts());
}

TEST_F(TargetPath, SaysWhichBasePackageItFound) {
    create_base_table();
    add_base("pkg", "1.0");
    write_file("/var/cache/opkg/backup/pkg_1.0.ipk", "base");
    add("pkg", "2", "active");
    backup_index = 1;
    remove_index = 2;
    forget_log();
    EXPECT_EQ(ask("pkg", "2"), 0);
    EXPECT_EQ(backup_index, 2);
    EXPECT_EQ(remove_index, 2);
    EXPECT_EQ(backup_paths[0], nullptr);
    EXPECT_EQ(trace_messages(),
              start_of_search("pkg", "2", 1, "backup_index(1), remove_index(2)") +
                  (Texts{said(base_step, "only one package in database, pkg_name(pkg)."),
                         said("cmpnt_pkg_is_base_version",
                              "get base name(pkg), "
                              "backup_path(/var/cache/opkg/backup/pkg_1.0.ipk)"),
                         said(base_step,
                              "base_name(pkg), "
                              "backup_path(/var/cache/opkg/backup/pkg_1.0.ipk)")}));
    EXPECT_TRUE(logged("CMPNT_TRACE", base_step, "only one package in database, pkg_name(pkg).\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", base_step,
                       "base_name(pkg), backup_path(/var/cache/opkg/backup/pkg_1.0.ipk)\n"));
}

TEST_F(TargetPath, KeepsTheBasePackageWhoseFileIsGone) {
    create_base_table();
    add_base("pkg", "1.0");
    write_file("/var/cache/opkg/backup/pkg_1.1.ipk", "another version");
    add("pkg", "2", "active");
    EXPECT_EQ(ask("pkg", "2"), 4);
    EXPECT_EQ(backup_index, 0);
    EXPECT_EQ(remove_index, 0);
    EXPECT_EQ(backup_paths[0], nullptr);
    EXPECT_EQ(remove_names[0], nullptr);
    EXPECT_EQ(trace_messages(),
              start_of_search("pkg", "2", 1) +
                  (Texts{said(base_step, "only one package in database, pkg_name(pkg).")}));
}

TEST_F(TargetPath, RemovesAPackageThatHasNoBase) {
    create_base_table();
    add_base("other", "1.0");
    add("pkg", "2", "active");
    EXPECT_EQ(ask("pkg", "2"), 4);
    EXPECT_EQ(backup_index, 0);
    EXPECT_EQ(removes(), (Texts{"pkg"}));
    const std::string message = "base(pkg), base_version() not exist, so remove after.";
    EXPECT_EQ(trace_messages(),
              start_of_search("pkg", "2", 1) +
                  (Texts{said(base_step, "only one package in database, pkg_name(pkg)."),
                         said(base_step, message)}));
    EXPECT_TRUE(logged("CMPNT_TRACE", base_step, message + "\n"));
}

TEST_F(TargetPath, StoresACopyOfTheNameToRemove) {
    create_base_table();
    add("pkg", "2", "active");
    char name[] = "pkg";
    EXPECT_EQ(ask(name, "2"), 4);
    name[0] = 'x';
    EXPECT_EQ(removes(), (Texts{"pkg"}));
}

TEST_F(TargetPath, FailsWithoutADatabase) {
    add("pkg", "2", "active");
    EXPECT_EQ(ask("pkg", "2"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", base_step, "cmpnt_get_base_version_by_pkg_name fail.\n"));
    EXPECT_EQ(backup_index, 0);
    EXPECT_EQ(remove_index, 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

TEST_F(TargetPath, DoesNotRemoveAPackageThatTheDatabaseCannotTellOf) {
    create_base_table();
    add("pkg", "2", "active");
    // The base version is read by the first statement; the second asks for the name.
    fault::fail("sqlite3_exec", 2, EIO);
    EXPECT_EQ(ask("pkg", "2"), -1);
    EXPECT_EQ(
        traced("error", "cmpnt_pkg_name_exist_in_base_table", "operate database fail, cmd(18).\n"),
        1);
    EXPECT_EQ(trace_lines().back().function, "cmpnt_pkg_name_exist_in_base_table");
    EXPECT_EQ(remove_index, 0);
    EXPECT_EQ(remove_names[0], nullptr);
}

TEST_F(TargetPath, CountsTheBaseFileWithoutMemoryForItsPath) {
    create_base_table();
    add_base("pkg", "1.0");
    write_file("/var/cache/opkg/backup/pkg_1.0.ipk", "base");
    add("pkg", "2", "active");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(ask("pkg", "2"), 0);
    EXPECT_EQ(backups(), (Texts{"(null)"}));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_pkg_is_base_version", "cmpnt_malloc_and_memory fail.\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", base_step, "base_name(pkg), backup_path((null))\n"));
}

TEST_F(TargetPath, FailsWithoutMemoryForTheNameToRemove) {
    create_base_table();
    add("pkg", "2", "active");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(ask("pkg", "2"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", base_step, "cmpnt_malloc_and_memory fail.\n"));
    EXPECT_EQ(remove_index, 0);
    EXPECT_EQ(remove_names[0], nullptr);
    const Texts messages = trace_messages();
    EXPECT_EQ(messages[3],
              said(base_step, "base(pkg), base_version() not exist, so remove after."));
}

TEST_F(TargetPath, TakesHostileNames) {
    create_base_table();
    for (const std::string &name :
         {std::string("$(touch /tmp/hit)"), std::string("a b\n%s%n"), std::string(79, 'n')}) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        add(name, "1", "active");
        EXPECT_EQ(ask(name.c_str(), "1"), 4);
    }
    EXPECT_EQ(removes(), (Texts{"$(touch /tmp/hit)", "a b\n%s%n", std::string(79, 'n')}));
    EXPECT_FALSE(exists("/tmp/hit"));
    // A quote breaks the question whether the base table knows the name.
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    add("o'name", "1", "active");
    EXPECT_EQ(ask("o'name", "1"), -1);
    EXPECT_EQ(remove_index, 3);
}

// ---- Whole batches over a real database ---------------------------------------------------------

class TargetPathBatch : public TargetPath {
protected:
    void SetUp() override {
        TargetPath::SetUp();
        create_base_table();
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN), 0);
    }

    static void record(const std::string &patch, const std::string &pkg, const std::string &version,
                       int state) {
        sql(main_db,
            "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, "
            "cur_pkg_path, pkg_state) values('" +
                patch + "', '" + pkg + "', '" + version + "', '" + smu_path(patch, pkg, version) +
                "', " + std::to_string(state) + ")");
    }

    static std::string smu_path(const std::string &patch, const std::string &pkg,
                                const std::string &version) {
        return "/data/cmpnt/opkg/" + patch + ".multiple/" + pkg + "_" + version + ".ipk";
    }

    void load() {
        cmpnt_client_list_init();
        ASSERT_EQ(traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_TO_UPGRADE_LIST, 0,
                                          CMPNT_DB_MAIN),
                  0);
    }
};

TEST_F(TargetPathBatch, RollsAWholeUpgradeBack) {
    add_base("kernel", "1.0");
    add_base("routing", "1.0");
    add_base("driver", "1.0");
    write_file("/var/cache/opkg/backup/kernel_1.0.ipk", "base");
    record("smu1", "routing", "1.0.9", CMPNT_STATE_RUNNING);
    record("smu1", "shell", "1.1", CMPNT_STATE_ACTIVE);
    record("smu2", "routing", "1.0.10", CMPNT_STATE_ACTIVE);
    record("smu2", "kernel", "1.1", CMPNT_STATE_DEACTIVE_COLD);
    record("smu2", "driver", "1.1", CMPNT_STATE_ACTIVE);
    record("smu2", "tool", "1.0", CMPNT_STATE_RUNNING);
    record("smu2", "shell", "1.2", CMPNT_STATE_DEACTIVE_READY);
    record("smu3", "kernel", "9.9", CMPNT_STATE_INSTALLED);
    load();
    ASSERT_EQ(records_of(cmpnt_upgrade_list).size(), 8u);

    EXPECT_EQ(ask("routing", "1.0.10"), 0);
    EXPECT_EQ(ask("kernel", "1.1"), 0);
    EXPECT_EQ(ask("driver", "1.1"), 4);
    EXPECT_EQ(ask("tool", "1.0"), 4);
    EXPECT_EQ(ask("shell", "1.2"), 0);
    EXPECT_EQ(backups(),
              (Texts{smu_path("smu1", "routing", "1.0.9"), "/var/cache/opkg/backup/kernel_1.0.ipk",
                     smu_path("smu1", "shell", "1.1")}));
    EXPECT_EQ(removes(), (Texts{"tool"}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 7u);
    EXPECT_EQ(traced("trace", target_path,
                     "get path: pkg_name(shell), version(1.2), backup_index(2), remove_index(1)\n"),
              1);
}

TEST_F(TargetPathBatch, SeesWhatAnEarlierQuestionDeleted) {
    add_base("pkg", "1.0");
    write_file("/var/cache/opkg/backup/pkg_1.0.ipk", "base");
    for (const char *version : {"1.1", "1.3", "1.2"}) {
        record(std::string("smu") + version, "pkg", version, CMPNT_STATE_ACTIVE);
    }
    load();
    EXPECT_EQ(ask("pkg", "1.3"), 0);
    EXPECT_EQ(ask("pkg", "1.2"), 0);
    EXPECT_EQ(ask("pkg", "1.1"), 0);  // alone by now
    EXPECT_EQ(backups(), (Texts{smu_path("smu1.2", "pkg", "1.2"), smu_path("smu1.1", "pkg", "1.1"),
                                "/var/cache/opkg/backup/pkg_1.0.ipk"}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu1.1 pkg 1.1"}));
}

TEST_F(TargetPathBatch, OfEqualVersionsTheFirstRowWins) {
    record("smu1", "pkg", "1.1", CMPNT_STATE_ACTIVE);
    record("smu2", "pkg", "1.1", CMPNT_STATE_RUNNING);
    record("smu3", "pkg", "1.1", CMPNT_STATE_ACTIVE);
    load();
    EXPECT_EQ(ask("pkg", "1.1"), 0);
    EXPECT_EQ(backups(), (Texts{smu_path("smu2", "pkg", "1.1")}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu2 pkg 1.1", "smu3 pkg 1.1"}));
}
