#include "hotpatch/criteria.hh"
#include "tests/support/device_test.hh"
#include "tests/support/hotpatch_record.hh"

namespace {

const std::string packer = "cmpnt_pack_hotpatch_match";
const std::string failed = "(failed)";

std::string pack(const cmpnt_upgrade_value &record, const HotpatchCriteria &criteria) {
    char *filled = cmpnt_pack_hotpatch_match(record, criteria);
    std::string text = filled == nullptr ? failed : filled;
    free(filled);
    return text;
}

std::string pack(const cmpnt_upgrade_value &record, const std::string &text) {
    HotpatchCriteria criteria(text.c_str());
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0) << text;
    fault::reset();
    return pack(record, criteria);
}

std::string repeated(int times, const std::string &text) {
    std::string all;
    for (int i = 0; i < times; i++) {
        all += text;
    }
    return all;
}

}  // namespace

class HotpatchPackTest : public DeviceTest {
protected:
    cmpnt_upgrade_value record_ = hotpatch_record();
};

TEST_F(HotpatchPackTest, FillsInTheFieldOfEachKey) {
    const std::pair<const char *, const char *> filled[] = {
        {"Is_hotpatch:*", "Is_hotpatch:1"},
        {"Package:*", "Package:routed"},
        {"Hotpatch_file:*", "Hotpatch_file:routed.ko"},
        {"Hotpatch_target_pkg:*", "Hotpatch_target_pkg:routed;bgpd"},
        {"Hotpatch_target_path:*", "Hotpatch_target_path:/usr/sbin/routed"},
        {"State:*", "State:active"},
        {"Pkg_path:*", "Pkg_path:/d/r.deb"},
    };
    std::string all, all_filled;
    for (const auto &[text, expected] : filled) {
        EXPECT_EQ(pack(record_, text), expected);
        EXPECT_EQ(pack(record_, std::string("Version:2#") + text + "#Version:3"),
                  std::string("Version:2#") + expected + "#Version:3");
        all += std::string("#") + text;
        all_filled += std::string("#") + expected;
    }
    EXPECT_EQ(pack(record_, all.substr(1)), all_filled.substr(1));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HotpatchPackTest, FillsInTheHotPatchBitAsOneOrZero) {
    EXPECT_EQ(pack(hotpatch_record(0x3F), "Is_hotpatch:*"), "Is_hotpatch:1");
    EXPECT_EQ(pack(hotpatch_record(0x1F), "Is_hotpatch:*"), "Is_hotpatch:0");
}

TEST_F(HotpatchPackTest, FillsInEmptyAndLongestValues) {
    set_text(record_.pkg_name, "");
    EXPECT_EQ(pack(record_, "Package:*"), "Package:");
    const std::string longest(sizeof(record_.hotpatch_target_path) - 1, 'p');
    set_text(record_.hotpatch_target_path, longest);
    EXPECT_EQ(pack(record_, "Hotpatch_target_path:*"), "Hotpatch_target_path:" + longest);
}

