#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr int held_elsewhere = 0;
constexpr int failed = 255;  // -1, as a process hands it back
constexpr int taken = 1;

// What a process answers when it asks for the lock.
int answer(const char *name) {
    const int32_t lock = cmpnt_process_is_running(name);
    return lock > 0 ? taken : lock == 0 ? held_elsewhere : failed;
}

int answer_of_another_process(const char *name) {
    return in_child([name] { return answer(name); });
}

}  // namespace

class ProcessLock : public DeviceTest {};

TEST_F(ProcessLock, IsADescriptorThatKeepsOthersOut) {
    umask(0);
    const int32_t lock = cmpnt_process_is_running("/.lock");
    ASSERT_GT(lock, 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_process_is_running",
                       "process lock success, lock_fd(" + std::to_string(lock) + "), pid(" +
                           std::to_string(getpid()) + ")\n"));
    EXPECT_EQ(size_of("/tmp/.lock"), 0);
    EXPECT_EQ(mode_of("/tmp/.lock"), 0777);
    EXPECT_EQ(answer_of_another_process("/.lock"), held_elsewhere);
    EXPECT_EQ(answer_of_another_process("/.other"), taken);
    close(lock);
    EXPECT_EQ(answer_of_another_process("/.lock"), taken);
}

TEST_F(ProcessLock, EndsWithItsProcess) {
    EXPECT_EQ(answer_of_another_process("/.lock"), taken);
    EXPECT_EQ(answer("/.lock"), taken);
    EXPECT_EQ(cmpnt_close(cmpnt_process_is_running("/.lock")), 0);
}

TEST_F(ProcessLock, StaysWithAProcessThatExecutesAnotherProgram) {
    const int32_t lock = cmpnt_process_is_running("/.lock");
    EXPECT_EQ(fcntl(lock, F_GETFD) & FD_CLOEXEC, 0);
    close(lock);
}

TEST_F(ProcessLock, KeepsWhatIsInTheFile) {
    write_file("/tmp/.lock", "text");
    const int32_t lock = cmpnt_process_is_running("/.lock");
    EXPECT_EQ(read_file("/tmp/.lock"), "text");
    close(lock);
}

TEST_F(ProcessLock, MakesItsDirectory) {
    setenv("TMPDIR", "/data/run", 1);
    const int32_t lock = cmpnt_process_is_running("/locks/upgrade");
    EXPECT_GT(lock, 0);
    EXPECT_TRUE(exists("/data/run/locks/upgrade"));
    close(lock);
}

TEST_F(ProcessLock, NamesTheCallersOwnProcessUpToABlankWhenItIsHeld) {
    if (!exists("/proc/self/status")) {
        GTEST_SKIP() << "no /proc";
    }
    const int32_t lock = cmpnt_process_is_running("/.lock");
    const int result = in_child([] {
        prctl(PR_SET_NAME, "second one");
        return answer("/.lock") == held_elsewhere &&
                       logged("CMPNT_TRACE", "cmpnt_process_is_running",
                              "the process(second) is already running.\n")
                   ? 0
                   : 1;
    });
    EXPECT_EQ(result, 0);
    close(lock);
}

TEST_F(ProcessLock, NamesNothingWhenTheProcessCannotReadItsName) {
    fault::fail("fcntl64", 1, EAGAIN);
    fault::fail("fopen64", 1, ENOENT);
    EXPECT_EQ(cmpnt_process_is_running("/.lock"), 0);
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "cmpnt_process_is_running", "the process() is already running.\n"));
}

TEST_F(ProcessLock, IsHeldElsewhereForBothErrorsThatMeanSo) {
    const int before = open_descriptors();
    for (int error : {EAGAIN, EACCES}) {
        fault::fail("fcntl64", 1, error);
        EXPECT_EQ(cmpnt_process_is_running("/.lock"), 0) << error;
    }
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ProcessLock, FailsForAnyOtherLockError) {
    const int before = open_descriptors();
    fault::fail("fcntl64", 1, ENOLCK);
    EXPECT_EQ(cmpnt_process_is_running("/.lock"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running",
                       "lock file (/tmp/.lock) fail, err: No locks available"));
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ProcessLock, FailsWhenTheFileCannotBeOpened) {
    make_directories("/tmp/.lock");
    EXPECT_EQ(cmpnt_process_is_running("/.lock"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running",
                       "open file(/tmp/.lock) fail, err: Is a directory.\n"));
}

TEST_F(ProcessLock, RefusesNullAndLongNames) {
    EXPECT_EQ(cmpnt_process_is_running(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running", "param is null.\n"));

    const std::string name = "/" + std::string(255, 'n');  // with "/tmp" 260 characters
    EXPECT_EQ(cmpnt_process_is_running(name.c_str()), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running",
                       "path(/tmp) and lock(" + name + ") len >= 260\n"));
    const int32_t lock = cmpnt_process_is_running(name.substr(0, 255).c_str());
    EXPECT_GT(lock, 0) << "259 characters";
    close(lock);
}

TEST_F(ProcessLock, RefusesATemporaryDirectoryThatIsNoPath) {
    setenv("TMPDIR", std::string(260, 'd').c_str(), 1);
    EXPECT_EQ(cmpnt_process_is_running("/.lock"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running", "cmpnt_get_tmpdir fail.\n"));
    setenv("TMPDIR", "", 1);
    EXPECT_EQ(cmpnt_process_is_running(""), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_process_is_running", "cmpnt_memcpy fail.\n"));
}

TEST_F(ProcessLock, IsNeverAStandardStream) {
    for (int closed : {0, 1, 2}) {
        const int result = in_child([closed] {
            close(closed);
            const int32_t lock = cmpnt_process_is_running("/.lock");
            return lock > 2 && fcntl(closed, F_GETFD) == -1 &&
                           answer_of_another_process("/.lock") == held_elsewhere
                       ? 0
                       : 1;
        });
        EXPECT_EQ(result, 0) << closed;
    }
}

TEST_F(ProcessLock, SurvivesACommandRunWithClosedStandardStreams) {
    const int result = in_child([] {
        g_cmpnt_dbg_level = 0;
        close(1);
        close(2);
        const int32_t lock = cmpnt_process_is_running("/.lock");
        cmpnt_popen_cmd_run("true", "");
        return lock > 2 && answer_of_another_process("/.lock") == held_elsewhere ? 0 : 1;
    });
    EXPECT_EQ(result, 0);
}

TEST_F(ProcessLock, FailsWhenThereIsNoOtherDescriptor) {
    const int result = in_child([] {
        close(0);
        fault::fail("fcntl64", 1, EMFILE);
        return cmpnt_process_is_running("/.lock") == -1 && fcntl(0, F_GETFD) == -1 &&
                       logged("CMPNT_ERROR", "cmpnt_process_is_running",
                              "open file(/tmp/.lock) fail, err: Too many open files.\n")
                   ? 0
                   : 1;
    });
    EXPECT_EQ(result, 0);
}
