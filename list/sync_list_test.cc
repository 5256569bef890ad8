#include "list/sync_list.hh"

#include <errno.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

Texts out_of_memory() {
    return {"error cmpnt_malloc: malloc failed, size(" +
                std::to_string(sizeof(cmpnt_upgrade_node)) + "), error(Cannot allocate memory).\n",
            "error malloc_auto_sync_node: malloc cmpnt_auto_sync_list failed\n",
            "error insert_auto_sync_node_to_list: malloc_auto_sync_node failed!\n"};
}

}  // namespace

class SyncList : public DeviceTest {};

TEST_F(SyncList, InsertAppendsToTheSelectedListInOrder) {
    const cmpnt_upgrade_value a = upgrade_record("a", "x"), b = upgrade_record("b", "y"),
                              c = upgrade_record("c", "z");
    EXPECT_EQ(insert_auto_sync_node_to_list(&a, CMPNT_AUTO_SYNC_LIST), 0);
    EXPECT_EQ(insert_auto_sync_node_to_list(&b, CMPNT_AUTO_SYNC_LIST), 0);
    EXPECT_EQ(insert_auto_sync_node_to_list(&c, CMPNT_APP_SYNC_LIST), 0);
    EXPECT_EQ(insert_auto_sync_node_to_list(&a, CMPNT_AUTO_SYNC_LIST), 0);
    EXPECT_EQ(records_of(auto_sync_list), (Texts{"a x 1.0", "b y 1.0", "a x 1.0"}));
    EXPECT_EQ(records_of(app_sync_list), (Texts{"c z 1.0"}));
    EXPECT_TRUE(is_well_linked(auto_sync_list));
    EXPECT_TRUE(is_well_linked(app_sync_list));
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_TRUE(records_of(cmpnt_hp_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SyncList, InsertCopiesTheRecordWhole) {
    cmpnt_upgrade_value record = upgrade_record("a", "x");
    record.card_id = 7;
    set_text(record.hotpatch_target_strip_md5, "strip");
    const cmpnt_upgrade_value before = record;
    ASSERT_EQ(insert_auto_sync_node_to_list(&record, CMPNT_AUTO_SYNC_LIST), 0);
    memset(&record, 0, sizeof(record));
    EXPECT_TRUE(same_record(CMPNT_UPGRADE_NODE(auto_sync_list.next)->value, before));
}

TEST_F(SyncList, InsertIntoAnUnknownListSucceedsQuietlyAndAddsNothing) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    for (const int32_t selector : {2, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(insert_auto_sync_node_to_list(&record, selector), 0);
    }
    EXPECT_TRUE(records_of(auto_sync_list).empty());
    EXPECT_TRUE(records_of(app_sync_list).empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SyncList, InsertRefusesNull) {
    EXPECT_EQ(insert_auto_sync_node_to_list(nullptr, CMPNT_AUTO_SYNC_LIST), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "insert_auto_sync_node_to_list", "param is null\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(SyncList, InsertFailsWithoutMemoryWhateverTheList) {
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    for (const int32_t selector : {0, 1, 2}) {
        forget_log();
        fault::fail("calloc", 1, ENOMEM);
        EXPECT_EQ(insert_auto_sync_node_to_list(&record, selector), -1);
        EXPECT_EQ(trace_messages(), out_of_memory());
    }
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "malloc_auto_sync_node", "malloc cmpnt_auto_sync_list failed\n"));
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "insert_auto_sync_node_to_list", "malloc_auto_sync_node failed!\n"));
    EXPECT_TRUE(records_of(auto_sync_list).empty());
    EXPECT_TRUE(records_of(app_sync_list).empty());
}

TEST_F(SyncList, NameIsLookedForInTheAutoSyncListAlone) {
    const cmpnt_upgrade_value a = upgrade_record("a", "x"), b = upgrade_record("b", "x"),
                              app = upgrade_record("app", "x"), up = upgrade_record("up", "x");
    insert_auto_sync_node_to_list(&a, CMPNT_AUTO_SYNC_LIST);
    insert_auto_sync_node_to_list(&b, CMPNT_AUTO_SYNC_LIST);
    insert_auto_sync_node_to_list(&app, CMPNT_APP_SYNC_LIST);
    insert_cmpnt_upgrade_db_to_list(&up, CMPNT_UPGRADE_LIST);
    EXPECT_EQ(smu_name_is_in_auto_sync_list("a"), 1);
    EXPECT_EQ(smu_name_is_in_auto_sync_list("b"), 1);
    for (const char *name : {"app", "up", "x", "A", "", "ab"}) {
        EXPECT_EQ(smu_name_is_in_auto_sync_list(name), 0) << name;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SyncList, NameIsInNoEmptyList) {
    EXPECT_EQ(smu_name_is_in_auto_sync_list("a"), 0);
    EXPECT_EQ(smu_name_is_in_auto_sync_list(""), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SyncList, NameMayNotBeNull) {
    EXPECT_EQ(smu_name_is_in_auto_sync_list(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "smu_name_is_in_auto_sync_list", "param is null\n"));
}

TEST_F(SyncList, AnIndexKnowsWhatIsInserted) {
    NameIndex index(&auto_sync_list, NameKey::patch);
    for (int i = 0; i < 40; i++) {
        const cmpnt_upgrade_value record = upgrade_record(std::to_string(i), "x");
        EXPECT_EQ(smu_name_is_in_auto_sync_list(record, index), 0);
        EXPECT_EQ(insert_auto_sync_node_to_list(record, index), 0);
        EXPECT_EQ(smu_name_is_in_auto_sync_list(record, index), 1);
    }
    EXPECT_EQ(records_of(auto_sync_list).size(), 40u);
}

// The list is long already, so that the index no longer walks it.
TEST_F(SyncList, AnIndexThatIsBuiltIsToldOfEachNode) {
    for (int i = 0; i < 20; i++) {
        const cmpnt_upgrade_value held = upgrade_record(std::to_string(i), "x");
        ASSERT_EQ(insert_auto_sync_node_to_list(&held, CMPNT_AUTO_SYNC_LIST), 0);
    }
    NameIndex index(&auto_sync_list, NameKey::patch);
    const cmpnt_upgrade_value record = upgrade_record("new", "x");
    EXPECT_EQ(smu_name_is_in_auto_sync_list(record, index), 0);
    EXPECT_EQ(insert_auto_sync_node_to_list(record, index), 0);
    EXPECT_EQ(smu_name_is_in_auto_sync_list(record, index), 1);
}

TEST_F(SyncList, AnIndexIsNotToldOfANodeThatWasNotMade) {
    NameIndex index(&auto_sync_list, NameKey::patch);
    const cmpnt_upgrade_value record = upgrade_record("a", "x");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(insert_auto_sync_node_to_list(record, index), -1);
    EXPECT_EQ(trace_messages(), out_of_memory());
    EXPECT_EQ(smu_name_is_in_auto_sync_list(record, index), 0);
}
