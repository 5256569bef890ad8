#include "verify/hash_file.hh"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"
#include "tests/support/verification.hh"

using Hashes = std::vector<std::string>;

constexpr char list_path[] = "/opt/list.hash";
constexpr char skipped_empty[] = "buf len is 0, continue.\n";
constexpr char skipped_blank[] = "buf is null, continue.\n";

class HashFile : public DeviceTest {
protected:
    static int32_t load(const std::string &text) {
        write_file(list_path, text);
        return cmpnt_get_hash_info(list_path);
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_get_hash_info", message);
    }

    // A line of so many pieces, the blanks between them and none behind.
    static std::string pieces(int count) {
        std::string line = "p0";
        for (int i = 1; i < count; i++) {
            line += " p" + std::to_string(i);
        }
        return line;
    }
};

TEST_F(HashFile, GivesADigestForEachName) {
    EXPECT_EQ(load("d1  smu-a\nd2  /usr/bin/x\nd3  b.deb\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"smu-a d1", "/usr/bin/x d2", "b.deb d3"}));
    EXPECT_TRUE(is_well_linked(hash_verify_list));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashFile, MayBeEmpty) {
    list_hash("a", "d1");
    EXPECT_EQ(load(""), 0);
    EXPECT_EQ(listed_hashes(), Hashes{"a d1"});
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashFile, LosesTheLastCharacterOfALineWithoutNewline) {
    EXPECT_EQ(load("d1  smu-a\nd2  smu-bc"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"smu-a d1", "smu-b d2"}));
}

TEST_F(HashFile, FailsWhenALastCharacterIsAllThatALineHas) {
    EXPECT_EQ(load("d1  a\nx"), 0);  // nothing is left, and a blank line skipped
    EXPECT_EQ(traced("trace", "cmpnt_get_hash_info", skipped_blank), 1);
    EXPECT_EQ(load("d1  a\nxy"), -1);
    EXPECT_TRUE(says("hash file format err.\n"));
}

TEST_F(HashFile, TrimsItsFields) {
    EXPECT_EQ(load("d1  a\r\nd2\t  \tb\t\nd3\v \f c\v\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"a d1", "b d2", "c d3"}));
}

TEST_F(HashFile, IgnoresTheFieldBetweenTheTwoBlanksAndAllBehindTheName) {
    EXPECT_EQ(load("d1 middle a\nd2  b behind  and so on\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"a d1", "b d2"}));
}

TEST_F(HashFile, CountsEveryBlankInFrontOfAName) {
    EXPECT_EQ(load("d1   a\n"), 0);
    EXPECT_EQ(listed_hashes(), Hashes{" d1"});
}

TEST_F(HashFile, TakesEmptyFieldsAsTheyAre) {
    EXPECT_EQ(load("  \n"), 0);
    EXPECT_EQ(listed_hashes(), Hashes{" "});
}

TEST_F(HashFile, SkipsBlankLines) {
    EXPECT_EQ(load("\nd1  a\n\n\nd2  b\n\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"a d1", "b d2"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_hash_info", skipped_blank));
    EXPECT_EQ(traced("trace", "cmpnt_get_hash_info", skipped_blank), 4);
    EXPECT_EQ(trace_lines().size(), 4u);
}

TEST_F(HashFile, SkipsLinesThatBeginWithAZeroByte) {
    EXPECT_EQ(load(std::string("\0d9  z\nd1  a\n\0\n", 14)), 0);
    EXPECT_EQ(listed_hashes(), Hashes{"a d1"});
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_get_hash_info", skipped_empty));
    EXPECT_EQ(traced("trace", "cmpnt_get_hash_info", skipped_empty), 2);
}

TEST_F(HashFile, TakesALineForBlankOnlyWhenNothingFollowsAZeroByte) {
    EXPECT_EQ(load(std::string("x\0y\n", 4)), -1);
    EXPECT_TRUE(says("hash file format err.\n"));
}

TEST_F(HashFile, FailsAtALineOfFewerThanThreeFields) {
    for (const char *text : {"d2 b\n", "d2\n", " \n", "d2\tb\n", "d2\t\tb\n", "d1  a\n\r\n"}) {
        forget_log();
        list_hash("earlier", "d0");
        EXPECT_EQ(load(std::string("d1  a\n") + text + "d3  c\n"), -1) << text;
        EXPECT_TRUE(says("hash file format err.\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
        EXPECT_EQ(listed_hashes(), Hashes()) << text;
    }
}

TEST_F(HashFile, TakesFifteenPiecesAndFailsAtSixteen) {
    EXPECT_EQ(load(pieces(15) + "\n"), 0);
    EXPECT_EQ(listed_hashes(), Hashes{"p2 p0"});
    EXPECT_FALSE(exists(trace_path()));
    for (int count : {16, 17, 100}) {
        list_hash("earlier", "d0");
        forget_log();
        EXPECT_EQ(load("d1  a\n" + pieces(count) + "\n"), -1);
        EXPECT_TRUE(says("cmpnt_detach_install_queue fail.\n"));
        EXPECT_EQ(listed_hashes(), Hashes());
    }
    EXPECT_EQ(load("d1  a" + std::string(13, ' ') + "\n"), -1);
}

TEST_F(HashFile, KeepsTheFirstDigestOfAName) {
    list_hash("earlier", "d0");
    EXPECT_EQ(load("d1  a\nd2  a\nd3  earlier\nd4  b\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"earlier d0", "a d1", "b d4"}));
    EXPECT_EQ(load("d5  a\nd6  c\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{"earlier d0", "a d1", "b d4", "c d6"}));
}

TEST_F(HashFile, MayBeLong) {
    std::string text;
    Hashes expected;
    for (int i = 0; i < 1000; i++) {
        const std::string number = std::to_string(i);
        text += "d" + number + "  /lib/" + number + "\nagain  /lib/" + number + "\n";
        expected.push_back("/lib/" + number + " d" + number);
    }
    EXPECT_EQ(load(text), 0);
    EXPECT_EQ(listed_hashes(), expected);
}

TEST_F(HashFile, HoldsLinesOfAlmostAThousandCharacters) {
    const std::string name(1018, 'n');
    EXPECT_EQ(load("d1  " + name + "\n"), 0);  // 1023 characters
    EXPECT_EQ(listed_hashes(), Hashes{name + " d1"});
}

// The rest of a longer line is a line of its own, and both lose their last character.
TEST_F(HashFile, CutsLongerLines) {
    const std::string name(1019, 'n');
    EXPECT_EQ(load("d1  " + name + "\n"), 0);
    EXPECT_EQ(listed_hashes(), Hashes{std::string(1018, 'n') + " d1"});
    EXPECT_EQ(traced("trace", "cmpnt_get_hash_info", skipped_blank), 1);
    cmpnt_free_sign_verify();
    EXPECT_EQ(load("d1  " + name + "d2  b\n"), 0);
    EXPECT_EQ(listed_hashes(), (Hashes{std::string(1018, 'n') + " d1", "b d2"}));
    EXPECT_EQ(load("d1  " + name + "d2\n"), -1);
    EXPECT_TRUE(says("hash file format err.\n"));
}

TEST_F(HashFile, FailsAtAMegabyteWithoutANewline) {
    EXPECT_EQ(load(std::string(1 << 20, 'x')), -1);
    EXPECT_TRUE(says("hash file format err.\n"));
}

TEST_F(HashFile, HasToOpenAndLeavesTheListAsItIsOtherwise) {
    list_hash("earlier", "d0");
    EXPECT_EQ(cmpnt_get_hash_info("/opt/missing"), -1);
    EXPECT_TRUE(says("open(/opt/missing) failed, reason: " + std::string(strerror(ENOENT)) + "\n"));
    write_file(list_path, "d1  a\n");
    fault::fail("open64", 1, EMFILE);
    EXPECT_EQ(cmpnt_get_hash_info(list_path), -1);
    EXPECT_TRUE(
        says("open(/opt/list.hash) failed, reason: " + std::string(strerror(EMFILE)) + "\n"));
    EXPECT_EQ(listed_hashes(), Hashes{"earlier d0"});
}

TEST_F(HashFile, FailsWithoutAWordWhenItCannotBeReadToItsEnd) {
    list_hash("earlier", "d0");
    make_directories("/opt/list");
    EXPECT_EQ(cmpnt_get_hash_info("/opt/list"), -1);
    EXPECT_EQ(listed_hashes(), Hashes());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashFile, WaitsForNobodyToFillAPipe) {
    ASSERT_EQ(mkfifo("/opt/pipe", 0600), 0);
    EXPECT_EQ(cmpnt_get_hash_info("/opt/pipe"), 0);
    EXPECT_EQ(listed_hashes(), Hashes());
}

TEST_F(HashFile, IsClosedAgain) {
    const int before = open_descriptors();
    EXPECT_EQ(load("d1  a\n"), 0);
    EXPECT_EQ(load("d1\n"), -1);
    EXPECT_EQ(open_descriptors(), before);
}

// Texts of a field, a node or the index: whatever memory is missing, there is a whole list or none,
// and nothing leaks.
TEST_F(HashFile, LoadsWhollyOrNotAtAllWhenMemoryIsShort) {
    std::string text;
    Hashes expected;
    for (int i = 0; i < 12; i++) {
        const std::string number = std::to_string(i);
        text += "d" + number + "  f" + number + "\n";
        expected.push_back("f" + number + " d" + number);
    }
    int failures = 0, call = 1, calls = 0;
    for (; call == 1 || calls >= call - 1; call++) {
        cmpnt_free_sign_verify();
        fault::reset();
        fault::fail("calloc", call, ENOMEM);
        const int32_t result = load(text);
        calls = fault::calls("calloc");
        EXPECT_EQ(listed_hashes(), result == 0 ? expected : Hashes()) << call;
        failures += result == -1;
    }
    EXPECT_EQ(failures, 12 * 4);
    EXPECT_TRUE(says("cmpnt_add_hash_verify_list fail.\n"));
    EXPECT_TRUE(says("cmpnt_detach_install_queue fail.\n"));
    EXPECT_GT(call, 12 * 4);
}
