#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/standard_streams.hh"

namespace {

constexpr char capture_path[] = "/var/cache/opkg/.opkg_redirect";

void put_text(int fd, const std::string &text) {
    ASSERT_EQ(write(fd, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

}  // namespace

class Redirect : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        g_cmpnt_dbg_level = 0;
    }
    void TearDown() override {
        DeviceTest::TearDown();
        streams.put_back();
    }

    StandardStreams streams;
    int32_t saved_stdout = 77;
    int32_t saved_stderr = 77;
};

TEST_F(Redirect, SendsBothStreamsToTheCaptureFileAndRestoreBringsThemBack) {
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
    EXPECT_GT(saved_stdout, 2);
    EXPECT_GT(saved_stderr, 2);
    put_text(1, "out\n");
    put_text(2, "err\n");
    put_text(1, "out again\n");
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(read_file(capture_path), "out\nerr\nout again\n") << "neither overwrites the other";
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Redirect, MakesTheCaptureFileForEveryoneAndAfreshEachTime) {
    umask(0);
    for (int i = 0; i < 2; i++) {
        const int32_t copy = cmpnt_std_redirect_to_file(1);
        EXPECT_EQ(read_file(capture_path), "");
        put_text(1, "text");
        EXPECT_EQ(cmpnt_revert_std(copy, 1), 0);
        EXPECT_EQ(mode_of(capture_path), 0777);
    }
    EXPECT_EQ(read_file(capture_path), "text");
}

TEST_F(Redirect, SplitsWhatTheHostPrintsWhereTheStreamsTurn) {
    write_file("/tmp/terminal", "");
    const int terminal = open("/tmp/terminal", O_WRONLY);
    ASSERT_EQ(dup2(terminal, 1), 1);
    close(terminal);
    printf("before ");
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
    printf("during");
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    printf("after");
    fflush(stdout);
    streams.put_back();
    EXPECT_EQ(read_file("/tmp/terminal"), "before after");
    EXPECT_EQ(read_file(capture_path), "during");
}

TEST_F(Redirect, DoesNothingAtAnyDebugLevel) {
    for (uint32_t level : {0x1u, 0x2u, 0x80000000u}) {
        g_cmpnt_dbg_level = level;
        saved_stdout = saved_stderr = 77;
        EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
        EXPECT_EQ(saved_stdout, -1);
        EXPECT_EQ(saved_stderr, -1);
        EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    }
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_FALSE(exists("/var/cache"));
}

TEST_F(Redirect, RestoreAtADebugLevelClosesNothing) {
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
    g_cmpnt_dbg_level = 1;
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    g_cmpnt_dbg_level = 0;
    EXPECT_FALSE(streams.are_in_place());
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(Redirect, RefusesNullQuietly) {
    EXPECT_EQ(cmpnt_install_log_redirect(nullptr, &saved_stderr), -1);
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, nullptr), -1);
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Redirect, StopsAtStandardOutput) {
    fault::fail("open64", 1, ENOSPC, 2);
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), -1);
    EXPECT_EQ(saved_stdout, -1);
    EXPECT_EQ(saved_stderr, -1);
    EXPECT_EQ(traced("error", "cmpnt_install_log_redirect", "std_redirect_to_file fail, fd(1).\n"),
              1);
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(Redirect, LeavesStandardOutputRedirectedWhenStandardErrorFails) {
    fault::fail("dup2", 2, EBUSY);
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), -1);
    EXPECT_GT(saved_stdout, 2);
    EXPECT_EQ(saved_stderr, -1);
    EXPECT_EQ(traced("error", "cmpnt_install_log_redirect", "std_redirect_to_file fail, fd(2).\n"),
              1);
    EXPECT_FALSE(streams.are_in_place());
    forget_log();
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"trace cmpnt_revert_std: param save_fd(-1) is error\n"}));
}

