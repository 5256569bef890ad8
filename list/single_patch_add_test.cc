#include <errno.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

cmpnt_upgrade_value patch(const std::string &name, int32_t smu_id, int32_t patch_type = 1,
                          const std::string &version = "1.0") {
    cmpnt_upgrade_value record = upgrade_record(name, "pkg", version);
    record.card_id = smu_id;
    record.patch_type = patch_type;
    return record;
}

const Texts no_smu_id = {"error cmpnt_is_exist_by_smu_id: param is null\n"};

}  // namespace

class SinglePatchAdd : public DeviceTest {
protected:
    static int32_t add(const cmpnt_upgrade_value &record) {
        return cmpnt_add_to_list_by_single(&record);
    }
};

TEST_F(SinglePatchAdd, AppendsEachPatchOfAnSmuOnce) {
    EXPECT_EQ(add(patch("p", 1)), 0);
    EXPECT_EQ(add(patch("q", 1)), 0);
    EXPECT_EQ(add(patch("p", 2)), 0);
    EXPECT_EQ(add(patch("p", 1, 1, "2.0")), 0);
    EXPECT_EQ(add(patch("p", INT32_MAX, 1, "3.0")), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list),
              (Texts{"p pkg 1.0", "q pkg 1.0", "p pkg 1.0", "p pkg 3.0"}));
    EXPECT_TRUE(is_well_linked(cmpnt_upgrade_list));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatchAdd, CopiesTheRecordWhole) {
    cmpnt_upgrade_value record = patch("p", 1);
    set_text(record.hotpatch_target_strip_md5, "strip");
    EXPECT_EQ(add(record), 0);
    ASSERT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
    EXPECT_TRUE(same_record(CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.next)->value, record));
}

// Without an SMU no other patch is the same, and that is told each time.
TEST_F(SinglePatchAdd, AppendsAgainWhatHasNoSmu) {
    for (const int32_t smu_id : {0, 0, -1, -1, INT32_MIN}) {
        forget_log();
        EXPECT_EQ(add(patch("p", smu_id)), 0);
        EXPECT_EQ(trace_messages(), no_smu_id);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_is_exist_by_smu_id", "param is null\n"));
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 5u);
}

TEST_F(SinglePatchAdd, PassesOverWhatIsNoSinglePatch) {
    for (const int32_t patch_type : {0, 2, 3, -1, 0x101, INT32_MIN}) {
        EXPECT_EQ(add(patch("p", 1, patch_type)), 0);
    }
    EXPECT_TRUE(trace_messages().empty());
    // The test for duplicates comes first, and tells a missing SMU here, too.
    EXPECT_EQ(add(patch("p", 0, 0)), 0);
    EXPECT_EQ(trace_messages(), no_smu_id);
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
}

TEST_F(SinglePatchAdd, TakesAnyNodeForADuplicate) {
    const cmpnt_upgrade_value smu = patch("p", 1, 0, "7.0");
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&smu, CMPNT_UPGRADE_LIST), 0);
    EXPECT_EQ(add(patch("p", 1)), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"p pkg 7.0"}));
}

TEST_F(SinglePatchAdd, LooksAtTheUpgradeListAlone) {
    const cmpnt_upgrade_value record = patch("p", 1);
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST), 0);
    EXPECT_EQ(add(record), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}

TEST_F(SinglePatchAdd, RefusesNull) {
    EXPECT_EQ(cmpnt_add_to_list_by_single(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_single", "param is null\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(SinglePatchAdd, FailsWithoutMemoryAndLeavesTheList) {
    ASSERT_EQ(add(patch("p", 1)), 0);
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(add(patch("q", 1)), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_to_list_by_single",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(records_of(cmpnt_upgrade_list), (Texts{"p pkg 1.0"}));
}
