#include <stdlib.h>
#include <sys/stat.h>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char caller[] = "parse_pkg_info_from_file";
constexpr char path[] = "/var/lib/opkg/status";

}  // namespace

class ControlFile : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(&record, 0x55, sizeof(record));
        memcpy(&untouched, &record, sizeof(record));
    }
    int32_t parse(int32_t mode, const char *name = nullptr, const char *file = path) {
        cmpnt_file_param param;
        set_file_param(&param, mode, reinterpret_cast<intptr_t>(name), 0, 0);
        return parse_pkg_info_from_file(&record, file, &param);
    }
    bool kept() const { return memcmp(&record, &untouched, sizeof(record)) == 0; }
    bool zeroed() const {
        static const char zeros[sizeof(record)] = {};
        return memcmp(&record, zeros, sizeof(record)) == 0;
    }

    cmpnt_control_info record;
    cmpnt_control_info untouched;
};

TEST_F(ControlFile, YieldsThePackageLookedFor) {
    write_file(path,
               "Package: foo\nVersion: 1\nDescription: first\n more\n\n"
               "Package: bar\nVersion: 2\nArchitecture: arm\r\nInstalled-Size: 12\n\n"
               "Package: baz\nVersion: 3\n\n");
    EXPECT_EQ(parse(CMPNT_PARSE_FIND_PACKAGE, "bar"), 0);
    EXPECT_STREQ(record.package, "bar");
    EXPECT_STREQ(record.version, "2");
    EXPECT_STREQ(record.architecture, "arm");
    EXPECT_STREQ(record.description, "");
    EXPECT_EQ(record.installed_size, 12u);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlFile, YieldsAnEmptyRecordForAPackageThatIsNotThere) {
    write_file(path, "Package: foo\nVersion: 1\n\n");
    EXPECT_EQ(parse(CMPNT_PARSE_FIND_PACKAGE, "bar"), 0);
    EXPECT_TRUE(zeroed());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlFile, KeepsTheLastPackageWithoutABlankLineBehindIt) {
    write_file(path, "Package: foo\n\nPackage: last\n");
    EXPECT_EQ(parse(CMPNT_PARSE_FIND_PACKAGE, "bar"), 0);
    EXPECT_STREQ(record.package, "last");
}

TEST_F(ControlFile, EndsAtAFieldWithoutValue) {
    write_file(path, "Package: foo\nVersion:\n\nPackage: bar\n\n");
    EXPECT_EQ(parse(CMPNT_PARSE_FIND_PACKAGE, "bar"), 0);
    EXPECT_STREQ(record.package, "foo");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_parse_line", "parse_simple fail.\n"));
}

TEST_F(ControlFile, EndsAtAFieldThatIsItsNameAlone) {
    write_file(path, "Package\nVersion: 1\n\n");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), 0);
    EXPECT_TRUE(zeroed());
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error cmpnt_parse_line: parse_simple fail.\n"}));
}

TEST_F(ControlFile, YieldsOneParagraph) {
    write_file(path, "Package: foo\r\nVersion: 1\r\n\r\nPackage: bar\r\n");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), 0);
    EXPECT_STREQ(record.package, "foo");
    EXPECT_STREQ(record.version, "1");
    write_file(path, "\nPackage: foo\n\n");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), 0);
    EXPECT_TRUE(zeroed());
    write_file(path, "Package: foo\nVersion: 1");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), 0);
    EXPECT_STREQ(record.version, "1");
}

TEST_F(ControlFile, YieldsTheFirstLineOfAWantedField) {
    write_file(path, "Package: foo\n\nFilename: a\nFilename: b\n");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_FIELD, "Filename"), 0);
    EXPECT_STREQ(record.md5_sum, "a");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_FIELD, "Nothing"), 0);
    EXPECT_TRUE(zeroed());
}

TEST_F(ControlFile, HandsOverTheStringsOfAControlFile) {
    write_file(path, "Package: smu\nSerial: 1\nCard_type: mpu\n\n");
    EXPECT_EQ(parse(READ_PKG_INFO_FROM_CONTROL), 0);
    EXPECT_STREQ(record.serial, "1");
    EXPECT_STREQ(record.card_type, "mpu");
    free(record.serial);
    free(record.card_type);
}

