#include "hotpatch/criteria.hh"

#include "tests/support/device_test.hh"

namespace {

using Texts = std::vector<std::string>;

const std::string parser = "cmpnt_parse_hotpatch_match";

Texts conditions_of(const HotpatchCriteria &criteria) {
    Texts conditions;
    for (int32_t i = 0; i < criteria.match_count; i++) {
        conditions.push_back(std::string(criteria.match_keys[i]) + "=" + criteria.match_values[i]);
    }
    return conditions;
}

Texts pack_keys_of(const HotpatchCriteria &criteria) {
    return Texts(criteria.pack_keys, criteria.pack_keys + criteria.pack_count);
}

std::string items(int count) {
    std::string text = "K1:*";
    for (int i = 2; i <= count; i++) {
        text += "#K" + std::to_string(i) + ":v";
    }
    return text;
}

}  // namespace

class HotpatchCriteriaTest : public DeviceTest {};

TEST_F(HotpatchCriteriaTest, SortsItemsIntoConditionsAndKeysToPack) {
    struct Case {
        const char *text;
        Texts conditions, pack_keys;
    };
    const Case cases[] = {
        {"Package:foo#State:*#Pkg_path:*", {"Package=foo"}, {"State", "Pkg_path"}},
        {"State:*#Package:foo", {"Package=foo"}, {"State"}},
        {"A:1", {"A=1"}, {}},
        {"A:*", {}, {"A"}},
        {"A:1#A:2#B:*#A:*#B:*", {"A=1", "A=2"}, {"B", "A", "B"}},
        {" A : 1 #\tB\n: * ", {"A=1"}, {"B"}},
        {"A:x y#B:**#*:1#C:*x", {"A=x y", "B=**", "*=1", "C=*x"}, {}},
        {"A:1;2,3", {"A=1;2,3"}, {}},
    };
    for (const Case &c : cases) {
        HotpatchCriteria criteria(c.text);
        EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0) << c.text;
        EXPECT_TRUE(criteria.is_parsed);
        EXPECT_EQ(conditions_of(criteria), c.conditions) << c.text;
        EXPECT_EQ(pack_keys_of(criteria), c.pack_keys) << c.text;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HotpatchCriteriaTest, RefusesMisshapenItems) {
    struct Case {
        const char *text;
        const char *message;
    };
    const char *no_item = "cmpnt_detach_install_queue is null.\n";
    const char *no_part = "cmpnt_detach_tmp_queue is null.\n";
    const char *too_many = "cmpnt_detach_install_queue fail.\n";
    const Case cases[] = {
        {"", no_item},
        {"  ", no_item},
        {"#", no_item},
        {"A:1#", no_item},
        {"#A:1", no_item},
        {"A:1##B:*", no_item},
        {"A:1# #B:*", no_item},
        {"State", "hotpatch match err (State).\n"},
        {"A:1#State#B:*", "hotpatch match err (State).\n"},
        {"A:1# * ", "hotpatch match err (*).\n"},
        {"A:", no_part},
        {":B", no_part},
        {":", no_part},
        {":*", no_part},
        {"A:1#B: ", no_part},
        {" :B", no_part},
        {"A:B:C", too_many},
        {"A:B:", too_many},
        {"::", too_many},
        {"A:1#A:B:C:D", too_many},
    };
    for (const Case &c : cases) {
        forget_log();
        HotpatchCriteria criteria(c.text);
        EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), -1) << c.text;
        EXPECT_FALSE(criteria.is_parsed);
        EXPECT_TRUE(logged("CMPNT_ERROR", parser, c.message)) << c.text;
        EXPECT_EQ(trace_lines().back().message, c.message) << c.text;
    }
}

TEST_F(HotpatchCriteriaTest, StopsAtTheFirstMisshapenItem) {
    HotpatchCriteria criteria("A:1#B#C:#");
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), -1);
    EXPECT_EQ(trace_messages(), (Texts{"error " + parser + ": hotpatch match err (B).\n"}));
}

TEST_F(HotpatchCriteriaTest, TakesThirtyOneItemsAndNoMore) {
    const std::string most = items(31);
    HotpatchCriteria criteria(most.c_str());
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0);
    EXPECT_EQ(criteria.match_count, 30);
    EXPECT_STREQ(criteria.match_keys[29], "K31");
    EXPECT_FALSE(exists(trace_path()));
    for (int count : {32, 33, 40}) {
        forget_log();
        const std::string text = items(count);
        HotpatchCriteria too_many(text.c_str());
        EXPECT_EQ(cmpnt_parse_hotpatch_match(&too_many), -1);
        EXPECT_EQ(trace_messages(),
                  (Texts{
                      "trace cmpnt_detach_install_queue: cmpnt_detach_install_queue count(32)\n",
                      "error " + parser + ": cmpnt_detach_install_queue fail.\n",
                  }));
    }
}

TEST_F(HotpatchCriteriaTest, SeesTheFirst1023Bytes) {
    const std::string value(1023 - strlen("A:*#B:"), 'x');
    const std::string text = "A:*#B:" + value + "yz#C:*";
    HotpatchCriteria criteria(text.c_str());
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0);
    EXPECT_EQ(pack_keys_of(criteria), (Texts{"A"}));
    EXPECT_EQ(conditions_of(criteria), (Texts{"B=" + value}));
}

TEST_F(HotpatchCriteriaTest, FailsWithoutMemoryAtEveryStep) {
    const std::string split = "cmpnt_detach_install_queue fail.\n";
    const std::string copy = "cmpnt_malloc_and_memory fail.\n";
    // Two items; the parts of each, and what is kept of it.
    const Texts messages = {split, split, split, split, copy, copy, split, split, copy};
    for (size_t i = 0; i < messages.size(); i++) {
        forget_log();
        fault::reset();
        fault::fail("calloc", static_cast<int>(i) + 1, ENOMEM);
        HotpatchCriteria criteria("A:1#B:*");
        EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), -1) << i;
        EXPECT_TRUE(logged("CMPNT_ERROR", parser, messages[i])) << i;
        EXPECT_EQ(trace_lines().back().message, messages[i]) << i;
    }
    fault::reset();
    HotpatchCriteria criteria("A:1#B:*");
    EXPECT_EQ(cmpnt_parse_hotpatch_match(&criteria), 0);
    EXPECT_EQ(fault::calls("calloc"), static_cast<int>(messages.size()));
}
