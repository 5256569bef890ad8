#include "verify/file_index.hh"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>

#include "tests/support/device_test.hh"

namespace {

constexpr char path[] = "/tmp/list";

bool add_line(FileIndex &index, char *line) {
    return index.texts.add(line) && (line[0] != '*' || index.marked_texts.add(line));
}

bool refuse(FileIndex &, char *) { return false; }

void set_written(const timespec &time) {
    const timespec times[] = {time, time};
    ASSERT_EQ(utimensat(AT_FDCWD, path, times, 0), 0);
}

void append(const std::string &text) {
    std::ofstream(path, std::ios::app) << text;
    set_written_long_ago(path);
}

timespec now() {
    timespec time;
    clock_gettime(CLOCK_REALTIME, &time);
    return time;
}

bool add_line_while_the_file_grows(FileIndex &index, char *line) {
    if (strcmp(line, "one") == 0) {
        append("\nmore\n");
    }
    return add_line(index, line);
}

}  // namespace

class FileIndexTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(path, "one\n*two\n\nthree");
        set_written_long_ago(path);
    }

    FileIndex index{path, add_line};
};

TEST_F(FileIndexTest, ReadsTheFileOnce) {
    const int descriptors = open_descriptors();
    for (int i = 0; i < 5; i++) {
        EXPECT_TRUE(index.is_current());
    }
    EXPECT_EQ(fault::calls("open64"), 1);
    EXPECT_EQ(open_descriptors(), descriptors);
    for (const char *text : {"one", "*two", "", "thre"}) {
        EXPECT_TRUE(index.texts.contains(text)) << text;
    }
    EXPECT_TRUE(index.marked_texts.contains("*two"));
    EXPECT_FALSE(index.marked_texts.contains("one"));
}

TEST_F(FileIndexTest, HoldsWholeLines) {
    FileIndex whole(path, add_whole_line);
    EXPECT_TRUE(whole.is_current());
    for (const char *text : {"one", "*two", "", "thre"}) {
        EXPECT_TRUE(whole.texts.contains(text)) << text;
    }
    EXPECT_FALSE(whole.marked_texts.any_has_prefix(""));
}

TEST_F(FileIndexTest, ReadsTheFileAnewAfterAChange) {
    EXPECT_TRUE(index.is_current());
    append("\nfour\n");
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("four"));
    EXPECT_TRUE(index.texts.contains("three"));
    EXPECT_FALSE(index.texts.contains("thre"));
    EXPECT_EQ(fault::calls("open64"), 2);
}

TEST_F(FileIndexTest, SeesAFileOfTheSameSizeThatTookThePlace) {
    EXPECT_TRUE(index.is_current());
    write_file("/tmp/new", "ONE\n*two\n\nthree");
    set_written_long_ago("/tmp/new");
    ASSERT_EQ(rename("/tmp/new", path), 0);
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("ONE"));
    EXPECT_FALSE(index.texts.contains("one"));
}

TEST_F(FileIndexTest, SeesThatTheFileWasWrittenAtAnotherTime) {
    int reads = 0;
    for (const timespec &time : {timespec{1000, 1}, {1000, 2}, {1001, 2}, {1000, 1}}) {
        set_written(time);
        EXPECT_TRUE(index.is_current());
        EXPECT_EQ(fault::calls("open64"), ++reads);
    }
}

// Whoever may no longer read it is told so.
TEST_F(FileIndexTest, SeesThatTheModeOfTheFileChanged) {
    EXPECT_TRUE(index.is_current());
    ASSERT_EQ(chmod(path, 0600), 0);
    EXPECT_TRUE(index.is_current());
    EXPECT_EQ(fault::calls("open64"), 2);
}

