#include <errno.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

constexpr int32_t hot_patch = 0x20;
constexpr char function[] = "cmpnt_traverse_list_and_check_hotpatch_target";

// "A;B;C;...": so many names.
std::string names(int count) {
    std::string text;
    for (int i = 0; i < count; i++) {
        text += (i == 0 ? "" : ";") + std::string(1, static_cast<char>('A' + i));
    }
    return text;
}

}  // namespace

class HotpatchTarget : public DeviceTest {
protected:
    static void add(const std::string &targets, int32_t op_flag = hot_patch) {
        cmpnt_upgrade_value record = upgrade_record("hp", "pkg");
        set_text(record.hotpatch_target, targets);
        record.op_flag = op_flag;
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST), 0);
    }

    // The answer, after which the list is empty.
    static int32_t check(const char *name) {
        const int32_t result = cmpnt_traverse_list_and_check_hotpatch_target(name);
        EXPECT_EQ(cmpnt_hp_list.next, &cmpnt_hp_list);
        EXPECT_EQ(cmpnt_hp_list.prev, &cmpnt_hp_list);
        return result;
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CLIENT_ERROR", function, message);
    }
};

TEST_F(HotpatchTarget, IsRefused) {
    for (const std::string name : {"a.so", "b.so", "c.so"}) {
        forget_log();
        add("x.so");
        add("a.so;b.so;c.so");
        add("y.so");
        EXPECT_EQ(check(name.c_str()), -1);
        EXPECT_TRUE(says("(" + name + ") is hotpatch upgrade in device\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_F(HotpatchTarget, OfAnotherFileIsNone) {
    for (const char *name : {"c.so", "a.s", "a.soo", "A.so", "", ";", "a.so;b.so", "b.so "}) {
        add("a.so;b.so");
        add("d.so");
        EXPECT_EQ(check(name), 0) << name;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(HotpatchTarget, IsSetApartByNothingButSemicolons) {
    const std::string target = "a,b:c|d#e/f g\\h";
    for (const char *name : {"a", "b", "f", "f g", "h"}) {
        add(target + ";x.so");
        EXPECT_EQ(check(name), 0) << name;
    }
    add(target + ";x.so");
    EXPECT_EQ(check(target.c_str()), -1);
}

TEST_F(HotpatchTarget, IsNoneInAnEmptyList) {
    EXPECT_EQ(check("a.so"), 0);
    EXPECT_EQ(check(""), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(HotpatchTarget, CountsForHotPatchesAlone) {
    for (const int32_t op_flag : {0, 0x9, ~hot_patch}) {
        add("a.so", op_flag);
    }
    EXPECT_EQ(check("a.so"), 0);
    for (const int32_t op_flag : {0x29, -1}) {
        add("a.so", op_flag);
        EXPECT_EQ(check("a.so"), -1);
    }
}

TEST_F(HotpatchTarget, IsMetWithoutTheBlanksAroundIt) {
    for (const char *name : {"b.so", "a.so"}) {
        add("a.so ; b.so");
        EXPECT_EQ(check(name), -1);
        EXPECT_TRUE(says("(" + std::string(name) + ") is hotpatch upgrade in device\n"));
    }
}

TEST_F(HotpatchTarget, WithoutANameIsTheEmptyName) {
    for (const char *targets : {"", "a.so;", ";a.so", "a.so; ;b.so"}) {
        forget_log();
        add(targets);
        EXPECT_EQ(check(""), -1) << targets;
        EXPECT_TRUE(says("() is hotpatch upgrade in device\n"));
        add(targets);
        EXPECT_EQ(check("c.so"), 0) << targets;
    }
}

TEST_F(HotpatchTarget, MayHaveThirtyOneNames) {
    const std::string last(1, static_cast<char>('A' + 30));
    add(names(31));
    EXPECT_EQ(check("0"), 0);
    EXPECT_TRUE(trace_messages().empty());
    add(names(31));
    EXPECT_EQ(check(last.c_str()), -1);
    EXPECT_TRUE(says("(" + last + ") is hotpatch upgrade in device\n"));
}

// Of more nobody knows the rest, so the file may well be one of them.
TEST_F(HotpatchTarget, ThatCannotBeSplitIsRefused) {
    for (const int count : {32, 33, 40}) {
        forget_log();
        add(names(count));
        add("b.so");
        EXPECT_EQ(check("0"), -1);
        EXPECT_EQ(trace_messages(),
                  (std::vector<std::string>{
                      "trace cmpnt_detach_install_queue: cmpnt_detach_install_queue count(32)\n",
                      "error " + std::string(function) + ": cmpnt_detach_install_queue fail.\n"}));
        EXPECT_TRUE(says("cmpnt_detach_install_queue fail.\n"));
    }
}

TEST_F(HotpatchTarget, WithoutMemoryIsRefused) {
    for (const int call : {1, 2, 3}) {
        forget_log();
        add("a.so;b.so;c.so");
        fault::fail("calloc", call, ENOMEM);
        EXPECT_EQ(check("d.so"), -1);
        EXPECT_TRUE(says("cmpnt_detach_install_queue fail.\n"));
    }
}

TEST_F(HotpatchTarget, OfAnEarlierRecordAnswersBeforeALaterOneFails) {
    add("a.so");
    add(names(32));
    EXPECT_EQ(check("a.so"), -1);
    EXPECT_TRUE(says("(a.so) is hotpatch upgrade in device\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

// A record holds 79 bytes of targets: what is behind them is not known, and the last is a fragment.
TEST_F(HotpatchTarget, BehindWhatARecordHoldsIsLost) {
    const std::string targets = std::string(70, 'a') + ";lib.so.1.2;other.so";
    add(targets);
    EXPECT_EQ(check("other.so"), 0);
    add(targets);
    EXPECT_EQ(check("lib.so.1.2"), 0);
    add(targets);
    EXPECT_EQ(check("lib.so.1"), -1);
    EXPECT_TRUE(says("(lib.so.1) is hotpatch upgrade in device\n"));
}

TEST_F(HotpatchTarget, MayBeAskedForWithATextOfTheList) {
    add("a.so");
    const cmpnt_upgrade_value &value = CMPNT_UPGRADE_NODE(cmpnt_hp_list.next)->value;
    EXPECT_EQ(check(value.hotpatch_target), -1);
}

TEST_F(HotpatchTarget, LooksAtTheHotPatchListAlone) {
    cmpnt_upgrade_value record = upgrade_record("hp", "pkg");
    set_text(record.hotpatch_target, "a.so");
    record.op_flag = hot_patch;
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    EXPECT_EQ(check("a.so"), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

TEST_F(HotpatchTarget, OfANullNameIsRefusedAndTheListStays) {
    add("a.so");
    EXPECT_EQ(cmpnt_traverse_list_and_check_hotpatch_target(nullptr), -1);
    EXPECT_TRUE(says("param is null.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
}
