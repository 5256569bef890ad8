#include "list/single_patch.hh"

#include <string.h>

#include <deque>

#include "common/working_record.hh"
#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

constexpr int32_t in_force = CMPNT_SINGLES_IN_FORCE;
constexpr int32_t of_smu_list = CMPNT_SINGLES_OF_SMU_LIST;
constexpr int32_t of_any_state = CMPNT_SINGLES_OF_ANY_STATE;
constexpr int32_t kinds_of_the_upgrade_list[] = {in_force, of_any_state, 0, 5, -1, INT32_MAX};

cmpnt_upgrade_value zero_record() {
    cmpnt_upgrade_value record;
    memset(&record, 0, sizeof(record));
    return record;
}

}  // namespace

class SinglePatch : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        cmpnt_smu_list_init();
        memset(&out, 'x', sizeof(out));
    }

    void TearDown() override {
        cmpnt_smu_list_init();
        DeviceTest::TearDown();
    }

    // Into the upgrade list: the patch's own version is not that of its package.
    static void add(const std::string &name, const std::string &patch_ver,
                    const std::string &state = "active", int32_t patch_type = 1) {
        cmpnt_upgrade_value record = upgrade_record(name, "pkg", "9.9", state);
        set_text(record.patch_ver, patch_ver);
        record.patch_type = patch_type;
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }

    // Into the SMU list, as a host does.
    cmpnt_smu_value &add_smu(const std::string &name, const std::string &patch_ver,
                             int32_t patch_type = 1) {
        cmpnt_smu_node &node = smus.emplace_back();
        memset(&node, 0, sizeof(node));
        set_text(node.value.patch_name, name);
        set_text(node.value.patch_ver, patch_ver);
        node.value.patch_type = patch_type;
        node.link.next = &cmpnt_smu_list;
        node.link.prev = cmpnt_smu_list.prev;
        cmpnt_smu_list.prev->next = &node.link;
        cmpnt_smu_list.prev = &node.link;
        return node.value;
    }

    static int32_t count(int32_t kind) {
        int32_t count = -7;
        cmpnt_get_single_patch_num(&count, kind);
        return count;
    }

    std::string by_index(int32_t index, int32_t kind) {
        memset(&out, 'x', sizeof(out));
        cmpnt_get_smu_version_by_index(&out, index, kind);
        return out.patch_name;
    }

    bool out_is_zero() const { return same_record(out, zero_record()); }

    cmpnt_upgrade_value out;
    std::deque<cmpnt_smu_node> smus;
};

TEST_F(SinglePatch, NumberCountsThoseOfTheKindsList) {
    add("a", "1");
    add("b", "1", "installed");
    add("smu", "1", "active", 0);
    add("odd", "1", "active", 2);
    add("c", "1", "");
    add_smu("d", "1");
    add_smu("smu", "1", 0);
    for (const int32_t kind : kinds_of_the_upgrade_list) {
        EXPECT_EQ(count(kind), 3) << kind;
    }
    EXPECT_EQ(count(of_smu_list), 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, NumberIsZeroForEmptyLists) {
    for (const int32_t kind : kinds_of_the_upgrade_list) {
        EXPECT_EQ(count(kind), 0);
    }
    EXPECT_EQ(count(of_smu_list), 0);
}

TEST_F(SinglePatch, NumberHasNowhereToGo) {
    add("a", "1");
    cmpnt_get_single_patch_num(nullptr, in_force);
    cmpnt_get_single_patch_num(nullptr, of_smu_list);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, TargetStateIsThatOfASinglePatch) {
    add("a", "1", "installed");
    add("smu", "1", "running", 0);
    add("odd", "1", "Active_cold", 2);
    add("b", "1", "active");
    EXPECT_EQ(cmpnt_is_target_state_single_patch("installed"), 1);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("active"), 1);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("running"), 0);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("Active_cold"), 0);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("Active"), 0);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("activ"), 0);
    EXPECT_EQ(cmpnt_is_target_state_single_patch(""), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, TargetStateIsThatOfThePatchNotOfItsPackage) {
    add("a", "1", "active");
    set_text(CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.next)->value.pkg_state_name, "running");
    EXPECT_EQ(cmpnt_is_target_state_single_patch("active"), 1);
    EXPECT_EQ(cmpnt_is_target_state_single_patch("running"), 0);
}

