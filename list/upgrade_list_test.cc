#include "list/upgrade_list.hh"

#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

constexpr int32_t unknown_selectors[] = {2, -1, 9, INT32_MAX, INT32_MIN};

cmpnt_upgrade_node *first_node(const cmpnt_list_head &head) {
    return CMPNT_UPGRADE_NODE(head.next);
}

// A record with no byte left zero but the terminators.
cmpnt_upgrade_value full_record() {
    cmpnt_upgrade_value record;
    memset(&record, 'x', sizeof(record));
    char *const ends[] = {std::end(record.patch_name),
                          std::end(record.state_name),
                          std::end(record.description),
                          std::end(record.patch_ver),
                          std::end(record.patch_id),
                          std::end(record.effective_time),
                          std::end(record.last_patch),
                          std::end(record.pkg_name),
                          std::end(record.cur_version),
                          std::end(record.last_version),
                          std::end(record.unused_text),
                          std::end(record.cur_pkg_path),
                          std::end(record.pkg_state_name),
                          std::end(record.hotpatch_file),
                          std::end(record.hotpatch_target),
                          std::end(record.hotpatch_target_path),
                          std::end(record.hotpatch_target_pkg_path),
                          std::end(record.hotpatch_target_md5),
                          std::end(record.hotpatch_target_strip_md5)};
    for (char *end : ends) {
        end[-1] = '\0';
    }
    return record;
}

// What an allocation failure says, from the allocator up to the given function.
Texts out_of_memory(const std::string &function = "") {
    Texts messages = {"error cmpnt_malloc: malloc failed, size(" +
                          std::to_string(sizeof(cmpnt_upgrade_node)) +
                          "), error(Cannot allocate memory).\n",
                      "error malloc_cmpnt_node: malloc cmpnt_db_list failed\n",
                      "error insert_cmpnt_upgrade_db_to_list: malloc_cmpnt_node failed!\n"};
    if (!function.empty()) {
        messages.push_back("error " + function + ": insert_cmpnt_upgrade_db_to_list fail.\n");
    }
    return messages;
}

}  // namespace

class UpgradeList : public DeviceTest {};

TEST_F(UpgradeList, InsertAppendsToTheSelectedListInOrder) {
    const cmpnt_upgrade_value a = upgrade_record("a", "x"), b = upgrade_record("b", "y"),
                              c = upgrade_record("c", "z");
    EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&a, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&b, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&c, CMPNT_HP_LIST), 0);
    EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&a, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"a x 1.0", "b y 1.0", "a x 1.0"}));
    EXPECT_EQ(records_of(cmpnt_hp_list), (Texts{"c z 1.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_TRUE(is_well_linked(cmpnt_hp_list));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(UpgradeList, InsertCopiesEveryByteAndTheRecordStaysTheCallers) {
    cmpnt_upgrade_value record = full_record();
    const cmpnt_upgrade_value before = record;
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    EXPECT_TRUE(same_record(record, before));
    memset(&record, 0, sizeof(record));
    EXPECT_TRUE(same_record(first_node(cmpnt_upgrade_list)->value, before));
}

TEST_F(UpgradeList, InsertTakesARecordOfItsOwnList) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    EXPECT_EQ(
        insert_cmpnt_upgrade_db_to_list(&first_node(cmpnt_upgrade_list)->value, CMPNT_UPGRADE_LIST),
        0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"a x 1.0", "a x 1.0"}));
}

TEST_F(UpgradeList, InsertIntoAnUnknownListSucceedsQuietlyAndAddsNothing) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    for (const int32_t selector : unknown_selectors) {
        EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&record, selector), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list), Texts());
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(UpgradeList, InsertRefusesNull) {
    EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(nullptr, CMPNT_UPGRADE_LIST), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "insert_cmpnt_upgrade_db_to_list", "param is null\n"));
}

TEST_F(UpgradeList, InsertFailsWithoutMemoryWhateverTheList) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    for (const int32_t selector : {int32_t{CMPNT_UPGRADE_LIST}, int32_t{CMPNT_HP_LIST}, 9}) {
        forget_log();
        fault::fail("calloc", 1, ENOMEM);
        EXPECT_EQ(insert_cmpnt_upgrade_db_to_list(&record, selector), -1);
        EXPECT_EQ(trace_messages(), out_of_memory());
    }
    EXPECT_TRUE(logged("CMPNT_ERROR", "malloc_cmpnt_node", "malloc cmpnt_db_list failed\n"));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "insert_cmpnt_upgrade_db_to_list", "malloc_cmpnt_node failed!\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), Texts());
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
}

