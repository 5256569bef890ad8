#include <string.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

const std::string download = "/data/cmpnt/opkg/download/";

}  // namespace

class SmuDirectory : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "smu_dir_path_is_null", message);
    }
};

TEST_F(SmuDirectory, HoldsFilesWhereTheTypeOfTheFileSaysSo) {
    write_file(download + "a.bin.single/one.deb", "x");
    write_file(download + "b.deb.new/one.bin", "x");
    EXPECT_EQ(smu_dir_path_is_null("a.bin"), 0);
    EXPECT_EQ(smu_dir_path_is_null("b.deb"), 0);
    EXPECT_TRUE(exists(download + "a.bin.single/one.deb"));
}

TEST_F(SmuDirectory, IsMissing) {
    write_file(download + "a.bin", "x");
    write_file(download + "a.bin.new/one.deb", "x");
    write_file(download + "a.single/one.deb", "x");
    write_file(download + "b.deb.single/one.deb", "x");
    write_file(download + "c.bin.single", "a file");
    ASSERT_EQ(symlink("nowhere", (download + "d.bin.single").c_str()), 0);
    for (const char *name : {"a.bin", "b.deb", "c.bin", "d.bin", "e.bin"}) {
        EXPECT_EQ(smu_dir_path_is_null(name), 1) << name;
    }
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(names_in(download).size(), 6u);
}

TEST_F(SmuDirectory, IsEmpty) {
    make_directories(download + "a.bin.single");
    make_directories(download + "b.bin.single/sub.deb");
    write_file(download + "b.bin.single/sub.deb/one.deb", "below");
    write_file(download + "c.bin.single/one.deb.sign", "beside");
    write_file(download + "c.bin.single/one.deb.hash", "beside");
    for (const char *name : {"a.bin", "b.bin", "c.bin"}) {
        EXPECT_EQ(smu_dir_path_is_null(name), 1) << name;
    }
    EXPECT_TRUE(exists(download + "b.bin.single/sub.deb/one.deb"));
    EXPECT_TRUE(exists(download + "c.bin.single/one.deb.sign"));
    EXPECT_TRUE(exists(download + "c.bin.single/one.deb.hash"));
}

TEST_F(SmuDirectory, LosesItsStrayFilesToTheLook) {
    write_file(download + "a.bin.single/a.txt", "x");
    write_file(download + "a.bin.single/noise", "x");
    write_file(download + "b.bin.single/a.txt", "x");
    write_file(download + "b.bin.single/one.deb", "x");
    EXPECT_EQ(smu_dir_path_is_null("a.bin"), 1);
    EXPECT_TRUE(names_in(download + "a.bin.single").empty());
    EXPECT_EQ(smu_dir_path_is_null("b.bin"), 0);
    EXPECT_EQ(names_in(download + "b.bin.single"), std::vector<std::string>{"one.deb"});
}

TEST_F(SmuDirectory, CannotBeWorkedOutWithoutAType) {
    write_file(download + "a.txt.single/one.deb", "x");
    for (const char *name : {"a.txt", "a", "a.bin.sign", "a.BIN", "a.", ""}) {
        forget_log();
        EXPECT_EQ(smu_dir_path_is_null(name), 1) << name;
        EXPECT_TRUE(says("Invalid package type, please check!\n")) << name;
    }
}

// The name is what is asked for its type, not the path, which may be cut or have a dot of its own.
TEST_F(SmuDirectory, HasTheTypeOfTheName) {
    EXPECT_EQ(smu_dir_path_is_null("SMU-1"), 1);
    EXPECT_EQ(trace_messages()[0], "error get_file_type: The file_name(SMU-1) type is invalid.\n");
    forget_log();
    EXPECT_EQ(smu_dir_path_is_null((std::string(300, 'n') + ".bin").c_str()), 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(SmuDirectory, CannotBeWorkedOutWithoutADestination) {
    write_file(download + "a.bin.single/one.deb", "x");
    write_file(download + "b.deb.new/one.deb", "x");
    fault::fail("cmpnt_get_dest_path", 1, 0, 2);
    EXPECT_EQ(smu_dir_path_is_null("a.bin"), 1);
    EXPECT_TRUE(says("cmpnt_get_dest_path fail, path(" + download + "a.bin), type(1).\n"));
    EXPECT_EQ(smu_dir_path_is_null("b.deb"), 1);
    EXPECT_TRUE(says("cmpnt_get_dest_path fail, path(" + download + "b.deb), type(3).\n"));
    EXPECT_EQ(trace_lines().size(), 2u);
}

TEST_F(SmuDirectory, RefusesNull) {
    EXPECT_EQ(smu_dir_path_is_null(nullptr), 1);
    EXPECT_TRUE(says("param is null\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(SmuDirectory, MayHaveALongPath) {
    const size_t room =
        CMPNT_PATH_SIZE - 1 - download.size() - strlen(".bin.single") - strlen("/1.deb");
    const std::string name = std::string(100, 'd') + "/" + std::string(room - 101, 'n') + ".bin";
    write_file(download + name + ".single/1.deb", "x");
    EXPECT_EQ(smu_dir_path_is_null(name.c_str()), 0);
    EXPECT_TRUE(trace_messages().empty());
}

// What a cut path names is another directory, whose files are none of this SMU's.
TEST_F(SmuDirectory, LeavesAlonePathsThatDoNotFit) {
    const size_t room = CMPNT_PATH_SIZE - 1 - download.size() - strlen(".bin.single");
    for (const size_t too_much : {1, 2, 7, 8, 12, 100}) {
        const std::string name =
            std::string(100, 'd') + "/" + std::string(room - 101 + too_much, 'n') + ".bin";
        const std::string cut = (download + name + ".single").substr(0, 259);
        for (const char *file : {"/one.deb", "/stray", "/x"}) {
            write_file(cut + file, "x");
        }
        EXPECT_EQ(smu_dir_path_is_null(name.c_str()), 1) << too_much;
        EXPECT_EQ(names_in(cut).size(), 3u) << too_much;
    }
}
