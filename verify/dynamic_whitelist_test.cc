#include "verify/dynamic_whitelist.hh"

#include <errno.h>
#include <unistd.h>

#include <random>

#include "tests/support/device_test.hh"
#include "verify/verify_paths.hh"

namespace {

constexpr char reader[] = "file_exist_in_dynamic_whitelist";
const std::string own = "cmpnt_upgrade_c";
const std::string format_message = "dynamic whitelist format err.\n";

void write_list(const std::string &content) { write_file(dynamic_whitelist_path, content); }

std::string open_message(int error) {
    return std::string("open(") + dynamic_whitelist_path + ") failed, reason: " + strerror(error) +
           "\n";
}

}  // namespace

// Asked once by the function, and by an object that is asked again and again.
class DynamicWhitelistTest : public DeviceTest {
protected:
    void expect(const std::string &path, int any_client, int own_entry) {
        EXPECT_EQ(file_exist_in_dynamic_whitelist(path.c_str(), 0), any_client) << path;
        EXPECT_EQ(file_exist_in_dynamic_whitelist(path.c_str(), 1), own_entry) << path;
        set_written_long_ago(dynamic_whitelist_path);
        DynamicWhitelist whitelist;
        for (int i = 0; i < 3; i++) {
            EXPECT_EQ(whitelist.has(path.c_str(), whitelist_any_client), any_client == 1) << path;
            EXPECT_EQ(whitelist.has(path.c_str(), whitelist_own_entry), own_entry == 1) << path;
        }
    }
};