TEST_F(SinglePatch, TargetStateOfAnEmptyListIsNone) {
    add_smu("a", "1");
    EXPECT_EQ(cmpnt_is_target_state_single_patch(""), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, TargetStateRefusesNull) {
    EXPECT_EQ(cmpnt_is_target_state_single_patch(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_is_target_state_single_patch", "param is null\n"));
}

TEST_F(SinglePatch, ByIndexCountsFromOneAndPassesOverOthers) {
    add("smu", "1", "active", 0);
    add("a", "1");
    add("odd", "1", "active", 2);
    add("b", "1");
    for (const int32_t kind : kinds_of_the_upgrade_list) {
        EXPECT_EQ(by_index(1, kind), "a") << kind;
        EXPECT_EQ(g_variable.single_patch_index, 1);
        EXPECT_EQ(by_index(2, kind), "b") << kind;
        EXPECT_EQ(g_variable.single_patch_index, 2);
    }
    const cmpnt_upgrade_value &b = CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev)->value;
    EXPECT_TRUE(same_record(out, b));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, ByIndexThatIsNotReachedZeroes) {
    add("a", "1");
    add("b", "1");
    add_smu("c", "1");
    for (const int32_t index : {0, 3, -1, INT32_MAX, INT32_MIN}) {
        by_index(index, in_force);
        EXPECT_TRUE(out_is_zero()) << index;
        EXPECT_EQ(g_variable.single_patch_index, 2);
    }
    by_index(2, of_smu_list);
    EXPECT_TRUE(out_is_zero());
    EXPECT_EQ(g_variable.single_patch_index, 1);
    cmpnt_smu_list_init();
    by_index(1, of_smu_list);
    EXPECT_TRUE(out_is_zero());
    EXPECT_EQ(g_variable.single_patch_index, 0);
    EXPECT_TRUE(trace_messages().empty());
}

// An SMU has no id of its own: its fields lie in the record behind the id.
TEST_F(SinglePatch, ByIndexPutsAnSmuBehindTheId) {
    add_smu("other", "1", 0);
    cmpnt_smu_value &smu = add_smu("smu", "2.1");
    smu.op_flag = 0x29;
    set_text(smu.state_name, "running");
    set_text(smu.description, std::string(300, 'd'));
    set_text(smu.patch_id, "id");
    set_text(smu.effective_time, "now");
    set_text(smu.last_patch, "before");
    smu.patch_size = -2;
    smu.patch_order = 3;
    EXPECT_EQ(by_index(1, of_smu_list), "smu");
    cmpnt_upgrade_value expected = zero_record();
    expected.op_flag = 0x29;
    set_text(expected.patch_name, "smu");
    set_text(expected.state_name, "running");
    set_text(expected.description, std::string(255, 'd'));
    set_text(expected.patch_ver, "2.1");
    set_text(expected.patch_id, "id");
    set_text(expected.effective_time, "now");
    set_text(expected.last_patch, "before");
    expected.patch_size = -2;
    expected.patch_order = 3;
    expected.patch_type = 1;
    EXPECT_TRUE(same_record(out, expected));
    EXPECT_EQ(memcmp(reinterpret_cast<char *>(&out) + 4, &smu, 604), 0);
}

TEST_F(SinglePatch, ByIndexRefusesNull) {
    add("a", "1");
    g_variable.single_patch_index = 7;
    cmpnt_get_smu_version_by_index(nullptr, 1, in_force);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_smu_version_by_index", "param is null.\n"));
    EXPECT_EQ(g_variable.single_patch_index, 7);
}

TEST_F(SinglePatch, NewestOfOneIsThatOneWhateverItsVersion) {
    add("smu", "9", "active", 0);
    add("a", "");
    for (const int32_t kind : {in_force, of_any_state}) {
        memset(&out, 'x', sizeof(out));
        EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), 0);
        const cmpnt_upgrade_value &a = CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev)->value;
        EXPECT_TRUE(same_record(out, a));
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, NewestOfTwoIsTheOneOfTheNewerPatchVersion) {
    for (const bool first_is_newer : {true, false}) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        cmpnt_smu_list_init();
        for (const char *version :
             {first_is_newer ? "1.0.10" : "1.0.9", first_is_newer ? "1.0.9" : "1.0.10"}) {
            add(std::string("p-") + version, version);
            add_smu(std::string("s-") + version, version);
        }
        for (const int32_t kind : {in_force, of_any_state}) {
            EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), 0);
            EXPECT_STREQ(out.patch_name, "p-1.0.10");
        }
        EXPECT_EQ(cmpnt_get_newest_single_patch(&out, of_smu_list), 0);
        EXPECT_STREQ(out.patch_name, "s-1.0.10");
        EXPECT_EQ(out.card_id, 0);
        EXPECT_STREQ(out.pkg_name, "");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, NewestInForceLeavesOutEmptyForAnotherState) {
    add("a", "1", "active");
    add("b", "2", "installed");
    EXPECT_EQ(cmpnt_get_newest_single_patch(&out, in_force), 0);
    EXPECT_TRUE(out_is_zero());  // the older one is no second choice
    EXPECT_EQ(cmpnt_get_newest_single_patch(&out, of_any_state), 0);
    EXPECT_STREQ(out.patch_name, "b");
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    add("c", "1", "installed");
    EXPECT_EQ(cmpnt_get_newest_single_patch(&out, in_force), 0);
    EXPECT_TRUE(out_is_zero());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, NewestOfTwoEqualVersionsFails) {
    for (const char *version : {"1.0", ""}) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        cmpnt_smu_list_init();
        add("a", version);
        add("b", version);
        add_smu("a", version);
        add_smu("b", version);
        for (const int32_t kind : {in_force, of_smu_list, of_any_state, 0}) {
            forget_log();
            memset(&out, 'x', sizeof(out));
            EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), -1);
            const std::string message = "version invalid, first_ver(" + std::string(version) +
                                        "), second_ver(" + version + ").\n";
            EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_newest_single_patch", message));
            EXPECT_EQ(trace_lines().size(), 1u);
            EXPECT_TRUE(out_is_zero());
        }
    }
}

