#include "tests/support/device_test.hh"

TEST(CommandWord, NamesTheCommandsThatHaveAWord) {
    const struct {
        int32_t cmd;
        const char *word;
    } cases[] = {
        {2, "Add"},
        {3, "Activate"},
        {4, "Commit"},
        {5, "Deactivate"},
        {6, "Remove"},
        {7, "Clear"},
        {121, "Sync running"},
        {142, "Active"},
        {143, "Deactive"},
        {144, "Running"},
        {145, "Delete"},
        {146, "Install to running"},
        {150, "Sync add"},
        {151, "Sync active"},
        {157, "Autoload active"},
        {158, "Autoload running"},
        {174, "Path autoload"},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(cmpnt_convert_cmd_to_str(c.cmd), c.word) << c.cmd;
    }
}

TEST(CommandWord, IsUnknownForEveryOtherNumber) {
    for (int32_t cmd : {-1, 0, 1, 8, 120, 122, 141, 147, 152, 156, 159, 170, 171, 172, 173, 175}) {
        EXPECT_STREQ(cmpnt_convert_cmd_to_str(cmd), "Unknown") << cmd;
    }
}

TEST(CommandWord, IsPrintedForTheseNumbersAndNoOther) {
    const std::vector<int32_t> printed = {2,   3,   4,   5,   6,   7,   142, 143, 144,
                                          145, 146, 157, 158, 170, 172, 173, 174};
    std::vector<int32_t> answered;
    for (int32_t cmd = -300; cmd <= 300; cmd++) {
        if (cmpnt_cmd_is_need_printf(cmd) == 1) {
            answered.push_back(cmd);
        }
    }
    EXPECT_EQ(answered, printed);
}
