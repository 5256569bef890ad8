#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/command.hh"
#include "tests/support/device_test.hh"
#include "tests/support/standard_streams.hh"

namespace {

constexpr char dependents_file[] = "/var/cache/opkg/.cmd_redirect";
constexpr char install_log[] = "/var/cache/opkg/debug/.cmpnt_upgrade_opkg.log";
constexpr size_t size_limit = 0x40000;

}  // namespace

class CommandOutput : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        old_path = getenv("PATH");
        setenv("PATH", ("/opt/bin:" + old_path).c_str(), 1);
        be_package_manager("cat /tmp/output");
    }
    void TearDown() override {
        setenv("PATH", old_path.c_str(), 1);
        DeviceTest::TearDown();
        streams.put_back();
    }

    void be_package_manager(const std::string &script) {
        write_file("/opt/bin/opkg", "#!/bin/sh\n" + script + "\n");
        chmod("/opt/bin/opkg", 0755);
    }

    // Runs the package manager, which prints this.
    int32_t run(const std::string &output, const char *command = "opkg install",
                const char *arguments = "a.ipk") {
        write_file("/tmp/output", output);
        return cmpnt_popen_cmd_run(command, arguments);
    }

    int32_t keep(const std::string &line, const char *path) {
        char text[CMPNT_LINE_SIZE] = {};
        memcpy(text, line.data(), line.size());
        return cmpnt_write_stdout_file(text, path);
    }

    std::string old_path;
    StandardStreams streams;
};

TEST_F(CommandOutput, BelongsToTheFileOfTheCommandLine) {
    const struct {
        const char *line;
        const char *file;
    } cases[] = {
        {"opkg whatdepends", dependents_file},
        {"opkg whatdepends a", dependents_file},
        {"opkg whatdependsrec a", dependents_file},
        {"opkg whatdepend a", nullptr},
        {"opkg install", install_log},
        {"opkg install a.ipk", install_log},
        {"opkg installed", install_log},
        {"opkg  install a.ipk", nullptr},
        {" opkg install a.ipk", nullptr},
        {"/usr/bin/opkg install a.ipk", nullptr},
        {"OPKG install a.ipk", nullptr},
        {"opkg remove a", nullptr},
        {"opkg", nullptr},
        {"", nullptr},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(output_file_of(c.line), c.file) << c.line;
    }
}

TEST_F(CommandOutput, OfAnInstallationIsKeptInTheLog) {
    EXPECT_EQ(run("one\n\nthree\n"), 0);
    EXPECT_EQ(read_file(install_log), "one\n\nthree\n");
    EXPECT_EQ(run("four\n"), 0);
    EXPECT_EQ(read_file(install_log), "one\n\nthree\nfour\n");
    EXPECT_FALSE(exists(dependents_file));
}

TEST_F(CommandOutput, OfADependencyQueryIsKeptInItsFile) {
    EXPECT_EQ(run("a depends on b\n", "opkg whatdepends"), 0);
    EXPECT_EQ(read_file(dependents_file), "a depends on b\n");
    EXPECT_FALSE(exists(install_log));
}

TEST_F(CommandOutput, OfAnyOtherCommandIsThrownAway) {
    EXPECT_EQ(run("opkg install\nopkg whatdepends\n", "opkg remove"), 0);
    EXPECT_EQ(run("text\n", "/opt/bin/opkg install"), 0);
    EXPECT_FALSE(exists("/var/cache"));
}

TEST_F(CommandOutput, GoesByTheWholeLineWhereverTheCommandEnds) {
    EXPECT_EQ(run("text\n", "opkg", "install a.ipk"), 0);
    EXPECT_EQ(read_file(install_log), "text\n");
}

TEST_F(CommandOutput, IsKeptOfAFailedCommandToo) {
    be_package_manager("echo text; exit 1");
    EXPECT_EQ(run(""), -1);
    EXPECT_EQ(read_file(install_log), "text\n");
}

