#include "tests/support/device_test.hh"

class SystemCommand : public DeviceTest {};

TEST_F(SystemCommand, RunsCommandAndArguments) {
    EXPECT_EQ(cmpnt_system_cmd_run("echo one >", "/tmp/out"), 0);
    EXPECT_EQ(read_file("/tmp/out"), "one\n");
}

TEST_F(SystemCommand, EscapesParentheses) {
    EXPECT_EQ(cmpnt_system_cmd_run("touch", "/tmp/name(1)"), 0);
    EXPECT_TRUE(exists("/tmp/name(1)"));
}

TEST_F(SystemCommand, FailsWithTheCommand) {
    EXPECT_EQ(cmpnt_system_cmd_run("false", "(x)"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_system_cmd_run",
                       "cmpnt_popen_cmd_run fail, cmd(false), str((x)).\n"));
}

TEST_F(SystemCommand, RefusesNull) {
    EXPECT_EQ(cmpnt_system_cmd_run(nullptr, "x"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_system_cmd_run",
                       "cmpnt_popen_cmd_run fail, cmd((null)), str(x).\n"));
    EXPECT_EQ(cmpnt_system_cmd_run("true", nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_system_cmd_run",
                       "cmpnt_popen_cmd_run fail, cmd(true), str((null)).\n"));
}
