#include "verify/ways_out.hh"

#include <errno.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class WaysOut : public DeviceTest {
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

TEST_F(WaysOut, AreRemovedAtAnyDepthAndWhatTheyLeadToStays) {
    link("/opt/outside", "/opt/top/absolute");
    link("../outside", "/opt/top/relative");
    link("../../outside", "/opt/top/inside/deeper");
    link("..", "/opt/top/parent");
    link("/", "/opt/top/root");
    link("/opt/top-like", "/opt/top/alike");
    make_directories("/opt/top-like");
    EXPECT_TRUE(remove_ways_out("/opt/top"));
    EXPECT_EQ(names_in("/opt/top"), (std::vector<std::string>{"inside"}));
    EXPECT_TRUE(names_in("/opt/top/inside").empty());
    EXPECT_EQ(read_file("/opt/outside/file"), "untouched");
    EXPECT_TRUE(exists("/opt/top-like"));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(WaysOut, AreNoOtherLinksAndNothingElse) {
    link("inside", "/opt/top/within");
    link(".", "/opt/top/itself");
    link("/opt/top", "/opt/top/inside/up");
    link("/opt/outside/file", "/opt/top/to_file");
    link("/opt/nothing", "/opt/top/dangling");
    link("round", "/opt/top/round");
    write_file("/opt/top/file", "text");
    const std::vector<std::string> names = names_in("/opt/top");
    EXPECT_TRUE(remove_ways_out("/opt/top"));
    EXPECT_EQ(names_in("/opt/top"), names);
    EXPECT_TRUE(exists("/opt/top/inside/up"));
}

TEST_F(WaysOut, AreFoundOverAnotherWayIntoTheDirectory) {
    link("/opt/top", "/opt/other_name");
    link("/opt/outside", "/opt/top/out");
    link("/opt/top/inside", "/opt/top/within");
    EXPECT_TRUE(remove_ways_out("/opt/other_name"));
    EXPECT_EQ(names_in("/opt/top"), (std::vector<std::string>{"inside", "within"}));
}

TEST_F(WaysOut, AreFoundBeyondTheLengthOfTheLibrarysOwnPaths) {
    std::string path = "/opt/top";
    for (int i = 0; i < 300; i++) {
        path += "/deeper";
    }
    make_directories(path);
    link("/opt/outside", path + "/out");
    EXPECT_TRUE(remove_ways_out("/opt/top"));
    EXPECT_FALSE(exists(path + "/out"));
    EXPECT_TRUE(exists(path));
}

TEST_F(WaysOut, AreNoneInAFileButWhatIsMissingIsNotSeenTo) {
    write_file("/opt/file", "text");
    EXPECT_TRUE(remove_ways_out("/opt/file"));
    EXPECT_FALSE(remove_ways_out("/opt/missing"));
}

TEST_F(WaysOut, AreNotSeenToWhereADirectoryCannotBeRead) {
    link("/opt/outside", "/opt/top/out");
    fault::fail("readdir64", 1, EIO);
    EXPECT_FALSE(remove_ways_out("/opt/top"));
    fault::reset();
    const int before = open_descriptors();
    EXPECT_TRUE(remove_ways_out("/opt/top"));
    EXPECT_EQ(open_descriptors(), before);
}
