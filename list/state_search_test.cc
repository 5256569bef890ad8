#include <string.h>

#include "list/smu_kind.hh"
#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

constexpr int32_t all_but_application = ~int32_t{smu_application};

}  // namespace

class StateSearch : public DeviceTest {
protected:
    void add(const cmpnt_upgrade_value &record, int32_t list = CMPNT_UPGRADE_LIST) {
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, list), 0);
    }

    void add(const std::string &patch, const std::string &pkg, const std::string &state,
             int32_t op_flag = 0, int32_t list = CMPNT_UPGRADE_LIST) {
        cmpnt_upgrade_value record = upgrade_record(patch, pkg, "1.0", state);
        record.op_flag = op_flag;
        record.cur_flag = -5;
        add(record, list);
    }
};

class LookTargetState : public StateSearch {
protected:
    void SetUp() override {
        StateSearch::SetUp();
        memset(&out, 'o', sizeof(out));
    }

    bool out_is_zero() const {
        return cmpnt_name_is_null(reinterpret_cast<const char *>(&out), sizeof(out)) == 1;
    }

    const std::string function = "cmpnt_look_target_state_form_list";
    cmpnt_upgrade_value out;
};

TEST_F(LookTargetState, CopiesTheFirstRecordInTheState) {
    add("other", "pkg", "active");
    add("first", "pkg", "running");
    add("second", "pkg", "running");
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", 0), 1);
    cmpnt_list_head *second = cmpnt_upgrade_list.next->next;
    EXPECT_TRUE(same_record(out, CMPNT_UPGRADE_NODE(second)->value));
    const std::string message =
        "look found: smu(first), pkg(pkg), cur_ver(1.0), state(running), flag(-5)\n";
    EXPECT_EQ(trace_messages(), (std::vector<std::string>{"trace " + function + ": " + message}));
    EXPECT_TRUE(logged("CMPNT_TRACE", function, message));
}

TEST_F(LookTargetState, SkipsARecordWithoutAPackage) {
    add("first", "", "running");
    add("second", "pkg", "running");
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", 0), 1);
    EXPECT_STREQ(out.patch_name, "second");
}

TEST_F(LookTargetState, CountsAnyByteOfThePackageName) {
    cmpnt_upgrade_value record = upgrade_record("first", "", "1.0", "running");
    record.pkg_name[79] = 'x';
    add(record);
    add("second", "pkg", "running");
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", 0), 1);
    EXPECT_STREQ(out.patch_name, "first");
}

TEST_F(LookTargetState, LooksAtApplicationsAloneWhenAsked) {
    add("cold", "pkg", "running", all_but_application);
    add("app", "pkg", "running", smu_application);
    for (const int32_t app_only : {0, 2, -1}) {
        EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", app_only), 1);
        EXPECT_STREQ(out.patch_name, "cold");
    }
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", 1), 1);
    EXPECT_STREQ(out.patch_name, "app");
}

TEST_F(LookTargetState, ClearsTheAnswerWhenNothingIsFound) {
    add("smu", "pkg", "running", all_but_application);
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "active", 0), 0);
    EXPECT_TRUE(out_is_zero());
    memset(&out, 'o', sizeof(out));
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "running", 1), 0);
    EXPECT_TRUE(out_is_zero());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(LookTargetState, ClearsTheAnswerOnAnEmptyList) {
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, "active", 0), 0);
    EXPECT_TRUE(out_is_zero());
    EXPECT_TRUE(
        logged("CMPNT_TRACE", function, "cmpnt_look_target_state_form_list list: is null\n"));
}

TEST_F(LookTargetState, TakesAStateThatLiesInTheAnswer) {
    add("smu", "pkg", "running");
    set_text(out.state_name, "running");
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, out.state_name, 0), 1);
    EXPECT_STREQ(out.patch_name, "smu");
}