TEST_F(DynamicWhitelistTest, TellsTheClientsApart) {
    write_list("/bin/a," + own + "\n/bin/b,other\n/bin/c,other\n/bin/c," + own + "\n");
    expect("/bin/a", 1, 1);
    expect("/bin/b", 1, 0);
    expect("/bin/c", 1, 1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DynamicWhitelistTest, ComparesWholePathsAndClients) {
    write_list("/bin/a," + own + "2\n/bin/b,cmpnt_upgrade_\n/bin/cc," + own + "\n");
    expect("/bin/a", 1, 0);
    expect("/bin/b", 1, 0);
    for (const char *path : {"/bin/c", "/bin/ccc", "", "/bin/A", "/bin/cc,", "/bin/a,cmpnt"}) {
        expect(path, 0, 0);
    }
}

TEST_F(DynamicWhitelistTest, TrimsFieldsAndIgnoresFurtherOnes) {
    write_list(" /bin/a\t, " + own + " ,third,fourth\n/bin/b," + own + "\r\n/bin/c,,\n,\n");
    expect("/bin/a", 1, 1);
    expect("/bin/b", 1, 1);
    expect("/bin/c", 1, 0);
    expect("", 1, 0);
}

TEST_F(DynamicWhitelistTest, HasRoomForEveryFieldOfALine) {
    write_list("/bin/a," + own + std::string(1000, ',') + "\n" + std::string(1022, ',') + "\n" +
               "/bin/b," + own + ",1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n");
    expect("/bin/a", 1, 1);
    expect("/bin/b", 1, 1);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DynamicWhitelistTest, LosesTheLastCharacterOfALineWithoutNewline) {
    write_list("/bin/a,other\n/bin/b," + own);
    expect("/bin/b", 1, 0);
    write_list("/bin/b," + own + "x");
    expect("/bin/b", 1, 1);
}

TEST_F(DynamicWhitelistTest, TakesALongLineInPieces) {
    const std::string path = "/bin/" + std::string(1000, 'x');
    write_list(path + ",c" + std::string(15, 'y') + "z/bin/rest," + own + "\n");
    expect(path, 1, 0);
    expect("/bin/rest", 1, 1);
}

TEST_F(DynamicWhitelistTest, SkipsBlankLinesSilently) {
    write_list("\n\n/bin/a," + own + "\n\n");
    expect("/bin/a", 1, 1);
    expect("/bin/b", 0, 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DynamicWhitelistTest, SkipsMalformedLinesUpToTheFirstMatch) {
    write_list("/bin/bare\n/bin/a," + own + "\n  \n/bin/b," + own + "\n");
    const struct {
        const char *path;
        int32_t mode;
        int answer;
        int complaints;
    } cases[] = {
        {"/bin/a", 0, 1, 1},    {"/bin/a", 1, 1, 1}, {"/bin/b", 0, 1, 2},
        {"/bin/bare", 0, 0, 2}, {"/bin/c", 1, 0, 2},
    };
    set_written_long_ago(dynamic_whitelist_path);
    DynamicWhitelist whitelist;
    for (const auto &test : cases) {
        forget_log();
        EXPECT_EQ(file_exist_in_dynamic_whitelist(test.path, test.mode), test.answer);
        EXPECT_TRUE(logged("CMPNT_ERROR", reader, format_message));
        EXPECT_EQ(traced("error", reader, format_message), test.complaints) << test.path;
        for (int i = 2; i < 5; i++) {
            EXPECT_EQ(whitelist.has(test.path, static_cast<WhitelistMode>(test.mode)),
                      test.answer == 1);
            EXPECT_EQ(traced("error", reader, format_message), i * test.complaints) << test.path;
        }
    }
}

TEST_F(DynamicWhitelistTest, EndsAtTheFirstWellFormedLineInOtherModes) {
    for (int32_t mode : {-1, 2, 3, INT32_MAX, INT32_MIN}) {
        write_list("\n/bin/bare\n/bin/b," + own + "\n/bin/bare\n/bin/a," + own + "\n");
        forget_log();
        EXPECT_EQ(file_exist_in_dynamic_whitelist("/bin/a", mode), 0);
        EXPECT_EQ(file_exist_in_dynamic_whitelist("/bin/b", mode), 0);
        EXPECT_EQ(traced("error", reader, format_message), 2);
    }
}

TEST_F(DynamicWhitelistTest, RefusesNull) {
    write_list("/bin/a," + own + "\n");
    EXPECT_EQ(file_exist_in_dynamic_whitelist(nullptr, 0), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, "param is null.\n"));
    EXPECT_FALSE(DynamicWhitelist().has(nullptr, whitelist_own_entry));
    EXPECT_EQ(traced("error", reader, "param is null.\n"), 2);
}

TEST_F(DynamicWhitelistTest, IsSilentlyEmptyWithoutAFile) {
    expect("/bin/a", 0, 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DynamicWhitelistTest, SaysForEachQuestionThatTheListCannotBeOpened) {
    make_directories("/var/safe-verify/sm3");
    ASSERT_EQ(symlink("nowhere", dynamic_whitelist_path), 0);
    expect("/bin/a", 0, 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(ENOENT)));
    EXPECT_EQ(traced("error", reader, open_message(ENOENT)), 8);

    unlink(dynamic_whitelist_path);
    write_list("/bin/a," + own + "\n");
    fault::fail("open64", 1, EMFILE);
    EXPECT_EQ(file_exist_in_dynamic_whitelist("/bin/a", 0), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", reader, open_message(EMFILE)));
}

TEST_F(DynamicWhitelistTest, EndsAtALineThatItHasNoMemoryFor) {
    write_list("/bin/a," + own + "\n/bin/b," + own + "\n");
    for (int call : {1, 2}) {
        forget_log();
        fault::fail("calloc", call, ENOMEM);
        EXPECT_EQ(file_exist_in_dynamic_whitelist("/bin/b", 0), 0);
        EXPECT_TRUE(logged("CMPNT_ERROR", reader, "cmpnt_detach_install_queue fail.\n"));
        EXPECT_EQ(traced("error", reader, "cmpnt_detach_install_queue fail.\n"), 1);
    }
}

TEST_F(DynamicWhitelistTest, ReadsTheListForEachQuestionWithoutMemoryToHoldIt) {
    write_list("/bin/a," + own + "\n/bin/b,other\n");
    set_written_long_ago(dynamic_whitelist_path);
    for (const char *function : {"strdup", "realloc"}) {
        for (int call : {1, 2}) {
            DynamicWhitelist whitelist;
            fault::fail(function, call, ENOMEM);
            EXPECT_TRUE(whitelist.has("/bin/a", whitelist_own_entry));
            EXPECT_TRUE(whitelist.has("/bin/b", whitelist_any_client));
            EXPECT_FALSE(whitelist.has("/bin/b", whitelist_own_entry));
            fault::reset();
        }
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DynamicWhitelistTest, ReadsTheListOnceForManyQuestions) {
    write_list("/bin/a," + own + "\n");
    set_written_long_ago(dynamic_whitelist_path);
    DynamicWhitelist whitelist;
    for (int i = 0; i < 100; i++) {
        EXPECT_TRUE(whitelist.has("/bin/a", whitelist_own_entry));
        EXPECT_FALSE(whitelist.has("/bin/b", whitelist_any_client));
    }
    EXPECT_EQ(fault::calls("open64"), 1);
}

TEST_F(DynamicWhitelistTest, SeesAChangedList) {
    write_list("/bin/a," + own + "\n");
    set_written_long_ago(dynamic_whitelist_path);
    DynamicWhitelist whitelist;
    for (int i = 0; i < 3; i++) {
        EXPECT_FALSE(whitelist.has("/bin/b", whitelist_any_client));
    }
    write_list("/bin/a," + own + "\n/bin/b,other\n");
    EXPECT_TRUE(whitelist.has("/bin/b", whitelist_any_client));
    unlink(dynamic_whitelist_path);
    EXPECT_FALSE(whitelist.has("/bin/b", whitelist_any_client));
}

// Random lists of few words, with everything in them that a line may have.
TEST_F(DynamicWhitelistTest, AnswersManyQuestionsAsItAnswersOne) {
    std::mt19937 random(1);
    const std::vector<std::string> words = {"/bin/a,other\n",
                                            "/bin/b," + own + "\n",
                                            " /bin/ab ,\n",
                                            "\n",
                                            ",x,\n",
                                            "/bin/a," + own + "\n",
                                            "/bin/a",
                                            "/bin/b",
                                            " ",
                                            ",",
                                            own,
                                            "\n",
                                            std::string(1, '\0'),
                                            std::string(1010, 'y')};
    constexpr size_t well_formed = 6;  // of the words
    for (int round = 0; round < 40; round++) {
        const size_t choice = round % 2 == 0 ? well_formed : words.size();
        std::string content;
        for (unsigned count = random() % 40; count > 0; count--) {
            content += words[random() % choice];
        }
        write_list(content);
        set_written_long_ago(dynamic_whitelist_path);
        g_cmpnt_dbg_level = 0;
        DynamicWhitelist whitelist;
        for (const std::string &path : {std::string("/bin/a"), std::string("/bin/b"),
                                        std::string("/bin/ab"), std::string(), std::string("x")}) {
            for (WhitelistMode mode : {whitelist_any_client, whitelist_own_entry}) {
                unlink(trace_path().c_str());
                const int once = file_exist_in_dynamic_whitelist(path.c_str(), mode);
                const auto said = trace_messages();
                unlink(trace_path().c_str());
                ASSERT_EQ(whitelist.has(path.c_str(), mode), once == 1) << content;
                ASSERT_EQ(trace_messages(), said) << content;
            }
        }
    }
}