TEST_F(SinglePatch, NewestOfNoneOrOfManyIsNone) {
    for (const int32_t kind : {in_force, of_smu_list, of_any_state, 0}) {
        memset(&out, 'x', sizeof(out));
        EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), 0);
        EXPECT_TRUE(out_is_zero());
    }
    for (const char *version : {"1", "2", "3"}) {
        add(version, version);
        add_smu(version, version);
    }
    for (const int32_t kind : {in_force, of_smu_list, of_any_state, 0}) {
        memset(&out, 'x', sizeof(out));
        EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), 0);
        EXPECT_TRUE(out_is_zero());
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SinglePatch, NewestOfAnUnknownKindIsToldAndNone) {
    add("a", "1");
    for (const char *second : {"", "2"}) {
        if (*second != '\0') {
            add("b", second);
        }
        for (const int32_t kind : {0, 5, -1}) {
            forget_log();
            memset(&out, 'x', sizeof(out));
            EXPECT_EQ(cmpnt_get_newest_single_patch(&out, kind), 0);
            EXPECT_TRUE(out_is_zero());
            EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_global_info",
                               "newest_type(" + std::to_string(kind) + ") error\n"));
            EXPECT_EQ(trace_lines().size(), 1u);
        }
    }
}

TEST_F(SinglePatch, NewestRefusesNull) {
    EXPECT_EQ(cmpnt_get_newest_single_patch(nullptr, in_force), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_newest_single_patch", "param is null\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(SinglePatch, QueriesLeaveTheListsAsTheyAre) {
    add("a", "1");
    add("b", "2");
    add_smu("c", "1");
    add_smu("d", "2");
    const Texts before = records_of(cmpnt_upgrade_list);
    for (const int32_t kind : {in_force, of_smu_list, of_any_state}) {
        count(kind);
        by_index(1, kind);
        cmpnt_get_newest_single_patch(&out, kind);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list), before);
    EXPECT_TRUE(is_well_linked(cmpnt_smu_list));
    EXPECT_EQ(count(of_smu_list), 2);
}