TEST_F(UpgradeList, AddDropsASecondRecordOfPatchAndPackageWhateverItsVersion) {
    const cmpnt_upgrade_value first = upgrade_record("smu", "pkg", "1.0"),
                              again = upgrade_record("smu", "pkg", "1.0"),
                              newer = upgrade_record("smu", "pkg", "2.0", "running");
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&first, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&again, CMPNT_UPGRADE_LIST), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_search_list_by_smu_pkg",
                       "patch(smu), pkg(pkg) already exist, pkg_ver(1.0)\n"));
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&newer, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0"}));
}

TEST_F(UpgradeList, AddKeepsRecordsThatDifferInPatchOrPackage) {
    for (const cmpnt_upgrade_value &record :
         {upgrade_record("smu", "pkg"), upgrade_record("smu", "pkg2"),
          upgrade_record("smu2", "pkg"), upgrade_record("smup", "kg"), upgrade_record("SMU", "pkg"),
          upgrade_record("", "pkg"), upgrade_record("smu", ""), upgrade_record("", "")}) {
        EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 8u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(UpgradeList, AddLooksAtTheSelectedListAlone) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, CMPNT_HP_LIST), 0);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, CMPNT_HP_LIST), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0"}));
    EXPECT_EQ(records_of(cmpnt_hp_list), (Texts{"smu pkg 1.0"}));
}

TEST_F(UpgradeList, AddComparesNamesToTheirLastByte) {
    const std::string name(78, 'n');
    for (const char *last : {"a", "b", "a"}) {
        const cmpnt_upgrade_value record = upgrade_record(name + last, name + last);
        EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 2u);
}

TEST_F(UpgradeList, AddToAnUnknownListSaysSoAndSucceeds) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    for (const int32_t selector : unknown_selectors) {
        forget_log();
        EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, selector), 0);
        EXPECT_EQ(trace_messages(),
                  (Texts{"error cmpnt_add_upgrade_value_to_list: list is null.\n"}));
    }
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_upgrade_value_to_list", "list is null.\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), Texts());
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
}

TEST_F(UpgradeList, AddToAnUnknownListStillNeedsMemory) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&record, 2), -1);
}

TEST_F(UpgradeList, AddRefusesNull) {
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(nullptr, CMPNT_UPGRADE_LIST), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_upgrade_value_to_list", "param is null\n"));
}

TEST_F(UpgradeList, AddFailsWithoutMemoryAndLeavesTheList) {
    const cmpnt_upgrade_value first = upgrade_record("a", "x"), second = upgrade_record("b", "x");
    cmpnt_add_upgrade_value_to_list(&first, CMPNT_HP_LIST);
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&second, CMPNT_HP_LIST), -1);
    EXPECT_EQ(trace_messages(), out_of_memory("cmpnt_add_upgrade_value_to_list"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_upgrade_value_to_list",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(records_of(cmpnt_hp_list), (Texts{"a x 1.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_hp_list));
}

