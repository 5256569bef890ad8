#include "verify/global_whitelist.hh"

#include <errno.h>
#include <unistd.h>

#include "tests/support/device_test.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char reader[] = "file_exist_in_global_whitelist";

void write_list(const std::string &content) {
    write_file(global_whitelist_path, content);
    write_file(global_whitelist_signature_path, "");
}

std::string open_message(int error) {
    return std::string("open(") + global_whitelist_path + ") failed, reason: " + strerror(error) +
           "\n";
}

}  // namespace

// Asked once by the function, and by an object that is asked again and again.
class GlobalWhitelistTest : public DeviceTest {
protected:
    void expect(const std::string &path, int answer) {
        EXPECT_EQ(file_exist_in_global_whitelist(path.c_str()), answer) << path;
        set_written_long_ago(global_whitelist_path);
        GlobalWhitelist whitelist;
        for (int i = 0; i < 3; i++) {
            EXPECT_EQ(whitelist.has(path.c_str()), answer == 1) << path << " question " << i;
        }
    }
};

TEST_F(GlobalWhitelistTest, HasThePathsThatALineBeginsWith) {
    write_list("/usr/bin/ab\n/sbin/x\n");
    for (const char *path : {"/usr/bin/ab", "/usr/bin/a", "/usr/bin/", "/", "/s", "/sbin/x"}) {
        expect(path, 1);
    }
    for (const char *path : {"/usr/bin/abc", "/usr/bin/b", "/sbin/xy", "/bin/x", "sbin", " "}) {
        expect(path, 0);
    }
}

TEST_F(GlobalWhitelistTest, HasTheEmptyPathWhenThereIsALine) {
    write_list("");
    expect("", 0);
    write_list("\n");
    expect("", 1);
    write_list("/bin/a\n");
    expect("", 1);
}

TEST_F(GlobalWhitelistTest, CutsEachLine) {
    write_list("/bin/a\r\n/bin/last");
    expect("/bin/a\r", 1);
    expect("/bin/las", 1);
    expect("/bin/last", 0);
    const std::string line = "/bin/" + std::string(1017, 'x');
    write_list(line + "y/rest\n");
    expect(line, 1);
    expect(line + "y", 0);
    expect("/rest", 1);
}

TEST_F(GlobalWhitelistTest, CountsForNothingWithoutItsSignatureFile) {
    write_file(global_whitelist_path, "/bin/a\n");
    expect("/bin/a", 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(GlobalWhitelistTest, AsksForTheSignatureFileEachTime) {
    write_list("/bin/a\n");
    set_written_long_ago(global_whitelist_path);
    GlobalWhitelist whitelist;
    for (int i = 0; i < 3; i++) {
        EXPECT_TRUE(whitelist.has("/bin/a"));
    }
    unlink(global_whitelist_signature_path);
    EXPECT_FALSE(whitelist.has("/bin/a"));
    ASSERT_EQ(symlink("nowhere", global_whitelist_signature_path), 0);  // there is a file
    EXPECT_TRUE(whitelist.has("/bin/a"));
}

TEST_F(GlobalWhitelistTest, RefusesNull) {
    write_list("/bin/a\n");
    EXPECT_EQ(file_exist_in_global_whitelist(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "param is null.\n"));
    EXPECT_FALSE(GlobalWhitelist().has(nullptr));
    EXPECT_EQ(traced("error", reader, "param is null.\n"), 2);
}

TEST_F(GlobalWhitelistTest, SaysForEachQuestionThatTheListCannotBeOpened) {
    write_file(global_whitelist_signature_path, "");
    EXPECT_EQ(file_exist_in_global_whitelist("/bin/a"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(ENOENT)));
    GlobalWhitelist whitelist;
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(whitelist.has("/bin/a"));
    }
    EXPECT_EQ(traced("error", reader, open_message(ENOENT)), 4);

    write_list("/bin/a\n");
    fault::fail("open64", 1, EACCES);
    EXPECT_EQ(file_exist_in_global_whitelist("/bin/a"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(EACCES)));
}

TEST_F(GlobalWhitelistTest, HasNothingInADirectory) {
    make_directories(global_whitelist_path);
    write_file(global_whitelist_signature_path, "");
    expect("/bin/a", 0);
}

TEST_F(GlobalWhitelistTest, ReadsTheListOnceForManyQuestions) {
    write_list("/bin/a\n");
    set_written_long_ago(global_whitelist_path);
    GlobalWhitelist whitelist;
    for (int i = 0; i < 100; i++) {
        EXPECT_TRUE(whitelist.has("/bin/a"));
        EXPECT_FALSE(whitelist.has("/bin/b"));
    }
    EXPECT_EQ(fault::calls("open64"), 1);
}

TEST_F(GlobalWhitelistTest, SeesAChangedList) {
    write_list("/bin/a\n");
    set_written_long_ago(global_whitelist_path);
    GlobalWhitelist whitelist;
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(whitelist.has("/bin/new"));
    }
    write_list("/bin/a\n/bin/new\n");
    EXPECT_TRUE(whitelist.has("/bin/new"));
}

TEST_F(GlobalWhitelistTest, ReadsTheListForEachQuestionWithoutMemory) {
    write_list("/bin/a\n");
    set_written_long_ago(global_whitelist_path);
    GlobalWhitelist whitelist;
    fault::fail("strdup", 1, ENOMEM);
    for (int i = 0; i < 3; i++) {
        EXPECT_TRUE(whitelist.has("/bin/a"));
        EXPECT_FALSE(whitelist.has("/bin/b"));
    }
    EXPECT_FALSE(exists(trace_path()));
}