TEST_F(Redirect, OfOneDescriptorTellsWhyItFailsAndLeaksNothing) {
    g_cmpnt_dbg_level = 0xF;
    const std::string name = std::string("name(") + capture_path + ")";
    const struct {
        const char *function;
        int times;
        int error;
        std::string message;
    } cases[] = {
        {"open64", 2, ENOSPC, "open error, " + name + ", error(No space left on device)\n"},
        {"fcntl64", 1, EMFILE, "dup fail, " + name + ", error(Too many open files)\n"},
        {"dup2", 1, EBUSY, "dup2 fail, " + name + ", error(Device or resource busy)\n"},
    };
    const int before = open_descriptors();
    for (const auto &c : cases) {
        fault::fail(c.function, 1, c.error, c.times);
        EXPECT_EQ(cmpnt_std_redirect_to_file(1), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_std_redirect_to_file", c.message));
        fault::reset();
    }
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Redirect, OfADescriptorThatIsNotOpenFails) {
    g_cmpnt_dbg_level = 0xF;
    for (int32_t fd : {-1, 9999, INT32_MIN}) {
        forget_log();
        EXPECT_EQ(cmpnt_std_redirect_to_file(fd), -1) << fd;
        EXPECT_TRUE(logged(
            "CMPNT_ERROR", "cmpnt_std_redirect_to_file",
            std::string("dup fail, name(") + capture_path + "), error(Bad file descriptor)\n"));
    }
}

TEST_F(Redirect, FailsWhenTheDirectoryCannotBeMade) {
    write_file("/var/cache/opkg", "a file in the way");
    platform.syslog.clear();
    g_cmpnt_dbg_level = 0xF;
    EXPECT_EQ(cmpnt_std_redirect_to_file(1), -1);
    // No trace file either, so the system log alone has it.
    std::vector<std::string> formats;
    for (const SyslogCall &call : platform.syslog) {
        formats.push_back(call.format);
    }
    EXPECT_EQ(
        std::count(formats.begin(), formats.end(), "[%s:%d]open error, name(%s), error(%s)\n"), 1);
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(Redirect, RevertOfNothingSavedSucceeds) {
    g_cmpnt_dbg_level = 0xF;
    EXPECT_EQ(cmpnt_revert_std(-1, 1), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_revert_std", "param save_fd(-1) is error\n"));
    EXPECT_EQ(fault::calls("dup2"), 0);
}

TEST_F(Redirect, RevertClosesTheCopyEitherWay) {
    g_cmpnt_dbg_level = 0xF;
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_revert_std(dup(2), 2), 0);
    EXPECT_EQ(open_descriptors(), before);

    const int copy = dup(2);
    fault::fail("dup2", 1, EBUSY);
    EXPECT_EQ(cmpnt_revert_std(copy, 2), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_revert_std",
                       "dup2 fail, target_fd(2), save_fd(" + std::to_string(copy) +
                           "), error(Device or resource busy)\n"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Redirect, RestoreFailsForStandardErrorAlone) {
    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
    fault::fail("dup2", 1, EBUSY);
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), 0);
    EXPECT_EQ(traced("error", "cmpnt_install_log_restore", "cmpnt_revert_std fail, fd(1).\n"), 1);
    streams.put_back();

    EXPECT_EQ(cmpnt_install_log_redirect(&saved_stdout, &saved_stderr), 0);
    fault::fail("dup2", 2, EBUSY);
    EXPECT_EQ(cmpnt_install_log_restore(saved_stdout, saved_stderr), -1);
    EXPECT_EQ(traced("error", "cmpnt_install_log_restore", "cmpnt_revert_std fail, fd(2).\n"), 1);
}

// The first number that open() finds free is then that of a stream.
TEST_F(Redirect, WorksInAHostWithClosedStreams) {
    const std::vector<std::vector<int>> cases = {{1}, {2}, {1, 2}};
    for (const std::vector<int> &closed : cases) {
        const int result = in_child([&closed] {
            for (int fd : closed) {
                close(fd);
            }
            int32_t out = -1, err = -1;
            return cmpnt_install_log_redirect(&out, &err) == 0 && out > 2 && err > 2 &&
                           out != err && write(1, "o", 1) == 1 && write(2, "e", 1) == 1 &&
                           read_file(capture_path) == "oe"
                       ? 0
                       : 1;
        });
        EXPECT_EQ(result, 0) << testing::PrintToString(closed);
    }
}

TEST_F(Redirect, LetsCommandsWriteToAStreamThatWasClosed) {
    const struct {
        int closed;
        const char *command;
    } cases[] = {{1, "echo x"}, {2, "echo x >&2"}};
    for (const auto &c : cases) {
        const int result = in_child([&c] {
            close(c.closed);
            int32_t out = -1, err = -1;
            return cmpnt_install_log_redirect(&out, &err) == 0 && system(c.command) == 0 &&
                           read_file(capture_path) == "x\n"
                       ? 0
                       : 1;
        });
        EXPECT_EQ(result, 0) << c.closed;
    }
}

TEST_F(Redirect, SavesNoStreamUnderTheNumberOfAnother) {
    const int result = in_child([this] {
        close(0);
        close(2);
        // Nothing can be saved of a closed standard error, and this time no number falls to it.
        const int32_t failed = cmpnt_install_log_redirect(&saved_stdout, &saved_stderr);
        return failed == -1 && saved_stdout > 2 && saved_stderr == -1 ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(
        traced("error", "cmpnt_std_redirect_to_file",
               std::string("dup fail, name(") + capture_path + "), error(Bad file descriptor)\n"),
        1);
}

TEST_F(Redirect, RunsCommandsInAHostWithClosedStreams) {
    const int result = in_child([] {
        close(1);
        close(2);
        return cmpnt_popen_cmd_run("echo text >", "/tmp/out") == 0 ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(read_file("/tmp/out"), "text\n");
}
