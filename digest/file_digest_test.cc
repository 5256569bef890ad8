#include <errno.h>
#include <fcntl.h>
#include <linux/capability.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/child.hh"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char path[] = "/data/target.so";
constexpr char of_nothing[] = "d41d8cd98f00b204e9800998ecf8427e";
constexpr char of_abc[] = "900150983cd24fb0d6963f7d28e17f72";

std::string content(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; i++) {
        bytes[i] = static_cast<char>(i * 31 % 251);
    }
    return bytes;
}

std::string pointer_text(const void *pointer) {
    char text[32];
    snprintf(text, sizeof(text), "%p", pointer);
    return text;
}

}  // namespace

class FileDigest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(digest, '#', sizeof(digest));
    }

    // The text, which has ended within its 33 bytes.
    std::string sum_of(const char *file) {
        EXPECT_EQ(calculate_file_md5sum(file, digest), 0);
        EXPECT_EQ(digest[32], '\0');
        EXPECT_EQ(digest[33], '#');
        return digest;
    }

    bool digest_is_untouched() const {
        return std::string(digest, sizeof(digest)) == std::string(sizeof(digest), '#');
    }

    char digest[40];
};

class FileCheck : public FileDigest {
protected:
    void SetUp() override {
        FileDigest::SetUp();
        write_file(path, "abc");
    }

    void expect_different(const std::string &expected) {
        forget_log();
        EXPECT_EQ(file_md5_check(expected.c_str(), path), -1) << expected;
        EXPECT_TRUE(logged("SERVER_ERROR", "file_md5_check",
                           std::string("path_name(") + path + ") md5 different, target_md5(" +
                               expected + "), cal_md5(" + of_abc + ").\n"));
    }
};

