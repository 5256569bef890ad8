#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

class CopyFile : public DeviceTest {
protected:
    static int32_t copy() { return cmpnt_copy_file_by_write("/tmp/source", "/tmp/copy"); }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_copy_file_by_write", message);
    }
};

TEST_F(CopyFile, CopiesEveryByteAndAnswersWithTheLastBlock) {
    const struct {
        size_t size;
        int32_t result;
    } cases[] = {{1, 1}, {1023, 1023}, {1024, 1024}, {1025, 1}, {2048, 1024}, {10000, 784}};
    for (const auto &one : cases) {
        std::string text(one.size, '\0');
        for (size_t i = 0; i < text.size(); i++) {
            text[i] = static_cast<char>(i * 7 + i / 256);
        }
        write_file("/tmp/source", text);
        EXPECT_EQ(copy(), one.result) << one.size;
        EXPECT_TRUE(read_file("/tmp/copy") == text) << one.size;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(CopyFile, OfAnEmptyFileIsEmptyAndOpenToAll) {
    umask(077);
    write_file("/tmp/source", "");
    EXPECT_EQ(copy(), 0);
    umask(022);
    EXPECT_EQ(size_of("/tmp/copy"), 0);
    EXPECT_EQ(mode_of("/tmp/copy"), 0777);
}

TEST_F(CopyFile, ReplacesALongerFileAndItsMode) {
    write_file("/tmp/source", "new");
    write_file("/tmp/copy", "something older");
    ASSERT_EQ(chmod("/tmp/copy", 0600), 0);
    EXPECT_EQ(copy(), 3);
    EXPECT_EQ(read_file("/tmp/copy"), "new");
    EXPECT_EQ(mode_of("/tmp/copy"), 0777);
}

TEST_F(CopyFile, IsOnTheDiskWhenTheCallReturns) {
    write_file("/tmp/source", "text");
    const int32_t result = copy();
    EXPECT_EQ(fault::order_of({"fwrite", "fflush", "fsync", "chmod"}), "fwrite fflush fsync chmod");
    EXPECT_EQ(result, 4);
}

TEST_F(CopyFile, OfADirectoryIsAnEmptyFile) {
    make_directories("/tmp/source/sub");
    EXPECT_EQ(copy(), 0);
    EXPECT_EQ(size_of("/tmp/copy"), 0);
}

TEST_F(CopyFile, ClosesBothFilesInEveryCase) {
    write_file("/tmp/source", "text");
    for (int step = 0; step < 5; step++) {
        fault::reset();
        if (step == 1) {
            fault::fail("fopen64", 1, EACCES);
        } else if (step == 2) {
            fault::fail("fwrite", 1, ENOSPC);
        } else if (step == 3) {
            fault::fail("chmod", 1, EPERM);
        } else if (step == 4) {
            fault::fail("fflush", 1, ENOSPC);
        }
        const int before = open_descriptors();
        EXPECT_EQ(copy() == -1, step != 0);
        EXPECT_EQ(open_descriptors(), before);
        EXPECT_EQ(fault::calls("fclose"), step == 1 ? 1 : 2);
    }
}

TEST_F(CopyFile, RefusesNull) {
    write_file("/tmp/source", "text");
    EXPECT_EQ(cmpnt_copy_file_by_write(nullptr, "/tmp/copy"), -1);
    EXPECT_TRUE(says("path is null.\n"));
    EXPECT_EQ(cmpnt_copy_file_by_write("/tmp/source", nullptr), -1);
    EXPECT_EQ(traced("error", "cmpnt_copy_file_by_write", "path is null.\n"), 2);
}

TEST_F(CopyFile, OfAMissingSourceMakesNothing) {
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(says("file(/tmp/source) is no exist.\n"));
    EXPECT_FALSE(exists("/tmp/copy"));
}

TEST_F(CopyFile, ReportsASourceThatDoesNotOpen) {
    ASSERT_EQ(symlink("/tmp/nowhere", "/tmp/source"), 0);
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(
        says("fopen fail, src(/tmp/source), error(" + std::string(strerror(ENOENT)) + ")\n"));
    EXPECT_FALSE(exists("/tmp/copy"));
}

TEST_F(CopyFile, ReportsADestinationThatDoesNotOpen) {
    write_file("/tmp/source", "text");
    make_directories("/tmp/copy");
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(
        says("fopen fail, dest(/tmp/copy), error(" + std::string(strerror(EISDIR)) + ")\n"));
}

TEST_F(CopyFile, StopsAtAFullDisk) {
    write_file("/tmp/source", std::string(3000, 'x'));
    umask(022);
    fault::fail("fwrite", 2, ENOSPC);
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(says("fwrite fail, error(" + std::string(strerror(ENOSPC)) + ")\n"));
    EXPECT_EQ(fault::calls("fsync"), 1);  // that of the trace
    EXPECT_EQ(fault::calls("chmod"), 0);
    EXPECT_EQ(mode_of("/tmp/copy"), 0644);
}

TEST_F(CopyFile, StopsAtADiskThatTurnsOutFullAtTheFlush) {
    write_file("/tmp/source", "text");
    umask(022);
    fault::fail("fflush", 1, ENOSPC);
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(says("fwrite fail, error(" + std::string(strerror(ENOSPC)) + ")\n"));
    EXPECT_EQ(fault::calls("fsync"), 1);  // that of the trace
    EXPECT_EQ(fault::calls("chmod"), 0);
    EXPECT_EQ(mode_of("/tmp/copy"), 0644);
}

TEST_F(CopyFile, SucceedsWhenTheSyncFails) {
    write_file("/tmp/source", "text");
    fault::fail("fsync", 1, EIO);
    EXPECT_EQ(copy(), 4);
    EXPECT_EQ(read_file("/tmp/copy"), "text");
    EXPECT_EQ(mode_of("/tmp/copy"), 0777);
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(CopyFile, FailsWhenTheModeCannotBeSet) {
    write_file("/tmp/source", "text");
    fault::fail("chmod", 1, EPERM);
    EXPECT_EQ(copy(), -1);
    EXPECT_TRUE(says("chmod fail, error(" + std::string(strerror(EPERM)) + ")\n"));
    EXPECT_EQ(read_file("/tmp/copy"), "text");
}