TEST_F(LookTargetState, RefusesNullAndLeavesTheAnswer) {
    add("smu", "pkg", "running");
    const cmpnt_upgrade_value before = out;
    EXPECT_EQ(cmpnt_look_target_state_form_list(&out, nullptr, 0), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    EXPECT_TRUE(same_record(out, before));
    forget_log();
    EXPECT_EQ(cmpnt_look_target_state_form_list(nullptr, "running", 0), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
}

class IsExistCurrent : public StateSearch {
protected:
    const std::string function = "cmpnt_is_exist_current_upgrade_list";
};

TEST_F(IsExistCurrent, ComparesPatchNamesExactly) {
    add("first", "pkg", "active");
    add("second", "third", "active");
    EXPECT_EQ(cmpnt_is_exist_current_upgrade_list("first"), 1);
    EXPECT_EQ(cmpnt_is_exist_current_upgrade_list("second"), 1);
    for (const char *absent : {"third", "secon", "second2", "SECOND", ""}) {
        EXPECT_EQ(cmpnt_is_exist_current_upgrade_list(absent), 0) << absent;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(IsExistCurrent, LooksAtTheUpgradeListAlone) {
    add("smu", "pkg", "active", 0, CMPNT_HP_LIST);
    EXPECT_EQ(cmpnt_is_exist_current_upgrade_list("smu"), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", function, "the current upgrade list is null.\n"));
}

TEST_F(IsExistCurrent, RefusesNull) {
    EXPECT_EQ(cmpnt_is_exist_current_upgrade_list(nullptr), 0);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error " + function + ": param is null.\n"}));
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
}

class UpgradeListCount : public StateSearch {
protected:
    const std::string function = "cmpnt_get_upgrade_list_count";
};

TEST_F(UpgradeListCount, CountsByStateAndKindInTheSelectedList) {
    add("a", "pkg", "active", smu_application);
    add("b", "pkg", "active", all_but_application);
    add("c", "", "running", -1);
    add("d", "pkg", "active", 0, CMPNT_HP_LIST);
    struct {
        const char *state;
        int32_t app_only;
        int32_t list;
        int32_t count;
    } const cases[] = {
        {nullptr, 0, CMPNT_UPGRADE_LIST, 3},  {nullptr, 1, CMPNT_UPGRADE_LIST, 2},
        {nullptr, 2, CMPNT_UPGRADE_LIST, 3},  {"active", 0, CMPNT_UPGRADE_LIST, 2},
        {"active", 1, CMPNT_UPGRADE_LIST, 1}, {"running", 1, CMPNT_UPGRADE_LIST, 1},
        {"Active", 0, CMPNT_UPGRADE_LIST, 0}, {"", 0, CMPNT_UPGRADE_LIST, 0},
        {nullptr, 0, CMPNT_HP_LIST, 1},       {nullptr, 1, CMPNT_HP_LIST, 0},
        {"active", -1, CMPNT_HP_LIST, 1},
    };
    for (const auto &test : cases) {
        forget_log();
        EXPECT_EQ(cmpnt_get_upgrade_list_count(test.state, test.app_only, test.list), test.count);
        const std::string state = test.state == nullptr ? "(null)" : test.state;
        EXPECT_TRUE(logged("CMPNT_TRACE", function,
                           "get cmpnt upgrade list, state(" + state + "), count(" +
                               std::to_string(test.count) + ")\n"));
    }
}

TEST_F(UpgradeListCount, CountsAnEmptyListLikeAnyOther) {
    EXPECT_EQ(cmpnt_get_upgrade_list_count("active", 0, CMPNT_HP_LIST), 0);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"trace " + function +
                                        ": get cmpnt upgrade list, state(active), count(0)\n"}));
}

TEST_F(UpgradeListCount, RefusesAnUnknownList) {
    add("a", "pkg", "active");
    for (const int32_t list : {2, -1, INT32_MAX}) {
        forget_log();
        EXPECT_EQ(cmpnt_get_upgrade_list_count(nullptr, 0, list), 0);
        EXPECT_TRUE(logged("CMPNT_ERROR", function, "list is null.\n"));
    }
}
