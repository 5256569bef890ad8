#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

constexpr int no_descriptor = 9999;

}  // namespace

class DescriptorTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(path, "text");
    }
    const char *path = "/tmp/file";
};

TEST_F(DescriptorTest, CloseReleasesTheDescriptor) {
    const int fd = open(path, O_RDONLY);
    EXPECT_EQ(cmpnt_close(fd), 0);
    EXPECT_EQ(fcntl(fd, F_GETFD), -1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DescriptorTest, CloseOfANegativeNumberCallsNothing) {
    EXPECT_EQ(cmpnt_close(-1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_close", "fd fail, fd(-1)\n"));
    EXPECT_EQ(fault::calls("close"), 1) << "the trace file's";
}

TEST_F(DescriptorTest, CloseTellsWhyItFails) {
    EXPECT_EQ(cmpnt_close(no_descriptor), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_close",
                       "close fail, errno(9), strerror(Bad file descriptor)\n"));
}

TEST_F(DescriptorTest, FcloseReleasesTheStream) {
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_fclose(fopen(path, "r")), 0);
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(DescriptorTest, FcloseRefusesNull) {
    EXPECT_EQ(cmpnt_fclose(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_fclose", "param is null\n"));
}

TEST_F(DescriptorTest, FcloseTellsWhyItFails) {
    fault::fail("fclose", 1, EIO);
    EXPECT_EQ(cmpnt_fclose(fopen(path, "r")), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_fclose",
                       "fclose fail, errno(5), strerror(Input/output error)\n"));
}

TEST_F(DescriptorTest, SyncFlushesAllFileSystems) {
    EXPECT_EQ(cmpnt_sync(), 0);
    EXPECT_EQ(fault::calls("sync"), 1);
}

TEST_F(DescriptorTest, FsyncFlushesTheFile) {
    const int fd = open(path, O_WRONLY);
    EXPECT_EQ(cmpnt_fsync(fd), 0);
    EXPECT_EQ(fault::calls("fsync"), 1);
    close(fd);
}

TEST_F(DescriptorTest, FsyncTellsWhyItFails) {
    EXPECT_EQ(cmpnt_fsync(no_descriptor), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_fsync", "fsync fail, error(Bad file descriptor), fd(9999)\n"));
}

TEST_F(DescriptorTest, NonblockAddsToTheFlagsThatAreSet) {
    FILE *stream = fopen(path, "a");
    EXPECT_EQ(cmpnt_set_file_nonblock(stream, O_NONBLOCK), 0);
    const int flags = fcntl(fileno(stream), F_GETFL);
    EXPECT_EQ(flags & (O_NONBLOCK | O_APPEND), O_NONBLOCK | O_APPEND);
    fclose(stream);
}

TEST_F(DescriptorTest, NonblockSucceedsAlsoWhenTheFlagsCannotBeSet) {
    FILE *stream = fopen(path, "r");
    fault::fail("fcntl64", 1, EBADF);
    EXPECT_EQ(cmpnt_set_file_nonblock(stream, O_NONBLOCK), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_recv_flag",
                       "fcntl F_GETFL fail, error(Bad file descriptor).\n"));
    fclose(stream);
}

TEST_F(DescriptorTest, NonblockRefusesNull) {
    EXPECT_EQ(cmpnt_set_file_nonblock(nullptr, O_NONBLOCK), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_file_nonblock", "param is null\n"));
}

TEST_F(DescriptorTest, NonblockRefusesAStreamWithoutADescriptor) {
    char memory[8] = {};
    FILE *stream = fmemopen(memory, sizeof(memory), "r");
    fault::fail("fileno", 1, EBADF);
    EXPECT_EQ(cmpnt_set_file_nonblock(stream, O_NONBLOCK), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_file_nonblock",
                       "fileno fail, errno(9), error(Bad file descriptor)\n"));
    EXPECT_EQ(fault::calls("fcntl64"), 0);
    fclose(stream);
}
