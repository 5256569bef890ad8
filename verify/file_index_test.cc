#include "verify/file_index.hh"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include <fstream>

#include "tests/support/device_test.hh"

namespace {

constexpr char path[] = "/tmp/list";

bool add_line(FileIndex &index, char *line) {
    const char *text = index.keep(line);
    return text != nullptr && index.texts.add(text) &&
           (text[0] != '*' || index.marked_texts.add(text));
}

bool refuse(FileIndex &, char *) { return false; }

void append(const std::string &text) { std::ofstream(path, std::ios::app) << text; }

bool add_line_while_the_file_grows(FileIndex &index, char *line) {
    append("one more\n");
    return add_line(index, line);
}

}  // namespace

class FileIndexTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(path, "one\n*two\n\nthree");
    }

    // One question to see the file, one to read it.
    void load() {
        index.is_current();
        ASSERT_TRUE(index.is_current());
    }

    FileIndex index{path, add_line};
};

TEST_F(FileIndexTest, ReadsTheFileOnceWhenItIsAskedForTheSecondTime) {
    const int descriptors = open_descriptors();
    EXPECT_FALSE(index.is_current());
    EXPECT_EQ(fault::calls("open64"), 0);
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

TEST_F(FileIndexTest, IsNotCurrentRightAfterAChange) {
    load();
    append("\nfour\n");
    EXPECT_FALSE(index.is_current());
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("four"));
    EXPECT_TRUE(index.texts.contains("three"));
    EXPECT_FALSE(index.texts.contains("thre"));
}

TEST_F(FileIndexTest, SeesAFileOfTheSameSizeThatTookThePlace) {
    load();
    write_file("/tmp/new", "ONE\n*two\n\nthree");
    ASSERT_EQ(rename("/tmp/new", path), 0);
    EXPECT_FALSE(index.is_current());
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("ONE"));
    EXPECT_FALSE(index.texts.contains("one"));
}

TEST_F(FileIndexTest, SeesThatTheFileWasWrittenAtAnotherTime) {
    load();
    const timespec times[] = {{1000, 1}, {1000, 1}};
    ASSERT_EQ(utimensat(AT_FDCWD, path, times, 0), 0);
    EXPECT_FALSE(index.is_current());
    EXPECT_TRUE(index.is_current());
    const timespec later[] = {{1000, 1}, {1000, 2}};
    ASSERT_EQ(utimensat(AT_FDCWD, path, later, 0), 0);
    EXPECT_FALSE(index.is_current());
}

TEST_F(FileIndexTest, IsNotCurrentWithoutAFile) {
    load();
    ASSERT_EQ(rename(path, "/tmp/away"), 0);
    EXPECT_FALSE(index.is_current());
    EXPECT_FALSE(index.is_current());
    EXPECT_FALSE(index.texts.contains("one"));
    ASSERT_EQ(rename("/tmp/away", path), 0);
    EXPECT_FALSE(index.is_current());
    EXPECT_TRUE(index.is_current());
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
    linked.is_current();
    EXPECT_TRUE(linked.is_current());
    EXPECT_TRUE(linked.texts.contains("one"));
}

TEST_F(FileIndexTest, LeavesLargeFilesAlone) {
    ASSERT_EQ(truncate(path, (8 << 20) + 1), 0);
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(index.is_current());
    }
    EXPECT_EQ(fault::calls("open64"), 0);
}

TEST_F(FileIndexTest, ForgetsWhatItIsToldToForget) {
    load();
    index.forget();
    EXPECT_FALSE(index.texts.contains("one"));
    EXPECT_FALSE(index.is_current());
    EXPECT_TRUE(index.is_current());
    EXPECT_TRUE(index.texts.contains("one"));
}

TEST_F(FileIndexTest, HoldsAnEmptyFile) {
    write_file(path, "");
    load();
    EXPECT_FALSE(index.texts.any_begins_with(""));
}

TEST_F(FileIndexTest, TriesAFileThatItCannotHoldOnlyOnce) {
    struct Obstacle {
        const char *function;
        int calls;
    };
    for (const Obstacle &obstacle :
         {Obstacle{"calloc", 1}, {"realloc", 1}, {"realloc", 2}, {"open64", 1}, {"ferror", 1}}) {
        index.forget();
        EXPECT_FALSE(index.is_current());
        fault::fail(obstacle.function, obstacle.calls, ENOMEM);
        for (int i = 0; i < 3; i++) {
            EXPECT_FALSE(index.is_current()) << obstacle.function;
        }
        fault::reset();
    }
    EXPECT_FALSE(exists(trace_path()));
    index.forget();
    load();
}

TEST_F(FileIndexTest, IsNotCurrentWhenALineIsRefused) {
    FileIndex refusing(path, refuse);
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(refusing.is_current());
    }
    EXPECT_EQ(fault::calls("open64"), 1);
}

TEST_F(FileIndexTest, IsNotCurrentWhenTheFileGrowsWhileItIsRead) {
    FileIndex growing(path, add_line_while_the_file_grows);
    growing.is_current();
    EXPECT_FALSE(growing.is_current());
}