TEST_F(UpgradeList, AddByVersionPassesOverTheWordInstalledAlone) {
    for (const char *state : {"installed", "active", "Installed", "installed ", "", "running"}) {
        const cmpnt_upgrade_value record = upgrade_record("smu", "pkg", state, state);
        EXPECT_EQ(cmpnt_add_to_list_by_pkg_version(&record), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list),
              (Texts{"smu pkg active", "smu pkg Installed", "smu pkg installed ", "smu pkg ",
                     "smu pkg running"}));
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(UpgradeList, AddByVersionReadsTheFirstOfTheTwoStates) {
    cmpnt_upgrade_value record = upgrade_record("smu", "pkg", "1.0", "active");
    set_text(record.pkg_state_name, "installed");
    EXPECT_EQ(cmpnt_add_to_list_by_pkg_version(&record), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

TEST_F(UpgradeList, AddByVersionFailures) {
    EXPECT_EQ(cmpnt_add_to_list_by_pkg_version(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_pkg_version", "param is null\n"));
    forget_log();
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_to_list_by_pkg_version(&record), -1);
    EXPECT_EQ(trace_messages(), out_of_memory("cmpnt_add_to_list_by_pkg_version"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_pkg_version",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), Texts());
}

TEST_F(UpgradeList, AddByPackageStartsAnEmptyList) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(&record), 0);
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "search_cmpnt_upgrade_list_by_pkg_name", "upgrade list is null\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0"}));
}

TEST_F(UpgradeList, AddByPackageDropsASecondRecordOfThePackageWhateverItsPatch) {
    const cmpnt_upgrade_value first = upgrade_record("a", "pkg"),
                              other = upgrade_record("a", "other"),
                              again = upgrade_record("b", "pkg", "2.0");
    cmpnt_add_to_upgrade_list_by_pkg_name(&first);
    forget_log();
    EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(&other), 0);
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(&again), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "search_cmpnt_upgrade_list_by_pkg_name",
                       "search found: pkg_name(pkg)\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"a pkg 1.0", "a other 1.0"}));
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
}

