#include <unistd.h>

#include "tests/support/device_test.hh"

class LinkTest : public DeviceTest {};

TEST_F(LinkTest, IsFoundAndTracedWhateverItPointsAt) {
    make_directories("/tmp/dir");
    ASSERT_EQ(symlink("/tmp/dir", "/tmp/link"), 0);
    ASSERT_EQ(symlink("nowhere", "/tmp/dangling"), 0);
    EXPECT_EQ(is_link("/tmp/link"), 1);
    EXPECT_TRUE(logged("CMPNT_TRACE", "is_link", "file(/tmp/link) is a link.\n"));
    EXPECT_EQ(is_link("/tmp/dangling"), 1);
    EXPECT_TRUE(logged("CMPNT_TRACE", "is_link", "file(/tmp/dangling) is a link.\n"));
}

TEST_F(LinkTest, WithALongTargetIsALink) {
    ASSERT_EQ(symlink(std::string(2000, 't').c_str(), "/tmp/link"), 0);
    EXPECT_EQ(is_link("/tmp/link"), 1);
}

TEST_F(LinkTest, EverythingElseIsNoneSilently) {
    write_file("/tmp/dir/file", "x");
    EXPECT_EQ(is_link("/tmp/dir/file"), 0);
    EXPECT_EQ(is_link("/tmp/dir"), 0);
    EXPECT_EQ(is_link("/tmp/missing"), 0);
    EXPECT_EQ(is_link(""), 0);
    EXPECT_EQ(is_link(nullptr), 0);
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_TRUE(platform.syslog.empty());
}
