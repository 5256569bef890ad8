#include <errno.h>
#include <stdlib.h>

#include "tests/support/device_test.hh"

namespace {

using Names = std::vector<std::string>;

}  // namespace

class InstallQueue : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        cmpnt_set_pointer_array_null(slots, slot_count);
    }

    void TearDown() override {
        cmpnt_recycle_pointer_array(slots, slot_count);
        DeviceTest::TearDown();
    }

    // The result is in `result`; the names come back, as many as the count says.
    Names split(const std::string &text, const char *separators, int32_t max = slot_count) {
        cmpnt_recycle_pointer_array(slots, slot_count);
        count = 77;
        result = cmpnt_detach_install_queue(text.c_str(), separators, slots, &count, max);
        return Names(slots, slots + count);
    }

    static constexpr int32_t slot_count = 2000;
    char *slots[slot_count];
    int32_t count = 0;
    int32_t result = 0;
};

TEST_F(InstallQueue, IsSplitAtEachSeparatorIntoTrimmedNames) {
    const struct {
        const char *text;
        const char *separators;
        Names names;
    } cases[] = {
        {"a;b;c", ";", {"a", "b", "c"}},
        {" a b ;\tc\n", ";", {"a b", "c"}},
        {"a,b;c", ";,", {"a", "b", "c"}},
        {"a;;b", ";", {"a", "", "b"}},
        {";a;", ";", {"", "a", ""}},
        {"a; ;b", ";", {"a", "", "b"}},
        {"", ";", {""}},
        {"a;b", "", {"a;b"}},
        {"a b", " ", {"a", "b"}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(split(c.text, c.separators), c.names) << c.text;
        EXPECT_EQ(result, 0);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(InstallQueue, IsRefusedWhenItFillsTheArrayButItsNamesStay) {
    EXPECT_EQ(split("a;b;c", ";", 4), (Names{"a", "b", "c"}));
    EXPECT_EQ(result, 0);
    EXPECT_EQ(split("a;b;c", ";", 3), (Names{"a", "b", "c"}));
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_detach_install_queue",
                       "cmpnt_detach_install_queue count(3)\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_EQ(split("a;b;c", ";", 2), (Names{"a", "b"}));
    EXPECT_EQ(result, -1);
    EXPECT_EQ(slots[2], nullptr);
}

TEST_F(InstallQueue, StoresNothingWithoutRoom) {
    for (int32_t max : {0, -1, INT32_MIN}) {
        EXPECT_EQ(split("a;b", ";", max), Names());
        EXPECT_EQ(result, -1);
        EXPECT_EQ(slots[0], nullptr);
    }
    EXPECT_EQ(
        traced("trace", "cmpnt_detach_install_queue", "cmpnt_detach_install_queue count(0)\n"), 3);
}

TEST_F(InstallQueue, IsCutAt1023Bytes) {
    EXPECT_EQ(split(std::string(1022, 'a') + ";b", ";"), (Names{std::string(1022, 'a'), ""}));
    EXPECT_EQ(split(std::string(3000, 'a'), ";"), Names{std::string(1023, 'a')});
    EXPECT_EQ(split(std::string(3000, ';'), ";").size(), 1024u);
    EXPECT_EQ(result, 0);
}

TEST_F(InstallQueue, LeavesTheTextAlone) {
    const std::string text = "a; b;c";
    EXPECT_EQ(split(text, ";").size(), 3u);
    EXPECT_EQ(text, "a; b;c");
}

TEST_F(InstallQueue, RefusesNullAfterClearingTheCount) {
    count = 5;
    EXPECT_EQ(cmpnt_detach_install_queue(nullptr, ";", slots, &count, 3), -1);
    EXPECT_EQ(count, 0);
    count = 5;
    EXPECT_EQ(cmpnt_detach_install_queue("a", nullptr, slots, &count, 3), -1);
    EXPECT_EQ(count, 0);
    EXPECT_TRUE(logged("CLIENT_ERROR", "cmpnt_detach_install_queue", "param is null\n"));
    EXPECT_EQ(traced("error", "cmpnt_detach_install_queue", "param is null\n"), 2);
}

TEST_F(InstallQueue, RefusesAMissingArrayOrCountQuietly) {
    count = 5;
    EXPECT_EQ(cmpnt_detach_install_queue("a", ";", nullptr, &count, 3), -1);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(cmpnt_detach_install_queue("a", ";", slots, nullptr, 3), -1);
    EXPECT_EQ(slots[0], nullptr);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(InstallQueue, KeepsWhatWasStoredWhenMemoryRunsOut) {
    fault::fail("calloc", 3, ENOMEM);
    EXPECT_EQ(split("a;b;c;d", ";"), (Names{"a", "b"}));
    EXPECT_EQ(result, -1);
    EXPECT_EQ(slots[2], nullptr);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_detach_install_queue", "cmpnt_malloc_and_memory fail.\n"));
}