TEST_F(HotpatchPackTest, TakesTheKeysFirstPlaceForItsWildcard) {
    const std::pair<const char *, const char *> cases[] = {
        {"State:*#State:active", "State:active#State:active"},
        {"State:active#State:*", "State:activective#State:*"},
        {"State:*#State:*", "State:active#State:active"},
        {"Package:State#State:*", "Package:State:activetate:*"},
        {"State: *#Package:x", "State:active*#Package:x"},
        {"State :*#Package:x", "State:active*#Package:x"},
        {"Package:x#State:*  ", "Package:x#State:active  "},
    };
    for (const auto &[text, expected] : cases) {
        EXPECT_EQ(pack(record_, text), expected) << text;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HotpatchPackTest, FillsTheNextKeysIntoWhatWasFilledIn) {
    set_text(record_.hotpatch_file, "State:*");
    EXPECT_EQ(pack(record_, "Hotpatch_file:*#State:*"), "Hotpatch_file:State:active#State:active");
    EXPECT_EQ(pack(record_, "State:*#Hotpatch_file:*"), "State:active#Hotpatch_file:State:*");
}

TEST_F(HotpatchPackTest, FillsInCriteriaBeyondWhatIsSplit) {
    const std::string tail = std::string(1100, ' ') + "#State:*#Package:*";
    EXPECT_EQ(pack(record_, "State:*#Package:routed" + tail),
              "State:active#Package:routed" + std::string(1100, ' ') + "#State:active#Package:*");
}

TEST_F(HotpatchPackTest, RefusesKeysThatCannotBePacked) {
    for (const char *key : {"Version", "Hotpatch_target_pkg_path", "state", "State_"}) {
        forget_log();
        const std::string message = std::string("pack criteria do not match ") + key + "\n";
        EXPECT_EQ(pack(record_, std::string(key) + ":*"), failed);
        EXPECT_TRUE(logged("CMPNT_ERROR", packer, message));
        EXPECT_EQ(pack(record_, std::string("State:*#") + key + ":*"), failed);
        EXPECT_EQ(traced("error", packer, message), 2);
        EXPECT_EQ(trace_lines().size(), 2u);
    }
}

TEST_F(HotpatchPackTest, FailsWithoutAnyKeyToPack) {
    EXPECT_EQ(pack(record_, "Package:routed"), failed);
    EXPECT_TRUE(logged("CMPNT_ERROR", packer, "param is null.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_EQ(fault::calls("calloc"), 0);
}

// Parsed items always come from the text; these were parsed from another.
TEST_F(HotpatchPackTest, FailsForAKeyThatTheTextDoesNotHave) {
    HotpatchCriteria number("Is_hotpatch:*");
    cmpnt_parse_hotpatch_match(&number);
    number.text = "elsewhere";
    EXPECT_EQ(pack(record_, number), failed);
    EXPECT_TRUE(logged("CMPNT_ERROR", packer, "Is_hotpatch strstr fail.\n"));
    HotpatchCriteria text("State:*");
    cmpnt_parse_hotpatch_match(&text);
    text.text = "elsewhere";
    EXPECT_EQ(pack(record_, text), failed);
    EXPECT_TRUE(logged("CMPNT_ERROR", packer, "State strstr fail(elsewhere).\n"));
}

TEST_F(HotpatchPackTest, EndsTheWildcardWithTheText) {
    HotpatchCriteria criteria("State:*");
    cmpnt_parse_hotpatch_match(&criteria);
    for (const char *text : {"State", "State:"}) {
        criteria.text = text;
        EXPECT_EQ(pack(record_, criteria), "State:active") << text;
    }
}

TEST_F(HotpatchPackTest, HasRoomToGrowBy3584Bytes) {
    const std::string path(251, 'p');  // 250 bytes longer than the wildcard
    set_text(record_.hotpatch_target_path, path);
    const std::string item = "Hotpatch_target_path:";
    EXPECT_EQ(pack(record_, repeated(14, item + "*#") + "Package:x"),
              repeated(14, item + path + "#") + "Package:x");
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_EQ(pack(record_, repeated(15, item + "*#") + "Package:x"), failed);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", packer, "cmpnt_replace fail, str_rep(" + item + path + ").\n"));
}

TEST_F(HotpatchPackTest, KeepsAByteOfThatRoomForTheEnd) {
    const std::string path(sizeof(record_.hotpatch_target_path) - 4, 'p');  // 255 more each time
    set_text(record_.hotpatch_target_path, path);
    const std::string text = repeated(14, "Hotpatch_target_path:*#") + "Pkg_path:*";
    const std::string filled = repeated(14, "Hotpatch_target_path:" + path + "#") + "Pkg_path:";
    set_text(record_.cur_pkg_path, "13 bytes more.");
    EXPECT_EQ(pack(record_, text), filled + "13 bytes more.");
    EXPECT_FALSE(exists(trace_path()));
    set_text(record_.cur_pkg_path, "14 bytes, a cut");
    EXPECT_EQ(pack(record_, text), filled + "14 bytes, a cu");
    set_text(record_.cur_pkg_path, "15 bytes: no way");
    EXPECT_EQ(pack(record_, text), failed);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", packer, "cmpnt_replace fail, str_rep(Pkg_path:15 bytes: no way).\n"));
}

TEST_F(HotpatchPackTest, FailsWithoutMemory) {
    HotpatchCriteria criteria("Package:*#State:*");
    ASSERT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0);
    fault::reset();
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(pack(record_, criteria), failed);
    EXPECT_TRUE(logged("CMPNT_ERROR", packer, "cmpnt_malloc fail.\n"));
    for (const auto &[call, item] : {std::pair(2, "Package:routed"), {3, "State:active"}}) {
        fault::reset();
        fault::fail("calloc", call, ENOMEM);
        EXPECT_EQ(pack(record_, criteria), failed);
        EXPECT_TRUE(logged("CMPNT_ERROR", packer,
                           "cmpnt_replace fail, str_rep(" + std::string(item) + ").\n"));
    }
    fault::reset();
    EXPECT_EQ(pack(record_, criteria), "Package:routed#State:active");
    EXPECT_EQ(fault::calls("calloc"), 3);
}
