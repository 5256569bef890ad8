#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

constexpr int32_t untouched = 77;

}  // namespace

class MaxVersion : public DeviceTest {
protected:
    void add(const std::string &patch, const std::string &pkg, const std::string &version,
             const std::string &state = "active") {
        const cmpnt_upgrade_value record =
            upgrade_record(patch, pkg, version, state, "/p/" + patch);
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }

    // The patch found, "" when none was; whatever else must hold then is checked.
    std::string newest(const char *state) {
        memset(&out, 'o', sizeof(out));
        found = untouched;
        EXPECT_EQ(cmpnt_get_max_version_by_state(&out, state, &found), 0);
        if (found == 1) {
            return out.patch_name;
        }
        EXPECT_EQ(found, untouched);
        cmpnt_upgrade_value before;
        memset(&before, 'o', sizeof(before));
        EXPECT_TRUE(same_record(out, before));
        return "";
    }

    cmpnt_upgrade_value out;
    int32_t found;
};

TEST_F(MaxVersion, IsTakenOverAllPackagesTogether) {
    add("first", "a", "1.0.9");
    add("second", "b", "1.0.10");
    EXPECT_EQ(newest("active"), "second");
}

TEST_F(MaxVersion, CopiesTheWholeRecord) {
    add("other", "a", "1.0");
    add("wanted", "a", "1.1");
    EXPECT_EQ(newest("active"), "wanted");
    EXPECT_TRUE(same_record(out, CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev)->value));
}

TEST_F(MaxVersion, LooksAtTheStateAlone) {
    add("first", "a", "3.0", "running");
    add("second", "a", "1.0", "active");
    add("third", "a", "2.0", "Active");
    EXPECT_EQ(newest("active"), "second");
    EXPECT_EQ(newest("running"), "first");
}

TEST_F(MaxVersion, OfEqualVersionsTheFirstInTheListWins) {
    add("first", "a", "1.0");
    add("second", "a", "1.0");
    EXPECT_EQ(newest("active"), "first");
}

TEST_F(MaxVersion, OfVersionsThatCompareEqualTheFirstInTheListWins) {
    add("zero", "a", "0.5");
    add("first", "a", "1.01");
    add("second", "a", "1.1");
    EXPECT_EQ(newest("active"), "first");
}

TEST_F(MaxVersion, FindsTheTextOfTheMaximumAndNotWhatComparesEqual) {
    add("older", "a", "1.0");
    add("newest", "b", "2.0");
    add("equal", "c", "2.00");
    EXPECT_EQ(newest("active"), "newest");
}

TEST_F(MaxVersion, FindsNothingInAStateThatNobodyIsIn) {
    EXPECT_EQ(newest("active"), "");
    EXPECT_FALSE(exists(trace_path()));
    add("first", "a", "1.0");
    EXPECT_EQ(newest("running"), "");
    EXPECT_EQ(newest(""), "");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(MaxVersion, DoesNotFindVersionsThatAreNoNewerThanNone) {
    for (const char *version : {"0", "00", "~1", "0~"}) {
        add("smu", "a", version);
    }
    EXPECT_EQ(newest("active"), "");
}

TEST_F(MaxVersion, FindsAnEmptyVersionWhenThereIsNoNewer) {
    add("zero", "a", "0");
    add("empty", "a", "");
    EXPECT_EQ(newest("active"), "empty");
}

TEST_F(MaxVersion, KeepsAVersionThatFillsItsField) {
    const std::string longest(31, '9');
    add("short", "a", "1");
    add("long", "a", longest);
    EXPECT_EQ(newest("active"), "long");
    EXPECT_EQ(out.cur_version, longest);
}

TEST_F(MaxVersion, SaysWhatItSaw) {
    add("first", "a", "1.0");
    add("second", "b", "0.9");
    add("third", "c", "1.1");
    EXPECT_EQ(newest("active"), "third");
    const std::string start = "trace cmpnt_get_max_version_by_state: find max version, ";
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{
                  start + "smu(first) pkg(a), version(1.0), state(active)\n",
                  start + "smu(third) pkg(c), version(1.1), state(active)\n",
                  start + "smu(third), pkg_name(c), version(1.1), path(/p/third)\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_max_version_by_state",
                       "find max version, smu(first) pkg(a), version(1.0), state(active)\n"));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "cmpnt_get_max_version_by_state",
               "find max version, smu(third), pkg_name(c), version(1.1), path(/p/third)\n"));
}

TEST_F(MaxVersion, LooksAtTheUpgradeListAlone) {
    const cmpnt_upgrade_value record = upgrade_record("smu", "a");
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_HP_LIST);
    EXPECT_EQ(newest("active"), "");
}

TEST_F(MaxVersion, TakesNoFlagToSet) {
    add("first", "a", "1.0");
    EXPECT_EQ(cmpnt_get_max_version_by_state(&out, "active", nullptr), 0);
    EXPECT_STREQ(out.patch_name, "first");
}

TEST_F(MaxVersion, TakesAStateThatLiesInTheAnswer) {
    add("first", "a", "1.0");
    add("second", "a", "2.0", "running");
    set_text(out.state_name, "active");
    EXPECT_EQ(cmpnt_get_max_version_by_state(&out, out.state_name, &found), 0);
    EXPECT_STREQ(out.patch_name, "first");
}

TEST_F(MaxVersion, RefusesNull) {
    add("first", "a", "1.0");
    found = untouched;
    EXPECT_EQ(cmpnt_get_max_version_by_state(nullptr, "active", &found), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_max_version_by_state", "param is null\n"));
    forget_log();
    EXPECT_EQ(cmpnt_get_max_version_by_state(&out, nullptr, &found), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_max_version_by_state", "param is null\n"));
    EXPECT_EQ(found, untouched);
}