TEST_F(ControlFile, HandsOverTheStringsAfterAFailureToo) {
    write_file(path, "Serial: 1\n" + std::string(1048576, 'x') + "\n");
    EXPECT_EQ(parse(READ_PKG_INFO_FROM_CONTROL), -1);
    ASSERT_NE(record.serial, nullptr);
    EXPECT_STREQ(record.serial, "1");
    free(record.serial);
}

TEST_F(ControlFile, FailsAtALineTooLong) {
    write_file(path, std::string(1048575, 'x') + "\n");
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "parse_info_from_stream fail, maybe not error.\n"));
}

TEST_F(ControlFile, FailsWhenALineFindsNoMemory) {
    write_file(path, std::string(5000, 'x') + "\n");
    fault::fail("realloc", 2, ENOMEM);
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error xrealloc: realloc fail.\n",
                                        std::string("error ") + caller +
                                            ": parse_info_from_stream fail, maybe not error.\n"}));
}

TEST_F(ControlFile, FailsWhenItCannotBeRead) {
    if (!exists("/proc/self/mem")) {
        GTEST_SKIP() << "no /proc";
    }
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH, nullptr, "/proc/self/mem"), -1);
    EXPECT_EQ(traced("error", "parse_info_from_stream", "fgets fail.\n"), 1);
    EXPECT_EQ(traced("error", caller, "parse_info_from_stream fail, maybe not error.\n"), 1);
}

TEST_F(ControlFile, FailsForAPipeThatNobodyFills) {
    ASSERT_EQ(mkfifo("/opt/pipe", 0600), 0);
    const Deadline deadline;
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH, nullptr, "/opt/pipe"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "parse_info_from_stream", "fgets fail.\n"));
    EXPECT_EQ(traced("error", caller, "parse_info_from_stream fail, maybe not error.\n"), 1);
}

TEST_F(ControlFile, FindsAPackageBehindThousands) {
    std::string text;
    for (int i = 0; i < 3000; i++) {
        text += "Package: p" + std::to_string(i) + "\nVersion: " + std::to_string(i) + "\n\n";
    }
    write_file(path, text);
    EXPECT_EQ(parse(CMPNT_PARSE_FIND_PACKAGE, "p2998"), 0);
    EXPECT_STREQ(record.package, "p2998");
    EXPECT_STREQ(record.version, "2998");
    EXPECT_EQ(fault::calls("calloc"), 2);  // the line buffer and the block
    EXPECT_EQ(fault::calls("realloc"), 0);
}

TEST_F(ControlFile, FailsWithoutAFile) {
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "file(/var/lib/opkg/status) is no exist.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_TRUE(kept());
}

TEST_F(ControlFile, FailsForWhatCannotBeWritten) {
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH, nullptr, "/var"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "Failed to fopen /var\n"));
    EXPECT_TRUE(kept());
}

TEST_F(ControlFile, FailsWithoutMemoryForALine) {
    write_file(path, "Package: foo\n\n");
    const int before = open_descriptors();
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error cmpnt_malloc: malloc failed, size(1024), "
                                        "error(Cannot allocate memory).\n"}));
    fault::fail("calloc", 2, ENOMEM);
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_EQ(trace_messages().size(), 2u);
    EXPECT_TRUE(kept());
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ControlFile, IsClosedAndNotChanged) {
    const std::string text = "Package: foo\n\n";
    write_file(path, text);
    const int before = open_descriptors();
    EXPECT_EQ(parse(CMPNT_PARSE_ONE_PARAGRAPH), 0);
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_EQ(read_file(path), text);
}

TEST_F(ControlFile, StopsAtItsFirstLineWithoutAParameterBlock) {
    write_file(path, "Package: foo\nVersion: 1\n\n");
    EXPECT_EQ(parse_pkg_info_from_file(&record, path, nullptr), 0);
    EXPECT_TRUE(zeroed());
    EXPECT_EQ(traced("error", "cmpnt_parse_line", "input param is null.\n"), 1);
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(ControlFile, RefusesNull) {
    cmpnt_file_param param = {};
    EXPECT_EQ(parse_pkg_info_from_file(nullptr, path, &param), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "input param is error.\n"));
    EXPECT_EQ(parse_pkg_info_from_file(&record, nullptr, &param), -1);
    EXPECT_EQ(traced("error", caller, "input param is error.\n"), 2);
    EXPECT_EQ(trace_lines().size(), 2u);
}
