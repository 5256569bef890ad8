#include <errno.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

}  // namespace

class SmuAdd : public DeviceTest {};

TEST_F(SmuAdd, AppendsEachPatchOnceWhateverItsPackage) {
    for (const cmpnt_upgrade_value &record :
         {upgrade_record("smu-1", "a"), upgrade_record("smu-2", "a"), upgrade_record("smu-1", "b"),
          upgrade_record("smu-1", "a", "2.0", "running"), upgrade_record("SMU-1", "a"),
          upgrade_record("smu-10", "a")}) {
        EXPECT_EQ(cmpnt_add_to_list_by_smu(&record), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list),
              (Texts{"smu-1 a 1.0", "smu-2 a 1.0", "SMU-1 a 1.0", "smu-10 a 1.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
}

// The test for the name meets an empty list, and says so.
TEST_F(SmuAdd, TellsAnEmptyListAndIsSilentOtherwise) {
    const cmpnt_upgrade_value first = upgrade_record("smu-1", "a"),
                              second = upgrade_record("smu-2", "a");
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&first), 0);
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&second), 0);
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&first), 0);
    EXPECT_EQ(trace_messages(), (Texts{"trace cmpnt_is_exist_current_upgrade_list: the current "
                                       "upgrade list is null.\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_is_exist_current_upgrade_list",
                       "the current upgrade list is null.\n"));
}

TEST_F(SmuAdd, CopiesTheRecordWhole) {
    cmpnt_upgrade_value record = upgrade_record("smu-1", "a", "1.0", "active", "/p");
    record.op_flag = 0x29;
    set_text(record.hotpatch_target_strip_md5, "strip");
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&record), 0);
    ASSERT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
    EXPECT_TRUE(same_record(CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.next)->value, record));
}

TEST_F(SmuAdd, LooksAtTheUpgradeListAlone) {
    const cmpnt_upgrade_value record = upgrade_record("smu-1", "a");
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST), 0);
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&record), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}

TEST_F(SmuAdd, RefusesNull) {
    EXPECT_EQ(cmpnt_add_to_list_by_smu(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_smu", "param is null\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(SmuAdd, FailsWithoutMemoryAndLeavesTheList) {
    const cmpnt_upgrade_value first = upgrade_record("smu-1", "a"),
                              second = upgrade_record("smu-2", "a");
    ASSERT_EQ(cmpnt_add_to_list_by_smu(&first), 0);
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_to_list_by_smu(&second), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_smu",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"smu-1 a 1.0"}));
}
