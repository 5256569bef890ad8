#include <errno.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/command.hh"
#include "tests/support/device_test.hh"
#include "tests/support/standard_streams.hh"

namespace {

constexpr char capture_path[] = "/var/cache/opkg/.opkg_redirect";

using Runner = int32_t (*)(const char *command, const char *arguments);

struct NamedRunner {
    const char *name;
    Runner run;
};

constexpr NamedRunner runners[] = {
    {"cmpnt_popen_cmd_run", cmpnt_popen_cmd_run},
    {"cmpnt_popen_cmd_run_not_deal_brk", cmpnt_popen_cmd_run_not_deal_brk},
};

// Messages that end in whatever errno happens to be.
int traced_start(const std::string &function, const std::string &start) {
    int count = 0;
    for (const TraceLine &line : trace_lines()) {
        count += line.kind == "error" && line.function == function &&
                 line.message.compare(0, start.size(), start) == 0;
    }
    return count;
}

}  // namespace

class Command : public DeviceTest {
protected:
    void TearDown() override {
        DeviceTest::TearDown();
        streams.put_back();
    }

    StandardStreams streams;
};

TEST_F(Command, RunsTheCommandAndItsArgumentsAsOneLine) {
    for (const NamedRunner &runner : runners) {
        remove_tree("/tmp/out");
        EXPECT_EQ(runner.run("cat /dev/null; echo one", "two   'three  four' > /tmp/out"), 0);
        EXPECT_EQ(read_file("/tmp/out"), "one two three  four\n");
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Command, TakesEmptyArguments) {
    for (const NamedRunner &runner : runners) {
        EXPECT_EQ(runner.run("true", ""), 0);
        EXPECT_EQ(runner.run("", "true"), 0);
        EXPECT_EQ(runner.run("", ""), 0);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Command, EscapesParenthesesUnlessToldNotTo) {
    EXPECT_EQ(cmpnt_popen_cmd_run("touch", "/tmp/name(1).ipk"), 0);
    EXPECT_TRUE(exists("/tmp/name(1).ipk"));
    EXPECT_EQ(cmpnt_popen_cmd_run_not_deal_brk("touch", "\"/tmp/name (2).ipk\""), 0);
    EXPECT_TRUE(exists("/tmp/name (2).ipk"));
    EXPECT_EQ(cmpnt_popen_cmd_run_not_deal_brk("touch", "/tmp/name(3).ipk 2>/dev/null"), -1);
    EXPECT_FALSE(exists("/tmp/name(3).ipk"));
}

TEST_F(Command, HandsTheCommandItselfToTheShellAsItIs) {
    EXPECT_EQ(cmpnt_popen_cmd_run("(exit 0);", "true"), 0);
}

TEST_F(Command, FailsForEveryStatusButZeroAndTellsItAsItIs) {
    const struct {
        const char *script;
        const char *status;
    } cases[] = {{"'exit 1'", "256"}, {"'exit 255'", "65280"}, {"'kill -9 $$'", "9"}};
    for (const NamedRunner &runner : runners) {
        for (const auto &c : cases) {
            forget_log();
            const std::string arguments = std::string("-c ") + c.script;
            EXPECT_EQ(runner.run("exec sh", arguments.c_str()), -1);
            EXPECT_EQ(traced_start("cmpnt_popen_cmd",
                                   std::string("popen result is: ") + c.status + ", error: "),
                      1);
            EXPECT_TRUE(
                logged("CMPNT_ERROR", runner.name,
                       "cmpnt_popen_cmd fail, cmd(exec sh), str(" + arguments + "), ret(-1).\n"));
        }
    }
}

TEST_F(Command, SendsTheStatusToTheSystemLogToo) {
    EXPECT_EQ(cmpnt_popen_cmd_run("exit", "3"), -1);
    ASSERT_FALSE(platform.syslog.empty());
    EXPECT_EQ(platform.syslog[0].tag, "CMPNT_ERROR");
    EXPECT_EQ(platform.syslog[0].format, "[%s:%d]popen result is: %d, error: %s\n");
}

TEST_F(Command, FailsWhenThereIsNoSuchCommand) {
    EXPECT_EQ(cmpnt_popen_cmd_run("/no/such/command", "2>/dev/null"), -1);
    EXPECT_EQ(traced_start("cmpnt_popen_cmd", "popen result is: 32512, error: "), 1);
}

TEST_F(Command, ShowsTheArgumentsAsTheyWereGiven) {
    EXPECT_EQ(cmpnt_popen_cmd_run("false", "(1)"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_popen_cmd_run",
                       "cmpnt_popen_cmd fail, cmd(false), str((1)), ret(-1).\n"));
}

TEST_F(Command, RefusesNull) {
    for (const NamedRunner &runner : runners) {
        forget_log();
        EXPECT_EQ(runner.run(nullptr, "text"), -1);
        EXPECT_EQ(runner.run("true", nullptr), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", runner.name, "param is null.\n"));
        EXPECT_EQ(traced("error", runner.name, "param is null.\n"), 2);
    }
    EXPECT_EQ(cmpnt_popen_cmd(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_popen_cmd", "param is null\n"));
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(Command, RunsNothingWhenTheArgumentsCannotBeEscaped) {
    const std::string arguments = "/tmp/out " + std::string(261, '(');
    g_cmpnt_dbg_level = 0;
    EXPECT_EQ(cmpnt_popen_cmd_run("touch", arguments.c_str()), -1);
    EXPECT_EQ(traced("error", "cmpnt_popen_cmd_run",
                     "replace fail, cmd(touch), str(" + arguments + ")\n"),
              1);
    EXPECT_EQ(fault::calls("popen"), 0);
    EXPECT_EQ(fault::calls("dup2"), 0) << "nothing was redirected";
}

TEST_F(Command, LogsAFailedEscape) {
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_popen_cmd_run("true", "text"), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_popen_cmd_run", "replace fail, cmd(true), str(text)\n"));
}

TEST_F(Command, RunsNothingWithoutMemoryForTheLine) {
    int calloc_call = 2;  // behind the escape's
    for (const NamedRunner &runner : runners) {
        fault::fail("calloc", calloc_call--, ENOMEM);
        EXPECT_EQ(runner.run("true", "text"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", runner.name, "cmpnt_malloc fail.\n"));
    }
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(Command, RunsNothingWhenTheLineCannotBeMade) {
    g_cmpnt_dbg_level = 0;
    fault::fail("vsnprintf", 1, ENOMEM);
    EXPECT_EQ(cmpnt_popen_cmd_run_not_deal_brk("true", "text"), -1);
    EXPECT_EQ(traced("error", "cmpnt_popen_cmd_run_not_deal_brk", "cmpnt_snprintf fail\n"), 1);
    EXPECT_EQ(fault::calls("popen"), 0);
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(Command, SaysWhenTheLineCannotBeMade) {
    for (const NamedRunner &runner : runners) {
        fault::fail("vsnprintf", 1, ENOMEM);
        EXPECT_EQ(runner.run("true", "text"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", runner.name, "cmpnt_snprintf fail\n"));
    }
}

TEST_F(Command, TellsWhyThereIsNoPipe) {
    fault::fail("popen", 1, EAGAIN);
    EXPECT_EQ(cmpnt_popen_cmd_run("true", ""), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_popen_cmd",
                       "popen error: Resource temporarily unavailable/n"));
}

TEST_F(Command, FailsWhenTheStatusIsLost) {
    fault::fail("pclose", 1, ECHILD);
    EXPECT_EQ(cmpnt_popen_cmd_run("true", ""), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_popen_cmd",
                       "popen close file pointer error, error(No child processes)\n"));
}

TEST_F(Command, SendsStandardErrorToTheCaptureFileAndPutsTheStreamsBack) {
    g_cmpnt_dbg_level = 0;
    for (const NamedRunner &runner : runners) {
        EXPECT_EQ(runner.run("echo out; echo", "to stderr >&2"), 0);
        EXPECT_EQ(read_file(capture_path), "to stderr\n") << "a fresh one for each run";
        EXPECT_TRUE(streams.are_in_place());
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Command, PutsTheStreamsBackAfterAFailedCommand) {
    g_cmpnt_dbg_level = 0;
    EXPECT_EQ(cmpnt_popen_cmd_run("false", ""), -1);
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(Command, HandsItsCommandsNoCopyOfTheStreams) {
    if (!exists("/proc/self/fd")) {
        GTEST_SKIP() << "no /proc";
    }
    const auto descriptors_of_a_command = [] {
        EXPECT_EQ(cmpnt_popen_cmd_run("ls /proc/self/fd | wc -l >", "/tmp/out"), 0);
        return read_file("/tmp/out");
    };
    const std::string alone = descriptors_of_a_command();
    g_cmpnt_dbg_level = 0;
    EXPECT_EQ(descriptors_of_a_command(), alone);
}

TEST_F(Command, RunsNothingWhenTheStreamsCannotBeRedirected) {
    g_cmpnt_dbg_level = 0;
    make_directories(capture_path);
    for (const NamedRunner &runner : runners) {
        forget_log();
        EXPECT_EQ(runner.run("touch", "/tmp/out"), -1);
        EXPECT_EQ(trace_messages(),
                  (std::vector<std::string>{
                      std::string("error cmpnt_std_redirect_to_file: open error, name(") +
                          capture_path + "), error(Is a directory)\n",
                      "error cmpnt_install_log_redirect: std_redirect_to_file fail, fd(1).\n",
                      std::string("error ") + runner.name + ": cmpnt_install_log_redirect fail.\n",
                      "trace cmpnt_revert_std: param save_fd(-1) is error\n",
                      "trace cmpnt_revert_std: param save_fd(-1) is error\n",
                  }));
        EXPECT_FALSE(exists("/tmp/out"));
    }
}

TEST_F(Command, PutsStandardOutputBackWhenStandardErrorCannotBeRedirected) {
    g_cmpnt_dbg_level = 0;
    fault::fail("dup2", 2, EBUSY);
    EXPECT_EQ(cmpnt_popen_cmd_run("touch", "/tmp/out"), -1);
    EXPECT_TRUE(streams.are_in_place());
    EXPECT_FALSE(exists("/tmp/out"));
}

TEST_F(Command, SucceedsAlsoWhenTheStreamsCannotBePutBack) {
    g_cmpnt_dbg_level = 0;
    for (const NamedRunner &runner : runners) {
        fault::fail("dup2", 4, EBUSY);
        EXPECT_EQ(runner.run("true", ""), 0);
        EXPECT_EQ(traced("error", runner.name, "cmpnt_install_log_restore fail.\n"), 1);
        streams.put_back();
    }
}

TEST_F(Command, LeavesNoDescriptorOpenInAnyOutcome) {
    g_cmpnt_dbg_level = 0;
    const int before = open_descriptors();
    EXPECT_EQ(cmpnt_popen_cmd_run("true", ""), 0);
    EXPECT_EQ(cmpnt_popen_cmd_run("false", ""), -1);
    for (const char *function : {"popen", "pclose", "dup2", "open64", "vsnprintf"}) {
        fault::fail(function, 1, EMFILE, 2);
        EXPECT_EQ(cmpnt_popen_cmd_run("true", ""), -1) << function;
        fault::reset();
    }
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Command, WaitsForMuchOutput) {
    EXPECT_EQ(cmpnt_popen_cmd_run("head -c 300000", "/dev/zero; true"), 0);
    EXPECT_EQ(cmpnt_popen_cmd_run("seq", "20000"), 0);
    EXPECT_FALSE(exists("/var/cache/opkg/.cmd_redirect"));
    EXPECT_FALSE(exists(trace_path()));
}