TEST_F(FileDigest, IsThatOfTheWholeFile) {
    const struct {
        size_t size;
        const char *sum;
        int reads;  // a full one calls for another
    } cases[] = {
        {0, of_nothing, 1},
        {1, "93b885adfe0da089cdf634904fd59f71", 1},
        {1023, "a47f90c3469ff61b56542221d6257516", 1},
        {1024, "419adacf69f4d5615907edbdf8e77c39", 2},
        {1025, "5f5e32e2633806c4c1d2fe48958fcd92", 2},
        {2047, "972783b0bf3bcbd1d328262595cee486", 2},
        {2048, "c1a207368540629648faa69b8f27f2fc", 3},
        {2049, "ae259ad08f9bbaba39dae7de92ac84c5", 3},
        {3000, "2d143d6143ab18f6f68e2db836bffc39", 3},
        {100000, "92a083e34ecbd4e61c081afc1278b091", 98},
    };
    for (const auto &[size, sum, reads] : cases) {
        write_file(path, content(size));
        fault::reset();
        EXPECT_EQ(sum_of(path), sum) << size;
        EXPECT_EQ(fault::calls("read"), reads) << size;
        EXPECT_EQ(fault::calls("close"), 1) << size;
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(FileDigest, FollowsLinks) {
    write_file(path, "abc");
    ASSERT_EQ(symlink(path, "/tmp/link"), 0);
    EXPECT_EQ(sum_of("/tmp/link"), of_abc);
}

TEST_F(FileDigest, IsThatOfNothingForADirectory) {
    EXPECT_EQ(sum_of("/data"), of_nothing);
    EXPECT_TRUE(logged("SERVER_ERROR", "calculate_file_md5sum",
                       "read /data fail, ret(-1), errno(" + std::to_string(EISDIR) + ").\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(FileDigest, IsThatOfWhatCameBeforeAFailedRead) {
    for (int error : {EIO, EINTR, EAGAIN}) {
        write_file(path, content(3000));
        fault::reset();
        forget_log();
        fault::fail("read", 2, error);
        EXPECT_EQ(sum_of(path), "419adacf69f4d5615907edbdf8e77c39");
        EXPECT_TRUE(logged("SERVER_ERROR", "calculate_file_md5sum",
                           std::string("read ") + path + " fail, ret(-1), errno(" +
                               std::to_string(error) + ").\n"));
        EXPECT_EQ(trace_messages().size(), 1u);
    }
}

TEST_F(FileDigest, EndsWithAReadThatBringsLess) {
    write_file(path, content(3000));
    fault::limit("read", 2, 1);
    EXPECT_EQ(sum_of(path), "5f5e32e2633806c4c1d2fe48958fcd92");
    EXPECT_EQ(fault::calls("read"), 2);
}

TEST_F(FileDigest, OfAPipeIsThatOfTheFirstPiece) {
    ASSERT_EQ(mkfifo("/tmp/pipe", 0600), 0);
    Child writer([](Child &self) {
        signal(SIGPIPE, SIG_IGN);
        const int fd = open("/tmp/pipe", O_WRONLY);
        const bool written = write(fd, "abc", 3) == 3;
        self.wait_for_word();  // the pipe has a writer until the digest is there
        return written && write(fd, "def", 3) < 0 && errno == EPIPE ? 0 : 1;
    });
    Deadline deadline;
    EXPECT_EQ(sum_of("/tmp/pipe"), of_abc);
    writer.tell();
    EXPECT_EQ(writer.wait(), 0) << "the reader has gone before the second piece";
}

TEST_F(FileDigest, ClosesTheFile) {
    write_file(path, "abc");
    const int before = open_descriptors();
    sum_of(path);
    fault::fail("read", 1, EIO);
    sum_of(path);
    sum_of("/data");
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(FileDigest, SurvivesAFailedClose) {
    write_file(path, "abc");
    fault::fail("close", 1, EIO);
    EXPECT_EQ(sum_of(path), of_abc);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_close",
                       "close fail, errno(5), strerror(Input/output error)\n"));
}

TEST_F(FileDigest, FailsForAFileThatCannotBeOpened) {
    const std::string long_name(300, 'x');
    for (const std::string &name : {std::string("/data/missing"), std::string(), long_name,
                                    std::string("/data/%s%n"), std::string("/data/f/")}) {
        forget_log();
        EXPECT_EQ(calculate_file_md5sum(name.c_str(), digest), -1);
        EXPECT_TRUE(logged("SERVER_ERROR", "calculate_file_md5sum", "open " + name + " fail\n"));
    }
    EXPECT_TRUE(digest_is_untouched());
}

TEST_F(FileDigest, RefusesNull) {
    write_file(path, "abc");
    EXPECT_EQ(calculate_file_md5sum(nullptr, digest), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "calculate_file_md5sum", "param is null.\n"));
    forget_log();
    EXPECT_EQ(calculate_file_md5sum(path, nullptr), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "calculate_file_md5sum", "param is null.\n"));
    EXPECT_TRUE(digest_is_untouched());
    EXPECT_EQ(fault::calls("read"), 0);
}

TEST_F(FileCheck, PassesWithTheFilesDigest) {
    EXPECT_EQ(file_md5_check(of_abc, path), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(FileCheck, TakesTheDigestToTheLetterOnly) {
    const std::string sum = of_abc;
    expect_different("900150983CD24FB0D6963F7D28E17F72");
    expect_different(sum + " ");
    expect_different(" " + sum);
    expect_different(sum.substr(0, 31));
    expect_different(sum.substr(0, 31) + "3");
    expect_different(sum + sum);
    expect_different("");
    expect_different("%s%n");
}

TEST_F(FileCheck, FailsWithANewlineBehindTheDigest) {
    EXPECT_EQ(file_md5_check((std::string(of_abc) + "\n").c_str(), path), -1);
}

TEST_F(FileCheck, SeesEveryChangedByte) {
    write_file(path, content(2049));
    EXPECT_EQ(file_md5_check("ae259ad08f9bbaba39dae7de92ac84c5", path), 0);
    for (size_t at : {0u, 1023u, 1024u, 2048u}) {
        std::string changed = content(2049);
        changed[at]++;
        write_file(path, changed);
        EXPECT_EQ(file_md5_check("ae259ad08f9bbaba39dae7de92ac84c5", path), -1) << at;
    }
}

TEST_F(FileCheck, TakesADirectoryForAnEmptyFile) {
    EXPECT_EQ(file_md5_check(of_nothing, "/data"), 0);
    EXPECT_EQ(file_md5_check(of_abc, "/data"), -1);
}

TEST_F(FileCheck, FailsForAMissingFile) {
    ASSERT_EQ(symlink("/data/nowhere", "/data/dangling"), 0);
    for (const char *missing : {"/data/missing", "/data/dangling", "", "/data/target.so/x"}) {
        forget_log();
        EXPECT_EQ(file_md5_check(of_abc, missing), -1);
        EXPECT_TRUE(logged("SERVER_ERROR", "file_md5_check",
                           std::string("the file(") + missing + ") not exist.\n"));
        EXPECT_EQ(trace_messages().size(), 1u) << missing;
    }
}

TEST_F(FileCheck, FailsForAFileThatCannotBeOpened) {
    fault::fail("open64", 1, EACCES);
    EXPECT_EQ(file_md5_check(of_abc, path), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "file_md5_check",
                       std::string("calculate md5sum ") + path + " fail.\n"));
    EXPECT_EQ(trace_messages(),
              std::vector<std::string>(
                  {std::string("error calculate_file_md5sum: open ") + path + " fail\n",
                   std::string("error file_md5_check: calculate md5sum ") + path + " fail.\n"}));
}

// Root too is refused, once it has no capability left.
TEST_F(FileCheck, FindsAFileThatMayNotBeReadAndCannotOpenIt) {
    ASSERT_EQ(chmod(path, 0), 0);
    Child child([](Child &) {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
        if (syscall(SYS_capset, &header, none) != 0) {
            return 1;
        }
        if (file_md5_check(of_abc, path) != -1) {
            return 2;
        }
        return logged("SERVER_ERROR", "file_md5_check",
                      std::string("calculate md5sum ") + path + " fail.\n")
                   ? 0
                   : 3;
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(FileCheck, RefusesNull) {
    EXPECT_EQ(file_md5_check(nullptr, path), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "file_md5_check",
                       "param err, target_md5=" + pointer_text(nullptr) +
                           ", path_name=" + pointer_text(path) + " .\n"));
    forget_log();
    EXPECT_EQ(file_md5_check(of_abc, nullptr), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "file_md5_check",
                       "param err, target_md5=" + pointer_text(of_abc) +
                           ", path_name=" + pointer_text(nullptr) + " .\n"));
}
