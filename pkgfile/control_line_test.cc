#include <stdlib.h>

#include "tests/support/device_test.hh"

namespace {

constexpr char handler[] = "cmpnt_parse_line";
constexpr int32_t ordinary_modes[] = {CMPNT_PARSE_STATUS_TO_DB,
                                      CMPNT_PARSE_ONE_PARAGRAPH,
                                      CMPNT_PARSE_FIND_PACKAGE,
                                      CMPNT_PARSE_BACKUP_FILES,
                                      READ_PKG_INFO_FROM_CONTROL,
                                      0,
                                      7,
                                      -1};

}  // namespace

class ControlLine : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(&record, 0, sizeof(record));
    }
    void TearDown() override {
        free(record.serial);
        free(record.card_type);
        DeviceTest::TearDown();
    }
    int32_t parse(const std::string &line, int32_t mode = CMPNT_PARSE_ONE_PARAGRAPH,
                  const char *name = nullptr) {
        cmpnt_file_param param;
        set_file_param(&param, mode, reinterpret_cast<intptr_t>(name), 0, 0);
        std::string buffer = line;
        return cmpnt_parse_line(&record, &buffer[0], &param);
    }
    bool record_is_empty() const {
        static const char zeros[sizeof(record)] = {};
        return memcmp(&record, zeros, sizeof(record)) == 0;
    }

    cmpnt_control_info record;
};

