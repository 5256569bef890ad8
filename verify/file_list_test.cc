#include "verify/file_list.hh"

#include <errno.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

constexpr char reader[] = "file_exist_in_patch_list";
const std::string list_path = "/var/lib/opkg/info/pkg.list";

std::string open_message(int error) {
    return "open(" + list_path + ") failed, reason: " + strerror(error) + "\n";
}

}  // namespace

// Asked once by the function, and by an object that is asked again and again.
class FileListTest : public DeviceTest {
protected:
    void expect(const std::string &path, int answer) {
        EXPECT_EQ(file_exist_in_patch_list(path.c_str(), "pkg"), answer) << path;
        set_written_long_ago(list_path);
        CurrentFileList list("pkg");
        for (int i = 0; i < 3; i++) {
            EXPECT_EQ(list.has(path.c_str()), answer == 1) << path << " question " << i;
        }
    }
};

TEST_F(FileListTest, IsNamedAfterThePackage) {
    EXPECT_STREQ(FileListPath("/var/lib/opkg/info", "a b").text, "/var/lib/opkg/info/a b.list");
    EXPECT_EQ(FileListPath("/d", std::string(251, 'x').c_str()).text,
              "/d/" + std::string(251, 'x') + ".list");
    EXPECT_EQ(FileListPath("/d", std::string(1000, 'x').c_str()).text,
              "/d/" + std::string(256, 'x'));
}

TEST_F(FileListTest, HasWholeLinesOnly) {
    write_file(list_path, "/bin/a\n\n/bin/bb\r\n/bin/ccc\n/bin/last");
    for (const char *path : {"/bin/a", "", "/bin/bb\r", "/bin/ccc", "/bin/las"}) {
        expect(path, 1);
    }
    for (const char *path : {"/bin", "/bin/", "/bin/aa", "/bin/bb", "/bin/cc", "/bin/last"}) {
        expect(path, 0);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileListTest, IsTheListOfThePackageThatWasAskedFor) {
    write_file(list_path, "/bin/a\n");
    write_file("/var/lib/opkg/info/other.list", "/bin/b\n");
    EXPECT_EQ(file_exist_in_patch_list("/bin/b", "other"), 1);
    EXPECT_EQ(file_exist_in_patch_list("/bin/a", "other"), 0);
    CurrentFileList other("other");
    EXPECT_TRUE(other.has("/bin/b"));
    EXPECT_TRUE(other.has("/bin/b"));
}

TEST_F(FileListTest, SaysForEachQuestionThatTheListCannotBeOpened) {
    expect("/bin/a", 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(ENOENT)));
    EXPECT_EQ(traced("error", reader, open_message(ENOENT)), 4);

    write_file(list_path, "/bin/a\n");
    fault::fail("open64", 1, EIO);
    EXPECT_EQ(file_exist_in_patch_list("/bin/a", "pkg"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(EIO)));
}

TEST_F(FileListTest, IsEmptyWhereItIsADirectory) {
    make_directories(list_path);
    expect("/bin/a", 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileListTest, IsReadOnceForManyQuestions) {
    write_file(list_path, "/bin/a\n");
    set_written_long_ago(list_path);
    CurrentFileList list("pkg");
    for (int i = 0; i < 100; i++) {
        EXPECT_TRUE(list.has("/bin/a"));
        EXPECT_FALSE(list.has("/bin/b"));
    }
    EXPECT_EQ(fault::calls("open64"), 1);
}

TEST_F(FileListTest, IsReadForEachQuestionWithoutMemory) {
    write_file(list_path, "/bin/a\n");
    set_written_long_ago(list_path);
    for (const char *function : {"strdup", "realloc"}) {
        CurrentFileList list("pkg");
        fault::fail(function, 1, ENOMEM);
        for (int i = 0; i < 3; i++) {
            EXPECT_TRUE(list.has("/bin/a"));
            EXPECT_FALSE(list.has("/bin/b"));
        }
    }
    EXPECT_FALSE(exists(trace_path()));
}
