#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class StatusFlags : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file("/tmp/file", "");
        fd = open("/tmp/file", O_RDWR | O_APPEND);
        ASSERT_GE(fd, 0);
        fault::reset();
    }
    void TearDown() override {
        close(fd);
        DeviceTest::TearDown();
    }
    int flags() { return fcntl(fd, F_GETFL, 0) & (O_ACCMODE | O_APPEND | O_NONBLOCK); }
    int fd;
};

TEST_F(StatusFlags, AreAddedToThoseThatAreSet) {
    EXPECT_EQ(cmpnt_set_recv_flag(fd, O_NONBLOCK), 0);
    EXPECT_EQ(fault::calls("fcntl64"), 2);
    EXPECT_EQ(flags(), O_RDWR | O_APPEND | O_NONBLOCK);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StatusFlags, AreToldAndNotSetWhenTheyAreSetAlready) {
    cmpnt_set_recv_flag(fd, O_NONBLOCK);
    const int current = fcntl(fd, F_GETFL, 0);
    fault::reset();
    for (uint32_t wanted :
         {static_cast<uint32_t>(O_NONBLOCK), static_cast<uint32_t>(O_NONBLOCK | O_APPEND), 0u}) {
        EXPECT_EQ(cmpnt_set_recv_flag(fd, wanted), current);
    }
    EXPECT_EQ(fault::calls("fcntl64"), 3) << "one question each";
}

TEST_F(StatusFlags, AreSetWhenOneOfThemIsMissing) {
    EXPECT_EQ(cmpnt_set_recv_flag(fd, O_APPEND | O_NONBLOCK), 0);
    EXPECT_EQ(flags(), O_RDWR | O_APPEND | O_NONBLOCK);
}

TEST_F(StatusFlags, AreAddedWhereNoneIsSet) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const int none = fcntl(ends[0], F_GETFL, 0);  // 0, but for an emulator's own
    EXPECT_EQ(cmpnt_set_recv_flag(ends[0], 0), none);
    EXPECT_EQ(cmpnt_set_recv_flag(ends[0], O_NONBLOCK), 0);
    EXPECT_EQ(fcntl(ends[0], F_GETFL, 0), none | O_NONBLOCK);
    EXPECT_TRUE(trace_messages().empty());
    close(ends[0]);
    close(ends[1]);
}

TEST_F(StatusFlags, OfABadDescriptorAreAFailureInTheLogAlone) {
    EXPECT_EQ(cmpnt_set_recv_flag(-1, O_NONBLOCK), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_recv_flag",
                       "fcntl F_GETFL fail, error(Bad file descriptor).\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(fault::calls("fcntl64"), 1);
}

TEST_F(StatusFlags, ThatCannotBeSetAreAFailureInTheLogAlone) {
    fault::fail("fcntl64", 2, EPERM);
    EXPECT_EQ(cmpnt_set_recv_flag(fd, O_NONBLOCK), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_recv_flag",
                       "fcntl F_SETFL fail, error(Operation not permitted).\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_EQ(flags(), O_RDWR | O_APPEND);
}