TEST_F(ControlLine, FillsTheTextsOfTheRecord) {
    for (const int32_t mode : ordinary_modes) {
        memset(&record, 0, sizeof(record));
        EXPECT_EQ(parse("Package: foo", mode), 0);
        EXPECT_EQ(parse("Version:  1.2-3 ", mode), 0);
        EXPECT_EQ(parse("MD5Sum: 0123abc\r", mode), 0);
        EXPECT_EQ(parse("Architecture: arm", mode), 0);
        EXPECT_EQ(parse("Description: a: b  c", mode), 0);
        EXPECT_STREQ(record.package, "foo");
        EXPECT_STREQ(record.version, "1.2-3");
        EXPECT_STREQ(record.md5_sum, "0123abc");
        EXPECT_STREQ(record.architecture, "arm");
        EXPECT_STREQ(record.description, "a: b  c");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, FillsTheNumbersOfTheRecord) {
    EXPECT_EQ(parse("Is_reboot: 1"), 0);
    EXPECT_EQ(parse("Installed-Size: 1234"), 0);
    EXPECT_EQ(parse("Installed-Time: 4000000000"), 0);
    EXPECT_EQ(record.is_reboot, 1);
    EXPECT_EQ(record.installed_size, 1234u);
    EXPECT_EQ(record.installed_time, 4000000000u);
}

TEST_F(ControlLine, ReadsIsRebootAsADecimalAndSizesInTheBaseOfTheirPrefix) {
    EXPECT_EQ(parse("Is_reboot: -010"), 0);
    EXPECT_EQ(parse("Installed-Size: 010 kB"), 0);
    EXPECT_EQ(parse("Installed-Time: 0x10"), 0);
    EXPECT_EQ(record.is_reboot, -10);
    EXPECT_EQ(record.installed_size, 8u);
    EXPECT_EQ(record.installed_time, 16u);
}

TEST_F(ControlLine, CutsTextsToTheirFields) {
    const std::string text(600, 'x');
    struct {
        const char *field;
        const char *member;
        size_t size;
    } const cases[] = {
        {"Package", record.package, 80},          {"Version", record.version, 32},
        {"MD5Sum", record.md5_sum, 64},           {"Architecture", record.architecture, 32},
        {"Description", record.description, 256},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(parse(test.field + (": " + text)), 0);
        EXPECT_STREQ(test.member, text.substr(0, test.size - 1).c_str());
    }
    EXPECT_EQ(parse("Package: " + text.substr(0, 80)), 0);
    EXPECT_STREQ(record.package, text.substr(0, 79).c_str());
    EXPECT_STREQ(record.version, text.substr(0, 31).c_str());
    EXPECT_EQ(parse("Package: " + text.substr(0, 79)), 0);
    EXPECT_STREQ(record.package, text.substr(0, 79).c_str());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, IgnoresEveryOtherLine) {
    for (const char *line : {"package: foo",
                             "PACKAGE: foo",
                             "Packages: foo",
                             "Pack: foo",
                             " Package: foo",
                             "\tPackage: foo",
                             "Priority: low",
                             "Multi-Arch: same",
                             "Depends: a, b",
                             "Maintainer: x",
                             "Vendor: x",
                             "Status: installed",
                             "Section: x",
                             "Conflicts: x",
                             "Source: x",
                             "installed-size: 1",
                             "Installed: 1",
                             "Is_reboots: 1",
                             " . ",
                             " continued",
                             "#",
                             "1",
                             "_",
                             "\x81:",
                             "/etc/file",
                             "\x0f",
                             "\xd0",
                             "0x"}) {
        for (const int32_t mode : ordinary_modes) {
            if (mode != CMPNT_PARSE_BACKUP_FILES || line[0] != '/') {
                EXPECT_EQ(parse(line, mode), 0) << line;
            }
        }
    }
    EXPECT_TRUE(record_is_empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, StopsAtAFieldWithoutValue) {
    for (const char *line : {"Package:", "Version: ", "MD5Sum:\t", "Architecture:", "Description:",
                             "Is_reboot:", "Installed-Size: \r", "Installed-Time", "Package"}) {
        forget_log();
        EXPECT_EQ(parse(line), -1) << line;
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "parse_simple fail.\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
    }
    EXPECT_TRUE(record_is_empty());
}

TEST_F(ControlLine, AcceptsABlankBeforeTheColonAndTakesTheColonForValue) {
    EXPECT_EQ(parse("Package : foo"), 0);
    EXPECT_STREQ(record.package, ": foo");
}

TEST_F(ControlLine, KnowsAFieldByItsKeyHoweverLongTheLine) {
    const std::string rest(100, 'x');
    for (const char *key : {"Package", "Package ", "Package\t\r"}) {
        for (const std::string &value : {std::string("foo"), rest}) {
            EXPECT_EQ(parse(key + (":" + value)), 0);
            const std::string taken = (strcmp(key, "Package") == 0 ? "" : ":") + value;
            EXPECT_EQ(record.package, taken.substr(0, sizeof(record.package) - 1)) << key;
        }
    }
    memset(&record, 0, sizeof(record));
    for (const char *key : {"Packages", "Packag", "Package_", "Package x", "pAckage", "P", "Px"}) {
        EXPECT_EQ(parse(key + (":" + rest)), 0);
        EXPECT_EQ(parse(std::string(key) + ":x"), 0);
        EXPECT_EQ(parse(key), 0);
    }
    EXPECT_TRUE(record_is_empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, WithEightyPiecesIsNoFieldAndReported) {
    const std::string colons(78, ':');
    EXPECT_EQ(parse("Description: x" + colons), 0);
    EXPECT_STREQ(record.description, "");
    EXPECT_EQ(
        traced("trace", "cmpnt_detach_install_queue", "cmpnt_detach_install_queue count(80)\n"), 1);
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 1);
    forget_log();
    EXPECT_EQ(parse("Depends: x" + colons), 0);
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 1);
    forget_log();
    EXPECT_EQ(parse("Interfaces: x" + colons), 0);  // three fields are tried
    EXPECT_EQ(traced("error", "cmpnt_is_field", "cmpnt_detach_install_queue fail.\n"), 3);
    forget_log();
    EXPECT_EQ(parse("Filename: x" + colons), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, ReadsSerialAndCardTypeIntoStringsOfTheirOwn) {
    EXPECT_EQ(parse("Serial: 1;2", READ_PKG_INFO_FROM_CONTROL), 0);
    EXPECT_EQ(parse("Card_type: mpu", READ_PKG_INFO_FROM_CONTROL), 0);
    ASSERT_NE(record.serial, nullptr);
    ASSERT_NE(record.card_type, nullptr);
    EXPECT_STREQ(record.serial, "1;2");
    EXPECT_STREQ(record.card_type, "mpu");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, UsesASerialStringAgainZeroed) {
    EXPECT_EQ(parse("Serial: " + std::string(600, 'x'), READ_PKG_INFO_FROM_CONTROL), 0);
    char *former = record.serial;
    EXPECT_STREQ(record.serial, std::string(511, 'x').c_str());
    EXPECT_EQ(parse("Serial: 1", READ_PKG_INFO_FROM_CONTROL), 0);
    EXPECT_EQ(record.serial, former);
    EXPECT_EQ(std::string(record.serial, 512), "1" + std::string(511, '\0'));
}

TEST_F(ControlLine, LeavesAnEmptyStringForASerialWithoutValue) {
    EXPECT_EQ(parse("Serial:", READ_PKG_INFO_FROM_CONTROL), -1);
    ASSERT_NE(record.serial, nullptr);
    EXPECT_STREQ(record.serial, "");
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "parse_simple fail.\n"));
}

