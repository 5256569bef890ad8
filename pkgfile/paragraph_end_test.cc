#include "tests/support/device_test.hh"

namespace {

constexpr char handler[] = "cmpnt_file_blank_line_deal";

}  // namespace

class ParagraphEnd : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        record.is_reboot = -1;
        record.installed_size = 1024;
        record.installed_time = 0xFFFFFFFF;
        strcpy(record.package, "foo");
        strcpy(record.version, "1.2");
        strcpy(record.md5_sum, "abc");
        strcpy(record.description, "words");
        memcpy(&filled, &record, sizeof(record));
    }
    int32_t end_paragraph(int32_t mode, const char *name = nullptr, const char *line = "") {
        cmpnt_file_param param;
        set_file_param(&param, mode, reinterpret_cast<intptr_t>(name), 0, 0);
        std::string buffer = line;
        return cmpnt_parse_line(&record, &buffer[0], &param);
    }
    bool kept() const { return memcmp(&record, &filled, sizeof(record)) == 0; }
    bool zeroed() const {
        static const char zeros[sizeof(record)] = {};
        return memcmp(&record, zeros, sizeof(record)) == 0;
    }

    cmpnt_control_info record = {};
    cmpnt_control_info filled = {};
};

TEST_F(ParagraphEnd, IsALineOfWhiteSpace) {
    for (const char *line : {"", " ", "\t \r", "\r", "\v", "\f"}) {
        EXPECT_EQ(end_paragraph(CMPNT_PARSE_ONE_PARAGRAPH, nullptr, line), -1);
    }
}

TEST_F(ParagraphEnd, StopsTheReadingOfOneParagraph) {
    EXPECT_EQ(end_paragraph(CMPNT_PARSE_ONE_PARAGRAPH), -1);
    EXPECT_TRUE(logged("CMPNT_TRACE", handler,
                       "name(foo), ver(1.2), md5(abc), reboot(-1), size(1024), time(-1).\n"));
    EXPECT_TRUE(kept());
}

TEST_F(ParagraphEnd, StopsTheReadingOfAControlFile) {
    record.installed_size = filled.installed_size = 0x80000000;
    EXPECT_EQ(end_paragraph(READ_PKG_INFO_FROM_CONTROL), -1);
    EXPECT_TRUE(logged("CMPNT_TRACE", handler,
                       "smu_name(foo), ver(1.2), md5(abc), reboot(-1), size(-2147483648), "
                       "description(words).\n"));
    EXPECT_TRUE(kept());
}

TEST_F(ParagraphEnd, StopsAtThePackageLookedFor) {
    EXPECT_EQ(end_paragraph(CMPNT_PARSE_FIND_PACKAGE, "foo"), -1);
    EXPECT_TRUE(kept());
}

TEST_F(ParagraphEnd, ForgetsOtherPackages) {
    for (const char *name : {"fo", "foo2", "Foo", "", static_cast<const char *>(nullptr)}) {
        record = filled;
        EXPECT_EQ(end_paragraph(CMPNT_PARSE_FIND_PACKAGE, name), 0);
        EXPECT_TRUE(zeroed());
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ParagraphEnd, GoesOnInAFileList) {
    EXPECT_EQ(end_paragraph(CMPNT_PARSE_BACKUP_FILES), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", handler, "look data path list end.\n"));
    EXPECT_TRUE(kept());
}

TEST_F(ParagraphEnd, MeansNothingInOtherModes) {
    for (const int32_t mode : {int32_t{CMPNT_PARSE_ONE_FIELD}, 0, 7, -1}) {
        EXPECT_EQ(end_paragraph(mode), 0);
    }
    EXPECT_TRUE(kept());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ParagraphEnd, ForgetsAPackageThatWasStored) {
    EXPECT_EQ(end_paragraph(CMPNT_PARSE_STATUS_TO_DB), 0);  // without a statement: nowhere
    EXPECT_TRUE(zeroed());
    EXPECT_TRUE(trace_messages().empty());
}
