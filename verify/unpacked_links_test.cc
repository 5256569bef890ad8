#include "verify/unpacked_links.hh"

#include <errno.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class UnpackedLinks : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/opt/top/inside");
        write_file("/opt/outside/file", "untouched");
    }

    static void link(const char *target, const std::string &path) {
        ASSERT_EQ(symlink(target, path.c_str()), 0) << path;
    }
};

TEST_F(UnpackedLinks, GoAtAnyDepthWhereverTheyLeadAndThatStays) {
    write_file("/opt/top/inside/file", "kept");
    link("/opt/outside", "/opt/top/absolute");
    link("../outside", "/opt/top/relative");
    link("../../outside", "/opt/top/inside/deeper");
    link("..", "/opt/top/parent");
    link("inside", "/opt/top/within");
    link(".", "/opt/top/itself");
    link("/opt/outside/file", "/opt/top/to_file");
    link("inside/file", "/opt/top/to_file_inside");
    link("/opt/nothing", "/opt/top/dangling");
    link("later", "/opt/top/dangling_inside");
    link("round", "/opt/top/round");
    EXPECT_TRUE(remove_links("/opt/top"));
    EXPECT_EQ(names_in("/opt/top"), (std::vector<std::string>{"inside"}));
    EXPECT_EQ(names_in("/opt/top/inside"), (std::vector<std::string>{"file"}));
    EXPECT_EQ(read_file("/opt/top/inside/file"), "kept");
    EXPECT_EQ(read_file("/opt/outside/file"), "untouched");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(UnpackedLinks, AreNothingElse) {
    write_file("/opt/top/file", "text");
    ASSERT_EQ(::link("/opt/top/file", "/opt/top/hard"), 0);
    ASSERT_EQ(mkfifo("/opt/top/pipe", 0600), 0);
    const std::vector<std::string> names = names_in("/opt/top");
    EXPECT_TRUE(remove_links("/opt/top"));
    EXPECT_EQ(names_in("/opt/top"), names);
}

TEST_F(UnpackedLinks, AreFoundOverAnotherWayIntoTheDirectoryWhichStays) {
    link("/opt/top", "/opt/other_name");
    link("/opt/outside", "/opt/top/out");
    EXPECT_TRUE(remove_links("/opt/other_name"));
    EXPECT_EQ(names_in("/opt/top"), (std::vector<std::string>{"inside"}));
    EXPECT_TRUE(exists("/opt/other_name"));
}

TEST_F(UnpackedLinks, AreFoundBeyondTheLengthOfTheLibrarysOwnPaths) {
    std::string path = "/opt/top";
    for (int i = 0; i < 300; i++) {
        path += "/deeper";
    }
    make_directories(path);
    link("/opt/outside", path + "/out");
    EXPECT_TRUE(remove_links("/opt/top"));
    EXPECT_FALSE(exists(path + "/out"));
    EXPECT_TRUE(exists(path));
}

TEST_F(UnpackedLinks, AreNotSeenToBeyondTheLengthOfTheSystemsPaths) {
    const std::string name(250, 'n');
    ASSERT_EQ(chdir("/opt/top"), 0);
    for (size_t length = 0; length < PATH_MAX; length += name.size() + 1) {
        ASSERT_EQ(mkdir(name.c_str(), 0700), 0);
        ASSERT_EQ(chdir(name.c_str()), 0);
    }
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_FALSE(remove_links("/opt/top"));
}

TEST_F(UnpackedLinks, AreNoneInAFileButWhatIsMissingIsNotSeenTo) {
    write_file("/opt/file", "text");
    EXPECT_TRUE(remove_links("/opt/file"));
    EXPECT_FALSE(remove_links("/opt/missing"));
    EXPECT_FALSE(remove_links(""));
}

TEST_F(UnpackedLinks, AreFoundWhereTheFileSystemTellsNoTypes) {
    link("/opt/outside", "/opt/top/inside/out");
    fault::hide_entry_types();
    EXPECT_TRUE(remove_links("/opt/top"));
    EXPECT_FALSE(exists("/opt/top/inside/out"));
}

TEST_F(UnpackedLinks, ThatCannotBeRemovedAreNotSeenTo) {
    link("/opt/outside", "/opt/top/out");
    fault::fail("remove", 1, EROFS);
    EXPECT_FALSE(remove_links("/opt/top"));
}

TEST_F(UnpackedLinks, AreNotSeenToWhereADirectoryCannotBeRead) {
    link("/opt/outside", "/opt/top/out");
    fault::fail("readdir64", 1, EIO);
    EXPECT_FALSE(remove_links("/opt/top"));
    fault::reset();
    fault::fail("opendir", 2, EMFILE);
    EXPECT_FALSE(remove_links("/opt/top"));
    fault::reset();
    const int before = open_descriptors();
    EXPECT_TRUE(remove_links("/opt/top"));
    EXPECT_EQ(open_descriptors(), before);
}