TEST_F(ControlLine, StopsWithoutMemoryForSerialAndCardType) {
    for (const char *line : {"Serial: 1", "Card_type: mpu"}) {
        forget_log();
        fault::fail("calloc", 1, ENOMEM);
        EXPECT_EQ(parse(line, READ_PKG_INFO_FROM_CONTROL), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "cmpnt_malloc fail.\n"));
    }
    EXPECT_TRUE(record_is_empty());
}

TEST_F(ControlLine, SkipsSerialAndCardTypeInOtherModes) {
    for (const char *line : {"Serial: 1", "Card_type: mpu", "Serial:"}) {
        for (const int32_t mode : ordinary_modes) {
            if (mode == READ_PKG_INFO_FROM_CONTROL) {
                continue;
            }
            forget_log();
            EXPECT_EQ(parse(line, mode), 0);
            EXPECT_TRUE(
                logged("CMPNT_TRACE", handler, "param index is not READ_PKG_INFO_FROM_CONTROL.\n"));
            EXPECT_EQ(trace_lines().size(), 1u);
        }
    }
    EXPECT_TRUE(record_is_empty());
}

TEST_F(ControlLine, NeedsNoHeapForTheOtherFields) {
    parse("Package: foo");
    parse("Version: 1");
    parse("Installed-Size: 1");
    parse("Depends: foo");
    EXPECT_EQ(fault::calls("calloc") + fault::calls("strndup") + fault::calls("realloc"), 0);
}

TEST_F(ControlLine, TakesOneWantedFieldAndStops) {
    EXPECT_EQ(parse("Filename: foo.ipk", CMPNT_PARSE_ONE_FIELD, "Filename"), -1);
    EXPECT_STREQ(record.md5_sum, "foo.ipk");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, ComparesAWantedFieldOverItsOwnLength) {
    EXPECT_EQ(parse("MD5Sum: abc", CMPNT_PARSE_ONE_FIELD, "MD5"), -1);
    EXPECT_STREQ(record.md5_sum, "um: abc");
    EXPECT_EQ(parse("x" + std::string(600, 'y'), CMPNT_PARSE_ONE_FIELD, "x"), -1);
    EXPECT_STREQ(record.md5_sum, std::string(63, 'y').c_str());
}

TEST_F(ControlLine, GoesOnBeforeTheWantedField) {
    for (const char *line : {"Package: foo", "filename: x", " Filename: x", "File", "", "  ",
                             "Serial: 1", "/etc/passwd"}) {
        EXPECT_EQ(parse(line, CMPNT_PARSE_ONE_FIELD, "Filename"), 0) << line;
    }
    EXPECT_EQ(parse(" ", CMPNT_PARSE_ONE_FIELD, " "), 0);
    EXPECT_EQ(parse("Filename: x", CMPNT_PARSE_ONE_FIELD, nullptr), 0);
    EXPECT_TRUE(record_is_empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ControlLine, StopsAtAWantedFieldWithoutValue) {
    for (const char *line : {"Filename:", "Filename"}) {
        forget_log();
        EXPECT_EQ(parse(line, CMPNT_PARSE_ONE_FIELD, "Filename"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "parse_simple fail.\n"));
    }
    EXPECT_TRUE(record_is_empty());
}

TEST_F(ControlLine, RefusesNull) {
    cmpnt_file_param param = {};
    char line[] = "Package: foo";
    EXPECT_EQ(cmpnt_parse_line(nullptr, line, &param), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "input param is null.\n"));
    EXPECT_EQ(cmpnt_parse_line(&record, nullptr, &param), -1);
    EXPECT_EQ(cmpnt_parse_line(&record, line, nullptr), -1);
    EXPECT_EQ(traced("error", handler, "input param is null.\n"), 3);
    EXPECT_TRUE(record_is_empty());
}
