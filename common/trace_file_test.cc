#include <fcntl.h>
#include <pthread.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr long long rotation_size = 0x40000;

int32_t write_line(const char *message) {
    return cmpnt_write_debug_log("error", "some_function", 42, "%s", message);
}

// How many threads ask for the time at once, and the most that ever did.
int at_the_clock = 0;
int most_at_the_clock = 0;

void linger_at_the_clock() {
    const int now = __atomic_add_fetch(&at_the_clock, 1, __ATOMIC_SEQ_CST);
    if (now > __atomic_load_n(&most_at_the_clock, __ATOMIC_SEQ_CST)) {
        __atomic_store_n(&most_at_the_clock, now, __ATOMIC_SEQ_CST);
    }
    usleep(100);
    __atomic_sub_fetch(&at_the_clock, 1, __ATOMIC_SEQ_CST);
}

}  // namespace

class TraceFile : public DeviceTest {
protected:
    std::string backup = trace_path() + "_bak";
};

TEST_F(TraceFile, HasTimeKindFunctionLineAndTheMessageAsItIs) {
    setenv("TZ", "UTC", 1);
    tzset();
    platform.clock = 1709288102;
    EXPECT_EQ(cmpnt_write_debug_log("error", "cmpnt_malloc", 7, "input param is error.\n"), 0);
    const std::string text = read_file(trace_path());
    EXPECT_EQ(text.substr(0, 21), "[2024-03-01 10:15:02-");
    EXPECT_EQ(text.substr(27), ", error, cmpnt_malloc-7]input param is error.\n");
}

TEST_F(TraceFile, IsCreatedWithItsDirectoryOnDemand) {
    umask(0);
    write_line("first\n");
    EXPECT_EQ(mode_of(trace_path()), 0755);
    EXPECT_EQ(traced("error", "some_function", "first\n"), 1);
    remove_tree("/var/cache");
    write_line("second\n");
    EXPECT_EQ(traced("error", "some_function", "second\n"), 1);
}

TEST_F(TraceFile, AddsNoNewline) {
    write_line("one");
    write_line("two\n");
    const std::vector<TraceLine> lines = trace_lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].message, "one");
    EXPECT_EQ(lines[1].message, "two\n");
}

TEST_F(TraceFile, CutsALineAt1023Bytes) {
    write_line((std::string(2000, 'x') + "\n").c_str());
    const std::string text = read_file(trace_path());
    EXPECT_EQ(text.size(), 1023u);
    EXPECT_EQ(text.back(), 'x');
}

TEST_F(TraceFile, SurvivesAnOverlongFunctionName) {
    const std::string name(3000, 'f');
    cmpnt_write_debug_log("error", name.c_str(), 1, "message\n");
    EXPECT_EQ(read_file(trace_path()).size(), 1023u);
}

TEST_F(TraceFile, TakesTheExtremesOfALineNumber) {
    cmpnt_write_debug_log("error", "f", INT32_MIN, "x\n");
    EXPECT_NE(read_file(trace_path()).find(", f--2147483648]x\n"), std::string::npos);
    cmpnt_write_debug_log("error", "f", INT32_MAX, "x\n");
    EXPECT_NE(read_file(trace_path()).find(", f-2147483647]x\n"), std::string::npos);
    cmpnt_write_debug_log("error", "f", 0, "x\n");
    EXPECT_NE(read_file(trace_path()).find(", f-0]x\n"), std::string::npos);
}

TEST_F(TraceFile, FormatsEveryKindOfMessage) {
    const char *volatile null_text = nullptr;
    errno = ENOSPC;
    cmpnt_write_debug_log("error", "f", 1, "plain\n");
    cmpnt_write_debug_log("error", "f", 1, "%s,%d;%s%d\n", "one", INT32_MIN, "", 0);
    cmpnt_write_debug_log("error", "f", 1, "a(%s) b(%5d) c(%s) d(%d)\n", "x", 7, "y", -7);
    cmpnt_write_debug_log("error", "f", 1, "%u%% of %lu: %-4s|%c\n", 50u, 4000000000ul, "ab", 'z');
    cmpnt_write_debug_log("error", "f", 1, "%s %m\n", null_text);
    const std::string start = "error f: ";
    EXPECT_EQ(
        trace_messages(),
        (std::vector<std::string>{
            start + "plain\n", start + "one,-2147483648;0\n", start + "a(x) b(    7) c(y) d(-7)\n",
            start + "50% of 4000000000: ab  |z\n", start + "(null) " + strerror(ENOSPC) + "\n"}));
}