TEST_F(UpgradeList, AddByPackageFailures) {
    EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_upgrade_list_by_pkg_name", "param is null\n"));
    const cmpnt_upgrade_value first = upgrade_record("a", "x"), second = upgrade_record("a", "y");
    cmpnt_add_to_upgrade_list_by_pkg_name(&first);
    forget_log();
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(&second), -1);
    EXPECT_EQ(trace_messages(), out_of_memory("cmpnt_add_to_upgrade_list_by_pkg_name"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_upgrade_list_by_pkg_name",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"a x 1.0"}));
}

// Both names of the recycling function.
class UpgradeListRecycle : public UpgradeList,
                           public testing::WithParamInterface<void (*)(int32_t)> {};

TEST_P(UpgradeListRecycle, FreesTheSelectedListAlone) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    for (int i = 0; i < 5; i++) {
        insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
        insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    }
    GetParam()(CMPNT_HP_LIST);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 5u);
    EXPECT_EQ(cmpnt_hp_list.next, &cmpnt_hp_list);
    EXPECT_EQ(cmpnt_hp_list.prev, &cmpnt_hp_list);
    GetParam()(CMPNT_UPGRADE_LIST);
    EXPECT_EQ(cmpnt_upgrade_list.next, &cmpnt_upgrade_list);
    EXPECT_EQ(cmpnt_upgrade_list.prev, &cmpnt_upgrade_list);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_P(UpgradeListRecycle, LeavesAnEmptyListEmpty) {
    GetParam()(CMPNT_UPGRADE_LIST);
    EXPECT_EQ(cmpnt_upgrade_list.next, &cmpnt_upgrade_list);
    EXPECT_EQ(cmpnt_upgrade_list.prev, &cmpnt_upgrade_list);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_P(UpgradeListRecycle, RefusesAnUnknownList) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    for (const int32_t selector : unknown_selectors) {
        forget_log();
        GetParam()(selector);
        EXPECT_TRUE(logged("CMPNT_ERROR", "recycle_upgrade_list", "list is null.\n"));
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

TEST_P(UpgradeListRecycle, EndsAtALinkThatAHostLeftNull) {
    cmpnt_hp_list = {nullptr, nullptr};
    GetParam()(CMPNT_HP_LIST);
    EXPECT_EQ(cmpnt_hp_list.next, &cmpnt_hp_list);
    EXPECT_EQ(cmpnt_hp_list.prev, &cmpnt_hp_list);
    EXPECT_EQ(trace_messages(),
              (Texts{"error recycle_upgrade_list: upgrade_list_node is null.\n"}));

    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    cmpnt_hp_list.next->next = nullptr;
    forget_log();
    GetParam()(CMPNT_HP_LIST);
    EXPECT_EQ(records_of(cmpnt_hp_list), Texts());
    EXPECT_TRUE(logged("CMPNT_ERROR", "recycle_upgrade_list", "upgrade_list_node is null.\n"));
}

INSTANTIATE_TEST_SUITE_P(BothNames, UpgradeListRecycle,
                         testing::Values(recycle_upgrade_list, cmpnt_recycle_upgrade_list));

class UpgradeListDelete : public UpgradeList {
protected:
    void add(const std::string &patch, const std::string &pkg, const std::string &version,
             const std::string &state = "active") {
        const cmpnt_upgrade_value record = upgrade_record(patch, pkg, version, state);
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }

    const std::string function = "del_pkg_name_from_upgrade_list";
    const std::string done = "trace " + function + ": del_pkg_name_from_upgrade_list ok\n";
};

TEST_F(UpgradeListDelete, RemovesEveryMatchingNodeWhateverItsState) {
    add("smu", "pkg", "1.0");
    add("smu", "pkg", "2.0");
    add("smu", "pkg", "1.0", "installed");
    add("smu", "other", "1.0");
    add("smu2", "pkg", "1.0");
    add("smu", "pkg", "1.0", "running");
    del_pkg_name_from_upgrade_list("smu", "pkg", "1.0");
    EXPECT_EQ(records_of(cmpnt_upgrade_list),
              (Texts{"smu pkg 2.0", "smu other 1.0", "smu2 pkg 1.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    const std::string deleted =
        "trace " + function + ": delete smu_name(smu), pkg_name(pkg), version(1.0)\n";
    EXPECT_EQ(trace_messages(), (Texts{deleted, deleted, deleted, done}));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", function, "delete smu_name(smu), pkg_name(pkg), version(1.0)\n"));
    EXPECT_TRUE(logged("CMPNT_TRACE", function, "del_pkg_name_from_upgrade_list ok\n"));
}

TEST_F(UpgradeListDelete, CanEmptyTheList) {
    add("smu", "pkg", "1.0");
    add("smu", "pkg", "1.0");
    del_pkg_name_from_upgrade_list("smu", "pkg", "1.0");
    EXPECT_EQ(cmpnt_upgrade_list.next, &cmpnt_upgrade_list);
    EXPECT_EQ(cmpnt_upgrade_list.prev, &cmpnt_upgrade_list);
}

TEST_F(UpgradeListDelete, ComparesThePackageVersionAndNotThePatchVersion) {
    cmpnt_upgrade_value record = upgrade_record("smu", "pkg", "1.0");
    set_text(record.patch_ver, "7");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    del_pkg_name_from_upgrade_list("smu", "pkg", "7");
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0"}));
}

TEST_F(UpgradeListDelete, IsOkWithoutAMatch) {
    add("smu", "pkg", "1.0");
    del_pkg_name_from_upgrade_list("smu", "pkg", "1.00");
    EXPECT_EQ(trace_messages(), (Texts{done}));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu pkg 1.0"}));
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    del_pkg_name_from_upgrade_list("smu", "pkg", "1.0");
    EXPECT_EQ(trace_messages(), (Texts{done, done}));
}

TEST_F(UpgradeListDelete, DoesNotTakeAnOverlongNameForTheOneItBeginsWith) {
    add(std::string(79, 'n'), "pkg", "1.0");
    del_pkg_name_from_upgrade_list(std::string(80, 'n').c_str(), "pkg", "1.0");
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

TEST_F(UpgradeListDelete, LeavesTheHotPatchList) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "pkg");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    del_pkg_name_from_upgrade_list("smu", "pkg", "1.0");
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}

TEST_F(UpgradeListDelete, TakesTextsThatLieInTheNodesItRemoves) {
    add("smu", "pkg", "1.0");
    add("other", "pkg", "1.0");
    add("smu", "pkg", "1.0");
    const cmpnt_upgrade_value &value = first_node(cmpnt_upgrade_list)->value;
    del_pkg_name_from_upgrade_list(value.patch_name, value.pkg_name, value.cur_version);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"other pkg 1.0"}));
    EXPECT_EQ(traced("trace", function, "delete smu_name(smu), pkg_name(pkg), version(1.0)\n"), 2);
}

TEST_F(UpgradeListDelete, RefusesNull) {
    add("smu", "pkg", "1.0");
    const char *const arguments[][3] = {
        {nullptr, "pkg", "1.0"}, {"smu", nullptr, "1.0"}, {"smu", "pkg", nullptr}};
    for (const auto &argument : arguments) {
        forget_log();
        del_pkg_name_from_upgrade_list(argument[0], argument[1], argument[2]);
        EXPECT_EQ(trace_messages(), (Texts{"error " + function + ": param is null.\n"}));
        EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}
