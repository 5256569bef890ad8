#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char saver[] = "cmpnt_save_safe_verify_patch";
const std::string directory = "/var/cache/opkg/cmpnt_safe_verify";
const std::string saved_list = directory + "/.safe_verify_patch";

int32_t save(const std::string &name) {
    return cmpnt_save_safe_verify_patch(name.c_str(), 2, 3, 4);
}

std::string open_message(int error) {
    return "open(" + saved_list + ") failed, reason: " + strerror(error) + "\n";
}

}  // namespace

class SavedPatch : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        platform.switch_result = 1;
    }
};

TEST_F(SavedPatch, AreKeptInTheirOrder) {
    EXPECT_EQ(save("SMU-2"), 0);
    EXPECT_EQ(read_file(saved_list), "SMU-2\n");
    EXPECT_EQ(save("SMU-1"), 0);
    EXPECT_EQ(save("a b"), 0);
    EXPECT_EQ(read_file(saved_list), "SMU-2\nSMU-1\na b\n");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(SavedPatch, AreKeptOnce) {
    for (const char *name : {"one", "two", "one", "two", "one"}) {
        EXPECT_EQ(save(name), 0);
    }
    EXPECT_EQ(read_file(saved_list), "one\ntwo\n");
}

TEST_F(SavedPatch, DifferByABlankOrAnyOtherCharacter) {
    for (const char *name : {"one", "one ", "One", "on", "one"}) {
        EXPECT_EQ(save(name), 0);
    }
    EXPECT_EQ(read_file(saved_list), "one\none \nOne\non\n");
}

TEST_F(SavedPatch, LoseACharacterWhereTheNewlineIsMissing) {
    write_file(saved_list, "foo");
    EXPECT_EQ(save("fo"), 0);
    EXPECT_EQ(read_file(saved_list), "foo");
    EXPECT_EQ(save("foo"), 0);
    EXPECT_EQ(read_file(saved_list), "foofoo\n");
}

TEST_F(SavedPatch, AreReadPastBlankLinesAndZeroBytes) {
    const std::string zero_line("\0one\n", 5);
    write_file(saved_list, "\n" + zero_line + "two\n");
    EXPECT_EQ(save("two"), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", saver, "buf len is 0, continue.\n"));
    EXPECT_EQ(traced("trace", saver, "buf len is 0, continue.\n"), 2);
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(read_file(saved_list), "\n" + zero_line + "two\none\n");
}

TEST_F(SavedPatch, MayHaveAnEmptyName) {
    EXPECT_EQ(save(""), 0);
    EXPECT_EQ(save(""), 0);
    EXPECT_EQ(read_file(saved_list), "\n");
    const std::string zero_line("\0one\n", 5);
    write_file(saved_list, zero_line);
    EXPECT_EQ(save(""), 0);
    EXPECT_EQ(read_file(saved_list), zero_line + "\n");
}

TEST_F(SavedPatch, AreNeverFoundAgainWhenTheirNamesAreTooLong) {
    const std::string longest(1022, 'x');
    EXPECT_EQ(save(longest), 0);
    EXPECT_EQ(save(longest), 0);
    EXPECT_EQ(read_file(saved_list), longest + "\n");
    EXPECT_EQ(save(longest + "yz"), 0);
    EXPECT_EQ(save(longest + "yz"), 0);
    EXPECT_EQ(read_file(saved_list), longest + "\n" + longest + "yz\n" + longest + "yz\n");
}

TEST_F(SavedPatch, LeaveNoDescriptorOpen) {
    const int descriptors = open_descriptors();
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(SavedPatch, AreNotKeptWhileVerificationIsOff) {
    platform.switch_result = 0;
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(names_in("/var"), std::vector<std::string>());
}

TEST_F(SavedPatch, AreKeptWithEveryOtherAnswerOfTheSwitch) {
    platform.switch_result = -1;
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(read_file(saved_list), "one\n");
}

TEST_F(SavedPatch, HandTheFourArgumentsToTheSwitch) {
    platform.switch_result = 0;
    const char *name = "one";
    EXPECT_EQ(cmpnt_save_safe_verify_patch(name, UINTPTR_MAX, 3, 0), 0);
    EXPECT_EQ(platform.switch_questions,
              (std::vector<std::vector<uintptr_t>>{
                  {reinterpret_cast<uintptr_t>(name), UINTPTR_MAX, 3, 0}}));
}

TEST_F(SavedPatch, NeedAName) {
    EXPECT_EQ(cmpnt_save_safe_verify_patch(nullptr, 2, 3, 4), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", saver, "param is null.\n"));
    EXPECT_TRUE(platform.switch_questions.empty());
    EXPECT_FALSE(exists(directory));
}

TEST_F(SavedPatch, NeedADirectory) {
    write_file("/var/cache/opkg/debug/kept", "");
    fault::fail("mkdir", 1, ENOSPC);
    EXPECT_EQ(save("one"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", saver, "mkdir fail, dir_path(" + directory + ").\n"));
    EXPECT_FALSE(exists(directory));
}

TEST_F(SavedPatch, NeedAListThatCanBeOpened) {
    make_directories(saved_list);
    EXPECT_EQ(save("one"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", saver, open_message(EISDIR)));
}

TEST_F(SavedPatch, AreNotKeptWhereAFileIsInTheWayOfTheDirectory) {
    write_file(directory, "in the way");
    EXPECT_EQ(save("one"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", saver, open_message(ENOTDIR)));
    EXPECT_EQ(read_file(directory), "in the way");
}

TEST_F(SavedPatch, FailWithTheirWrite) {
    for (int call : {1, 2}) {
        forget_log();
        fault::fail("fputs", call, ENOSPC);
        EXPECT_EQ(save("one" + std::to_string(call)), -1);
        EXPECT_TRUE(
            logged("CMPNT_ERROR", saver, "fputs fail, errno(" + std::to_string(ENOSPC) + ").\n"));
    }
}

TEST_F(SavedPatch, DoNotFailWithTheirFlush) {
    fault::fail("fflush", 1, ENOSPC);
    EXPECT_EQ(save("one"), 0);
    EXPECT_EQ(fault::calls("fflush"), 1);
    EXPECT_FALSE(exists(trace_path()));
}

// Its reader would wait for itself for ever.
TEST_F(SavedPatch, DoNotWaitForAPipe) {
    const Deadline deadline;
    make_directories(directory);
    ASSERT_EQ(mkfifo(saved_list.c_str(), 0600), 0);
    EXPECT_EQ(save("one"), 0);
}
