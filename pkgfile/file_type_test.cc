#include "tests/support/device_test.hh"

namespace {

constexpr char failed_copy[] = "cmpnt_memcpy fail, str(%s)\n";
constexpr uint32_t before = 77;

std::string with(const char *format, const std::string &text) {
    std::string message = format;
    return message.replace(message.find("%s"), 2, text);
}

std::string suffix_of_length(size_t length) { return "." + std::string(length - 1, 's'); }

}  // namespace

class FileType : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "get_file_type", message);
    }
    static testing::AssertionResult checker_says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_file_type_check", message);
    }
};

TEST_F(FileType, ATextWithoutAByteIsEmpty) {
    EXPECT_EQ(str_is_empty(""), 1);
    EXPECT_EQ(str_is_empty("\0hidden"), 1);
    EXPECT_EQ(str_is_empty(" "), 0);
    EXPECT_EQ(str_is_empty("\xff"), 0);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileType, SuffixGoesFromTheLastDotToTheEnd) {
    const char *const cases[][2] = {
        {"x.bin", ".bin"},     {"a.tar.gz", ".gz"}, {"a.bin.sign", ".sign"}, {".bin", ".bin"},
        {"..bin", ".bin"},     {"/d.x/f", ".x/f"},  {"/d.x/f.deb", ".deb"},  {"./f", "./f"},
        {"x.%s%n", ".%s%n"},   {"x. ", ". "},       {"x.a\nb", ".a\nb"},     {"x.\xff", ".\xff"},
        {"x.b/..c/d", ".c/d"}, {"x.BIN", ".BIN"},
    };
    for (const auto &[name, suffix] : cases) {
        char found[16];
        memset(found, 'x', sizeof(found));
        EXPECT_EQ(get_file_type(name, found, sizeof(found)), 0) << name;
        EXPECT_STREQ(found, suffix);
        EXPECT_EQ(std::string(found + strlen(found), std::end(found)),
                  std::string(sizeof(found) - strlen(found), '\0'))
            << name;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileType, SuffixIsMissing) {
    char suffix[8] = "before";
    EXPECT_EQ(get_file_type("/opt/plain", suffix, sizeof(suffix)), -1);
    EXPECT_TRUE(says("The file_name(/opt/plain) type is invalid.\n"));
    EXPECT_EQ(get_file_type("", suffix, sizeof(suffix)), -1);
    EXPECT_TRUE(says("The file_name() type is invalid.\n"));
    EXPECT_EQ(get_file_type("100%d%n", suffix, sizeof(suffix)), -1);
    EXPECT_TRUE(says("The file_name(100%d%n) type is invalid.\n"));
    EXPECT_STREQ(suffix, "before");
}

TEST_F(FileType, SuffixIsADotAlone) {
    char suffix[8] = "before";
    for (const char *name : {"x.", ".", "x.bin.", "/opt/."}) {
        forget_log();
        EXPECT_EQ(get_file_type(name, suffix, sizeof(suffix)), -1);
        EXPECT_TRUE(says("the type(.) is NULL, please input correct filename type\n")) << name;
    }
    EXPECT_STREQ(suffix, "before");
}

TEST_F(FileType, SuffixThatFits) {
    char suffix[5];
    memset(suffix, 'x', sizeof(suffix));
    EXPECT_EQ(get_file_type("x.abc", suffix, sizeof(suffix)), 0);
    EXPECT_STREQ(suffix, ".abc");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileType, SuffixAsLongAsItsBufferLosesItsLastByte) {
    char suffix[8];
    memset(suffix, 'x', sizeof(suffix));
    EXPECT_EQ(get_file_type("x.abcd", suffix, 5), 0);
    EXPECT_STREQ(suffix, ".abc");
    EXPECT_EQ(suffix[5], 'x');
    EXPECT_EQ(
        trace_messages(),
        (std::vector<std::string>{"error cmpnt_memcpy: src(.abcd) is too long, src_len(5).\n"}));
}

TEST_F(FileType, SuffixTooLongFailsWithItsBufferEmptied) {
    char suffix[8];
    memset(suffix, 'x', sizeof(suffix));
    EXPECT_EQ(get_file_type("x.abcde", suffix, 5), -1);
    EXPECT_TRUE(says(with(failed_copy, ".abcde")));
    EXPECT_EQ(traced("error", "cmpnt_memcpy", "src(.abcde) is too long, src_len(6), dest(5).\n"),
              1);
    EXPECT_EQ(std::string(suffix, sizeof(suffix)), std::string(5, '\0') + "xxx");
}

TEST_F(FileType, SuffixBufferWithoutRoom) {
    char suffix[2] = "x";
    for (int32_t size : {0, -1, INT32_MIN}) {
        forget_log();
        EXPECT_EQ(get_file_type("x.bin", suffix, size), -1);
        EXPECT_TRUE(says(with(failed_copy, ".bin"))) << size;
        EXPECT_STREQ(suffix, "x");
    }
}

TEST_F(FileType, SuffixOfNull) {
    char suffix[8] = "before";
    EXPECT_EQ(get_file_type(nullptr, suffix, sizeof(suffix)), -1);
    EXPECT_TRUE(says("input param is error.\n"));
    EXPECT_EQ(get_file_type("x.bin", nullptr, 8), -1);
    EXPECT_EQ(traced("error", "get_file_type", "input param is error.\n"), 2);
    EXPECT_STREQ(suffix, "before");
}

TEST_F(FileType, PackagesAreKnownSilently) {
    const struct {
        const char *name;
        uint32_t type;
    } cases[] = {
        {"x.bin", CMPNT_PKG_TYPE_IMAGE},      {".bin", CMPNT_PKG_TYPE_IMAGE},
        {"x.sign.bin", CMPNT_PKG_TYPE_IMAGE}, {"/d.deb/x.bin", CMPNT_PKG_TYPE_IMAGE},
        {"x.deb", CMPNT_PKG_TYPE_DEB},        {"/opt/.deb", CMPNT_PKG_TYPE_DEB},
    };
    for (const auto &[name, type] : cases) {
        uint32_t found = before;
        EXPECT_EQ(cmpnt_file_type_check(name, &found), 0) << name;
        EXPECT_EQ(found, type) << name;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileType, SideFilesAreNoPackagesAndNothingIsSaid) {
    for (const char *name : {"x.sign", "x.hash", ".sign", ".hash", "a.bin.sign", "a.deb.hash"}) {
        uint32_t found = before;
        EXPECT_EQ(cmpnt_file_type_check(name, &found), -1) << name;
        EXPECT_EQ(found, 5u) << name;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(FileType, OtherSuffixesAreNotSupported) {
    const char *const cases[][2] = {
        {"x.BIN", ".BIN"},      {"x.Deb", ".Deb"},           {"x.binx", ".binx"},
        {"x.bi", ".bi"},        {"x.SIGN", ".SIGN"},         {"x.hash ", ".hash "},
        {"a.tar.gz", ".gz"},    {"x.multiple", ".multiple"}, {"/d.x/f", ".x/f"},
        {"/d.bin/f", ".bin/f"}, {"x.%s%n", ".%s%n"},         {"x.bin\n", ".bin\n"},
    };
    for (const auto &[name, suffix] : cases) {
        uint32_t found = before;
        EXPECT_EQ(cmpnt_file_type_check(name, &found), -1) << name;
        EXPECT_EQ(found, 4u) << name;
        EXPECT_TRUE(checker_says(std::string("file_name(") + name + "), type(" + suffix +
                                 ") is not support!\n"));
    }
    EXPECT_EQ(trace_lines().size(), std::size(cases));
}

TEST_F(FileType, WithoutASuffixTheTypeStays) {
    for (const char *name : {"plain", "", "ends.", "/opt/plain"}) {
        forget_log();
        uint32_t found = before;
        EXPECT_EQ(cmpnt_file_type_check(name, &found), -1);
        EXPECT_EQ(found, before) << name;
        EXPECT_TRUE(checker_says(with("get_file_type fail, path_name(%s), type().\n", name)));
        EXPECT_EQ(trace_lines().size(), 2u);
    }
}

TEST_F(FileType, SuffixesUpToAPathsLengthAreUnderstood) {
    for (size_t length : {259, 260}) {
        forget_log();
        uint32_t found = before;
        EXPECT_EQ(cmpnt_file_type_check(("x" + suffix_of_length(length)).c_str(), &found), -1);
        EXPECT_EQ(found, 4u);
        EXPECT_TRUE(checker_says("file_name(x" + suffix_of_length(length) + "), type(" +
                                 suffix_of_length(259) + ") is not support!\n"));
    }
    uint32_t found = before;
    forget_log();
    EXPECT_EQ(cmpnt_file_type_check(("x" + suffix_of_length(261)).c_str(), &found), -1);
    EXPECT_EQ(found, before);
    EXPECT_TRUE(
        checker_says("get_file_type fail, path_name(x" + suffix_of_length(261) + "), type().\n"));
    EXPECT_TRUE(says(with(failed_copy, suffix_of_length(261))));
}

TEST_F(FileType, TypeOfNull) {
    uint32_t found = before;
    EXPECT_EQ(cmpnt_file_type_check(nullptr, &found), -1);
    EXPECT_TRUE(checker_says("input param is error.\n"));
    EXPECT_EQ(cmpnt_file_type_check("x.bin", nullptr), -1);
    EXPECT_EQ(traced("error", "cmpnt_file_type_check", "input param is error.\n"), 2);
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_EQ(found, before);
}
