#include "common/open_stream.hh"

#include <sys/stat.h>

#include "common/guard.hh"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

class OpenStream : public DeviceTest {
protected:
    Deadline an_open_that_waits_is_killed;
};

TEST_F(OpenStream, ReadsAFile) {
    write_file("/tmp/file", "text");
    Stream stream(open_to_read("/tmp/file"));
    char text[16] = "";
    ASSERT_TRUE(stream);
    EXPECT_STREQ(fgets(text, sizeof(text), stream.get()), "text");
    EXPECT_LT(fputs("x", stream.get()), 0);
}

TEST_F(OpenStream, FailsAsFopenDoes) {
    EXPECT_EQ(open_to_read("/tmp/missing"), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_FALSE(exists("/tmp/missing"));
}

TEST_F(OpenStream, DoesNotWaitForAPipe) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    char text[16] = "";
    Stream reader(open_to_read("/tmp/pipe"));
    ASSERT_TRUE(reader);
    EXPECT_EQ(fgets(text, sizeof(text), reader.get()), nullptr);
}
