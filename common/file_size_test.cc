#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr uint32_t unknown_size = 0xFFFFFFFFu;

}  // namespace

class FileSize : public DeviceTest {};

TEST_F(FileSize, IsInKilobytesForUnit1AndInBytesForEveryOther) {
    const struct {
        size_t bytes;
        uint32_t kilobytes;
    } cases[] = {{0, 0}, {1, 0}, {1023, 0}, {1024, 1}, {2047, 1}, {2048, 2}};
    for (const auto &c : cases) {
        write_file("/tmp/file", std::string(c.bytes, 'x'));
        EXPECT_EQ(cmpnt_get_file_size("/tmp/file", 1), c.kilobytes) << c.bytes;
        for (int32_t unit : {0, 2, -1, INT32_MIN}) {
            EXPECT_EQ(cmpnt_get_file_size("/tmp/file", unit), c.bytes) << unit;
        }
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileSize, IsCutTo32BitsAfterTheUnit) {
    write_file("/tmp/file", "");
    const off_t five_gigabytes = static_cast<off_t>(5) << 30;
    ASSERT_EQ(truncate("/tmp/file", five_gigabytes), 0);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/file", 1), 5u << 20);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/file", 0), 1u << 30);
}

TEST_F(FileSize, FollowsALink) {
    write_file("/tmp/file", "12345");
    ASSERT_EQ(symlink("/tmp/file", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/link", 0), 5u);
}

TEST_F(FileSize, CallsAMissingFileANullOne) {
    for (const char *path : {static_cast<const char *>(nullptr), "/tmp/missing", ""}) {
        forget_log();
        EXPECT_EQ(cmpnt_get_file_size(path, 1), unknown_size);
        EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_get_file_size", "param is null.\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_F(FileSize, TellsWhyTheFileCannotBeOpened) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/link"), 0);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/link", 0), unknown_size);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_get_file_size",
                       "fopen fail, error(No such file or directory).\n"));
}

TEST_F(FileSize, IsUnknownForWhatHasNone) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    const int other_end = open("/tmp/pipe", O_RDWR);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/pipe", 0), unknown_size);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/pipe", 1), unknown_size);
    close(other_end);

    write_file("/tmp/file", "12345");
    fault::fail("fseeko64", 1, EIO);
    EXPECT_EQ(cmpnt_get_file_size("/tmp/file", 0), unknown_size);
}

TEST_F(FileSize, DoesNotWaitForTheWriterOfAPipe) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    const Deadline deadline;
    EXPECT_EQ(cmpnt_get_file_size("/tmp/pipe", 0), unknown_size);
}

TEST_F(FileSize, LeavesNoDescriptorOpen) {
    write_file("/tmp/file", "x");
    const int before = open_descriptors();
    cmpnt_get_file_size("/tmp/file", 0);
    cmpnt_get_file_size("/tmp/missing", 0);
    EXPECT_EQ(open_descriptors(), before);
}