TEST_F(CommandOutput, IsTracedWithItsNewline) {
    EXPECT_EQ(run("one\n"), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_write_stdout_file", "popen cmd run result(one\n)\n"));
}

TEST_F(CommandOutput, LosesTheLastCharacterOfALineWithoutNewline) {
    EXPECT_EQ(run("one\ntwo"), 0);
    EXPECT_EQ(read_file(install_log), "one\ntw\n");
}

TEST_F(CommandOutput, OfALongLineIsKeptInPieces) {
    EXPECT_EQ(run(std::string(1023, 'a') + std::string(977, 'b') + "\n"), 0);
    EXPECT_EQ(read_file(install_log), std::string(1022, 'a') + "\n" + std::string(977, 'b') + "\n");
}

TEST_F(CommandOutput, EndsAtAZeroByteOfItsLine) {
    EXPECT_EQ(run(std::string("ab\0cd\nef\n", 9)), 0);
    EXPECT_EQ(read_file(install_log), "a\nef\n");
}

TEST_F(CommandOutput, MakesRoomInTheLogAtTheLimitAndNotBelow) {
    write_file(install_log, std::string(size_limit - 1, 'a'));
    EXPECT_EQ(keep("line\n", install_log), 0);
    EXPECT_EQ(size_of(install_log), static_cast<long long>(size_limit) - 1 + 5);

    write_file(install_log, std::string(size_limit, 'a'));
    EXPECT_EQ(keep("line\n", install_log), 0);
    EXPECT_EQ(read_file(install_log), "line\n");
}

TEST_F(CommandOutput, MakesRoomInTheLogBehindALink) {
    write_file("/data/log", std::string(size_limit, 'a'));
    make_directories("/var/cache/opkg/debug");
    ASSERT_EQ(symlink("/data/log", install_log), 0);
    EXPECT_EQ(keep("line\n", install_log), 0);
    EXPECT_EQ(read_file(install_log), "line\n");
    EXPECT_EQ(size_of("/data/log"), static_cast<long long>(size_limit));
}

TEST_F(CommandOutput, RemovesTheInstallLogWhenTheOtherFileIsFull) {
    write_file(dependents_file, std::string(size_limit, 'a'));
    write_file(install_log, "text\n");
    EXPECT_EQ(keep("line\n", dependents_file), 0);
    EXPECT_FALSE(exists(install_log));
    EXPECT_EQ(size_of(dependents_file), static_cast<long long>(size_limit) + 5);
}

TEST_F(CommandOutput, MakesRoomInTheMiddleOfARun) {
    g_cmpnt_dbg_level = 0;
    write_file(install_log, std::string(size_limit - 3, 'a'));
    EXPECT_EQ(run("one\ntwo\nthree\n"), 0);
    EXPECT_EQ(read_file(install_log), "two\nthree\n");
    EXPECT_TRUE(streams.are_in_place());
}

TEST_F(CommandOutput, KeepsAnEmptyTextAsAnEmptyLine) {
    EXPECT_EQ(keep("", dependents_file), 0);
    EXPECT_EQ(keep("\n", dependents_file), 0);
    EXPECT_EQ(read_file(dependents_file), "\n\n");
}

TEST_F(CommandOutput, IsReadOnWhenALineCannotBeKept) {
    make_directories(install_log);
    EXPECT_EQ(run("one\ntwo\n"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_write_stdout_file", "cmpnt_write_to_file fail.\n"));
    EXPECT_EQ(traced("error", "cmpnt_write_stdout_file", "cmpnt_write_to_file fail.\n"), 2);
    EXPECT_EQ(keep("line\n", install_log), -1);
}

TEST_F(CommandOutput, IsWholeAlsoWhenSignalsInterruptTheReading) {
    struct sigaction without_restart = {}, former;
    without_restart.sa_handler = [](int) {};
    sigaction(SIGUSR1, &without_restart, &former);
    const std::string interrupted =
        "for i in 0 1 2 3 4 5 6 7 8 9; do for j in 0 1 2 3 4 5 6 7 8 9; do printf $j; kill -USR1 " +
        std::to_string(getpid()) + "; done; done";
    std::string digits;
    for (int i = 0; i < 10; i++) {
        digits += "0123456789";
    }
    be_package_manager(interrupted + "; echo");
    EXPECT_EQ(cmpnt_popen_cmd_run("opkg install", "a.ipk"), 0);
    EXPECT_EQ(read_file(install_log), digits + "\n");

    remove_tree(install_log);
    // The end comes behind interruptions of a read that has nothing new to give.
    be_package_manager(interrupted + "; for i in 0 1 2 3 4; do /bin/true; kill -USR1 " +
                       std::to_string(getpid()) + "; done");
    EXPECT_EQ(cmpnt_popen_cmd_run("opkg install", "a.ipk"), 0);
    EXPECT_EQ(read_file(install_log), digits.substr(0, 99) + "\n");
    sigaction(SIGUSR1, &former, nullptr);
}