TEST_F(TraceFile, CutsAMessageWhereverItsLengthComesFrom) {
    const std::string text(2000, 'x');
    cmpnt_write_debug_log("error", "f", 1, "%s%s\n", text.c_str(), "more");
    EXPECT_EQ(read_file(trace_path()).size(), 1023u);
    cmpnt_write_debug_log("error", "f", 1, "%s%5d\n", text.c_str(), 1);
    EXPECT_EQ(read_file(trace_path()).size(), 2046u);
    cmpnt_write_debug_log("error", "f", 1, "%5d%s%d\n", 1, text.c_str(), 1);
    EXPECT_EQ(read_file(trace_path()).size(), 3069u);
}

TEST_F(TraceFile, HasAnEmptyTimeWhenTheClockFails) {
    platform.clock = -1;
    write_line("x\n");
    EXPECT_EQ(read_file(trace_path()), "[, error, some_function-42]x\n");
}

TEST_F(TraceFile, IsRotatedAtTheLimitAndNotBelow) {
    write_file(trace_path(), std::string(rotation_size - 1, 'a'));
    write_line("appended\n");
    EXPECT_FALSE(exists(backup));
    EXPECT_GT(size_of(trace_path()), rotation_size);

    write_file(trace_path(), std::string(rotation_size, 'b'));
    write_line("fresh\n");
    EXPECT_EQ(size_of(backup), rotation_size);
    EXPECT_EQ(trace_messages(), (std::vector<std::string>{"error some_function: fresh\n"}));
}

TEST_F(TraceFile, ReplacesAnOlderBackup) {
    write_file(backup, "old");
    write_file(trace_path(), std::string(rotation_size, 'c'));
    write_line("fresh\n");
    EXPECT_EQ(size_of(backup), rotation_size);
}

TEST_F(TraceFile, DropsTheLineAndKeepsTheFileWhenTheRotationFails) {
    write_file(trace_path(), std::string(rotation_size, 'd'));
    make_directories(backup + "/in/the/way");
    write_line("lost\n");
    EXPECT_EQ(size_of(trace_path()), rotation_size);
}

TEST_F(TraceFile, DropsTheLineBehindADanglingLink) {
    make_directories("/var/cache/opkg/debug");
    ASSERT_EQ(symlink("/tmp/nowhere", trace_path().c_str()), 0);
    write_line("lost\n");
    EXPECT_FALSE(exists("/tmp/nowhere"));
}

TEST_F(TraceFile, DropsTheLineWhenTheDirectoryCannotBeMade) {
    write_file("/var/cache/opkg", "a file in the way");
    // cmpnt_mkdir reports its own failure from inside the writer: to the system log alone.
    EXPECT_EQ(cmpnt_write_debug_log("error", "some_function", 1, "lost\n"), 0);
    ASSERT_EQ(platform.syslog.size(), 1u);
    EXPECT_NE(platform.syslog[0].text.find("mkdir error, dir(/var/cache/opkg/debug), errno("),
              std::string::npos);
    // And the writer works again once the way is free.
    unlink("/var/cache/opkg");
    write_line("kept\n");
    EXPECT_EQ(traced("error", "some_function", "kept\n"), 1);
}

TEST_F(TraceFile, DropsAMessageOfThePlatformInsideTheWriter) {
    write_file("/var/cache/opkg", "a file in the way");
    platform.on_syslog = [] { cmpnt_write_debug_log("error", "nested", 1, "nested\n"); };
    EXPECT_EQ(cmpnt_write_debug_log("error", "some_function", 1, "lost\n"), 0);
}

TEST_F(TraceFile, DropsTheLineForAPipeThatNobodyReads) {
    make_directories("/var/cache/opkg/debug");
    ASSERT_EQ(mkfifo(trace_path().c_str(), 0600), 0);
    const int before = open_descriptors();
    const Deadline deadline;
    EXPECT_EQ(write_line("lost\n"), 0);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_FALSE(exists(backup));
}

TEST_F(TraceFile, LosesALineToAFailedWriteAlone) {
    const struct {
        const char *function;
        int error;
        bool kept;
    } cases[] = {{"write", ENOSPC, false}, {"fsync", EIO, true}, {"close", EIO, true}};
    for (const auto &c : cases) {
        forget_log();
        EXPECT_EQ(write_line("before\n"), 0);
        fault::fail(c.function, 1, c.error);
        EXPECT_EQ(write_line("struck\n"), 0) << c.function;
        EXPECT_EQ(write_line("after\n"), 0) << c.function;
        EXPECT_EQ(traced("error", "some_function", "struck\n"), c.kept ? 1 : 0) << c.function;
        ASSERT_EQ(trace_lines().size(), c.kept ? 3u : 2u) << c.function;
        EXPECT_EQ(trace_lines().back().message, "after\n") << c.function;
    }
    EXPECT_TRUE(platform.syslog.empty());
}

