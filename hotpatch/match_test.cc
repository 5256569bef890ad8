#include "hotpatch/criteria.hh"
#include "tests/support/device_test.hh"
#include "tests/support/hotpatch_record.hh"

namespace {

constexpr int32_t hot_patch = 0x20;

int32_t match(const char *text, int32_t op_flag = hot_patch) {
    HotpatchCriteria criteria(text);
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0) << text;
    return cmpnt_equal_hotpatch_match(hotpatch_record(op_flag), criteria);
}

}  // namespace

class HotpatchMatchTest : public DeviceTest {};

TEST_F(HotpatchMatchTest, ComparesTheFieldOfEachKey) {
    const std::pair<const char *, const char *> fields[] = {
        {"Package", "routed"},
        {"Hotpatch_file", "routed.ko"},
        {"Hotpatch_target_pkg", "routed;bgpd"},
        {"Hotpatch_target_path", "/usr/sbin/routed"},
        {"Version", "2.4.1"},
        {"State", "active"},
        {"Pkg_path", "/d/r.deb"},
    };
    for (const auto &[key, value] : fields) {
        const std::string equal = std::string(key) + ":" + value;
        std::string shorter = equal;
        shorter.pop_back();
        std::string upper = equal;
        upper.back() = static_cast<char>(upper.back() ^ ' ');
        EXPECT_EQ(match(equal.c_str()), 1) << equal;
        EXPECT_EQ(match((equal + "x").c_str()), 0) << equal;
        EXPECT_EQ(match(shorter.c_str()), 0) << shorter;
        EXPECT_EQ(match(upper.c_str()), 0) << upper;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HotpatchMatchTest, ReadsIsHotpatchAsANumber) {
    struct Case {
        const char *value;
        bool hot_patch, other;
    };
    const Case cases[] = {
        {"1", true, false},           {"01", true, false},
        {"+1", true, false},          {"1x", true, false},
        {"0", false, true},           {"-0", false, true},
        {"abc", false, true},         {"x1", false, true},
        {"0x1", false, true},         {"2", false, false},
        {"-1", false, false},         {"10", false, false},
        {"32", false, false},         {"4294967296", false, false},
        {"4294967297", false, false}, {"-99999999999999999999", false, false},
    };
    for (const Case &c : cases) {
        const std::string text = std::string("Is_hotpatch:") + c.value;
        EXPECT_EQ(match(text.c_str(), hot_patch), c.hot_patch) << text;
        EXPECT_EQ(match(text.c_str(), 0), c.other) << text;
    }
}

TEST_F(HotpatchMatchTest, KnowsAHotPatchByBitFive) {
    for (int32_t op_flag : {0x20, 0x21, 0x29, 0x7F, -1, INT32_MIN | 0x20}) {
        EXPECT_EQ(match("Is_hotpatch:1", op_flag), 1) << op_flag;
    }
    for (int32_t op_flag : {0, 0x1, 0x10, 0x40, 0x1F, 0x5, ~0x20, INT32_MIN}) {
        EXPECT_EQ(match("Is_hotpatch:1", op_flag), 0) << op_flag;
        EXPECT_EQ(match("Is_hotpatch:0", op_flag), 1) << op_flag;
    }
}

TEST_F(HotpatchMatchTest, WantsEveryConditionToHold) {
    EXPECT_EQ(match("Package:routed#State:active#Is_hotpatch:1"), 1);
    EXPECT_EQ(match("Package:bgpd#State:active"), 0);
    EXPECT_EQ(match("Package:routed#State:running"), 0);
    EXPECT_EQ(match("Package:routed#Package:bgpd"), 0);
    EXPECT_EQ(match(" Package : routed # State : active "), 1);
}

TEST_F(HotpatchMatchTest, MeetsTheItemsInTheirOrder) {
    EXPECT_EQ(match("Packages:routed"), -4);
    EXPECT_EQ(match("package:routed"), -4);
    EXPECT_EQ(match("Packag:routed"), -4);
    EXPECT_EQ(match("Patch_name:SMU#Package:bgpd"), -4);
    EXPECT_EQ(match("Package:routed#Patch_name:SMU"), -4);
    EXPECT_EQ(match("Package:bgpd#Patch_name:SMU"), 0);  // passed over before the key is met
}

TEST_F(HotpatchMatchTest, LeavesKeysToPackAlone) {
    EXPECT_EQ(match("Nonsense:*#Version:*#State:active"), 1);
}

TEST_F(HotpatchMatchTest, FailsWithoutAnyCondition) {
    EXPECT_EQ(match("Package:*"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_equal_hotpatch_match", "param is null.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}