// What is written now may be written again at the same tick of the clock.
TEST_F(FileIndexTest, IsNotCurrentForAFileThatWasJustWritten) {
    EXPECT_TRUE(index.is_current());
    set_written({now().tv_sec + 100, 1});
    EXPECT_FALSE(index.is_current());
    set_written({now().tv_sec - 1, 999999999});
    EXPECT_TRUE(index.is_current());
    // Within one second that does not end meanwhile.
    bool is_current = true;
    bool is_current_with_fraction = false;
    for (bool is_done = false; !is_done;) {
        const timespec time = now();
        set_written({time.tv_sec, 0});
        is_current = index.is_current();
        set_written({time.tv_sec, 1});
        is_current_with_fraction = index.is_current();
        is_done = now().tv_sec == time.tv_sec && time.tv_nsec > 100000000;
    }
    EXPECT_FALSE(is_current);
    EXPECT_TRUE(is_current_with_fraction);
}

TEST_F(FileIndexTest, IsNotCurrentWithoutAFile) {
    EXPECT_TRUE(index.is_current());
    ASSERT_EQ(rename(path, "/tmp/away"), 0);
    EXPECT_FALSE(index.is_current());
    EXPECT_FALSE(index.is_current());
    ASSERT_EQ(rename("/tmp/away", path), 0);
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("one"));
}

TEST_F(FileIndexTest, IsNeverCurrentForOtherThanFiles) {
    FileIndex directory("/tmp", add_line);
    FileIndex device("/dev/null", add_line);
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(directory.is_current());
        EXPECT_FALSE(device.is_current());
    }
}

TEST_F(FileIndexTest, FollowsALink) {
    ASSERT_EQ(symlink(path, "/tmp/link"), 0);
    FileIndex linked("/tmp/link", add_line);
    EXPECT_TRUE(linked.is_current());
    EXPECT_TRUE(linked.texts.contains("one"));
}

TEST_F(FileIndexTest, LeavesLargeFilesAlone) {
    ASSERT_EQ(truncate(path, (2 << 20) + 1), 0);
    set_written_long_ago(path);
    EXPECT_FALSE(index.is_current());
    EXPECT_EQ(fault::calls("open64"), 0);
    ASSERT_EQ(truncate(path, 2 << 20), 0);
    set_written_long_ago(path);
    EXPECT_TRUE(index.is_current());
}

TEST_F(FileIndexTest, HoldsAnEmptyFile) {
    write_file(path, "");
    set_written_long_ago(path);
    EXPECT_TRUE(index.is_current());
    EXPECT_FALSE(index.texts.any_has_prefix(""));
}

TEST_F(FileIndexTest, TriesAFileThatItCannotHoldOnlyOnce) {
    struct Obstacle {
        const char *function;
        int call;
    };
    for (const Obstacle &obstacle : {Obstacle{"strdup", 1},
                                     {"strdup", 3},
                                     {"realloc", 1},
                                     {"realloc", 2},
                                     {"open64", 1},
                                     {"ferror", 1}}) {
        FileIndex hindered(path, add_line);
        fault::fail(obstacle.function, obstacle.call, ENOMEM);
        for (int i = 0; i < 3; i++) {
            EXPECT_FALSE(hindered.is_current()) << obstacle.function;
        }
        EXPECT_EQ(fault::calls("open64"), 1);
        fault::reset();
    }
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_TRUE(index.is_current());
}

TEST_F(FileIndexTest, IsNotCurrentWhenALineIsRefused) {
    FileIndex refusing(path, refuse);
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(refusing.is_current());
    }
    EXPECT_EQ(fault::calls("open64"), 1);
}

TEST_F(FileIndexTest, HoldsAFileThatGrowsWhileItIsReadUntilItChanges) {
    FileIndex growing(path, add_line_while_the_file_grows);
    EXPECT_TRUE(growing.is_current());
    write_file(path, "two\n");
    set_written_long_ago(path);
    EXPECT_TRUE(growing.is_current());
    EXPECT_TRUE(growing.texts.contains("two"));
    EXPECT_FALSE(growing.texts.contains("one"));
}