TEST_F(TraceFile, TellsTheCallersErrnoAndNotTheClocks) {
    errno = ENOSPC;
    cmpnt_write_debug_log("error", "f", 1, "%m\n");
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(trace_lines().at(0).message, std::string(strerror(ENOSPC)) + "\n");
}

TEST_F(TraceFile, KeepsErrno) {
    errno = EMLINK;
    write_line("x\n");
    EXPECT_EQ(errno, EMLINK);
}

TEST_F(TraceFile, SyncsEveryLine) {
    write_line("one\n");
    write_line("two\n");
    EXPECT_EQ(fault::order_of({"write", "fsync", "close"}), "write fsync close write fsync close");
}

TEST_F(TraceFile, LeavesNoDescriptorOpen) {
    const int before = open_descriptors();
    write_line("one\n");
    write_line("two\n");
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(TraceFile, IgnoresANullFormat) {
    int32_t (*write)(const char *, const char *, int32_t, const char *, ...) =
        cmpnt_write_debug_log;
    EXPECT_EQ(write("error", "f", 1, nullptr), 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TraceFile, IsOneFileAThreadName) {
    std::thread worker([] {
        prctl(PR_SET_NAME, "worker");
        write_line("from the worker\n");
    });
    worker.join();
    write_line("from the main thread\n");
    EXPECT_NE(read_file("/var/cache/opkg/debug/.worker.log").find("]from the worker\n"),
              std::string::npos);
    EXPECT_EQ(traced("error", "some_function", "from the main thread\n"), 1);
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(TraceFile, KeepsLinesOfManyThreadsWholeAcrossOneRotation) {
    const std::string path = "/var/cache/opkg/debug/.same.log";
    const std::string filler(rotation_size - 2000, '-');
    write_file(path, filler);
    most_at_the_clock = 0;
    platform.on_clock = linger_at_the_clock;
    auto work = [] {
        prctl(PR_SET_NAME, "same");
        for (int i = 0; i < 50; i++) {
            write_line("0123456789012345678901234567890123456789\n");
        }
    };
    std::thread first(work), second(work), third(work);
    first.join();
    second.join();
    third.join();
    EXPECT_EQ(most_at_the_clock, 1);

    ASSERT_EQ(names_in("/var/cache/opkg/debug"),
              (std::vector<std::string>{".same.log", ".same.log_bak"}));
    const std::string full = read_file(path + "_bak");
    EXPECT_GE(full.size(), static_cast<size_t>(rotation_size));
    ASSERT_EQ(full.compare(0, filler.size(), filler), 0) << "rotated more than once";
    write_file(trace_path(), full.substr(filler.size()) + read_file(path));
    EXPECT_EQ(traced("error", "some_function", "0123456789012345678901234567890123456789\n"), 150);
    EXPECT_EQ(trace_lines().size(), 150u);
}

TEST_F(TraceFile, BackupAppendsBakToTheName) {
    write_file("/tmp/log", "text");
    EXPECT_EQ(cmpnt_log_file_backup("/tmp/log"), 0);
    EXPECT_EQ(read_file("/tmp/log_bak"), "text");
    EXPECT_FALSE(exists("/tmp/log"));
}

TEST_F(TraceFile, BackupFailsQuietly) {
    EXPECT_EQ(cmpnt_log_file_backup("/tmp/missing"), -1);
    EXPECT_EQ(cmpnt_log_file_backup(nullptr), -1);
    EXPECT_EQ(cmpnt_log_file_backup(("/tmp/" + std::string(250, 'n')).c_str()), -1);
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_TRUE(platform.syslog.empty());
}

TEST_F(TraceFile, DeleteRemovesTheDaemonsFilesAlone) {
    for (const char *name : {".cmpnt_upgrade.log", ".cmpnt_upgrade.log_bak",
                             ".cmpnt_upgrade_opkg.log", ".other.log", "cmpnt_upgrade.log"}) {
        write_file(std::string("/var/cache/opkg/debug/") + name, "x");
    }
    EXPECT_EQ(cmpnt_debug_delete_log_file(), 0);
    EXPECT_TRUE(logged("SERVER_TRACE", "cmpnt_debug_delete_log_file",
                       "delete all log file /var/cache/opkg/debug/.cmpnt_upgrade*.\n"));
    unlink(trace_path().c_str());
    EXPECT_EQ(names_in("/var/cache/opkg/debug"),
              (std::vector<std::string>{".other.log", "cmpnt_upgrade.log"}));
}

TEST_F(TraceFile, DeleteLeavesTheDaemonsOwnFileWithThatOneLine) {
    prctl(PR_SET_NAME, "cmpnt_upgrade");
    write_line("before\n");
    EXPECT_EQ(cmpnt_debug_delete_log_file(), 0);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"trace cmpnt_debug_delete_log_file: delete all log file "
                                        "/var/cache/opkg/debug/.cmpnt_upgrade*.\n"}));
}
