#include "db/row.hh"

#include "tests/support/device_test.hh"
#include "tests/support/fake_row.hh"

namespace {

struct Sample {
    int32_t cur_flag;
    char patch_name[8];
    char state_word[16];
};

constexpr RecordField sample_fields[] = {
    CMPNT_RECORD_FIELD(Sample, patch_name),
    CMPNT_RECORD_FIELD(Sample, cur_flag),
    {column::pkg_state, offsetof(Sample, state_word), sizeof(Sample::state_word),
     FieldKind::state_word},
};

Sample filled() { return {-1, "before", "before"}; }

Sample copied(FakeRow &row) {
    Sample sample = filled();
    RowCopier(sample_fields).copy(row.row(), &sample);
    return sample;
}

}  // namespace

class RowTest : public DeviceTest {};

TEST_F(RowTest, FindsColumnsByName) {
    FakeRow fake({{"cur_flag", "1"}, {"patch_name", "SMU-1"}, {"patch_id", nullptr}});
    const Row row = fake.row();
    EXPECT_STREQ(row.text("patch_name"), "SMU-1");
    EXPECT_EQ(row.number("cur_flag"), 1);
    EXPECT_EQ(row.text("patch_id"), nullptr);
    EXPECT_EQ(row.number("patch_id"), 0);
    EXPECT_EQ(row.text("card_id"), nullptr);
    EXPECT_EQ(row.number("card_id"), 0);
}

TEST_F(RowTest, TakesNamesForWhatTheyAreToTheLetter) {
    FakeRow fake({{"PATCH_NAME", "upper"}, {"patch_name_2", "longer"}, {"patch", "shorter"}});
    EXPECT_EQ(fake.row().text("patch_name"), nullptr);
}

TEST_F(RowTest, PassesOverAColumnWithoutAName) {
    FakeRow fake({{nullptr, "nameless"}, {"patch_name", "SMU-1"}});
    EXPECT_STREQ(fake.row().text("patch_name"), "SMU-1");
}

TEST_F(RowTest, IsNullWithoutValuesOrNames) {
    FakeRow fake({{"patch_name", "SMU-1"}});
    EXPECT_FALSE(fake.row().is_null());
    EXPECT_TRUE((Row{1, nullptr, fake.names()}).is_null());
    EXPECT_TRUE((Row{1, fake.values(), nullptr}).is_null());
}

TEST_F(RowTest, CopiesTextsNumbersAndStateWords) {
    FakeRow row({{"pkg_state", "4"}, {"patch_name", "SMU-1"}, {"cur_flag", "1"}});
    const Sample sample = copied(row);
    EXPECT_STREQ(sample.patch_name, "SMU-1");
    EXPECT_EQ(sample.cur_flag, 1);
    EXPECT_STREQ(sample.state_word, "active");
}

TEST_F(RowTest, CopiesANullValueAsNothing) {
    FakeRow row({{"pkg_state", nullptr}, {"patch_name", nullptr}, {"cur_flag", nullptr}});
    const Sample sample = copied(row);
    EXPECT_STREQ(sample.patch_name, "");
    EXPECT_EQ(sample.cur_flag, 0);
    EXPECT_STREQ(sample.state_word, "");
}

TEST_F(RowTest, CopiesAnEmptyTextAsSuch) {
    FakeRow row({{"pkg_state", ""}, {"patch_name", ""}, {"cur_flag", ""}});
    const Sample sample = copied(row);
    EXPECT_STREQ(sample.patch_name, "");
    EXPECT_EQ(sample.cur_flag, 0);
    EXPECT_STREQ(sample.state_word, "Init");
}

TEST_F(RowTest, KeepsAFieldThatHasNoColumn) {
    FakeRow row({{"description", "nobody asks"}});
    const Sample sample = copied(row);
    EXPECT_STREQ(sample.patch_name, "before");
    EXPECT_EQ(sample.cur_flag, -1);
    EXPECT_STREQ(sample.state_word, "before");
}

TEST_F(RowTest, CutsATextThatDoesNotFitAndSaysSo) {
    FakeRow fits({{"patch_name", "1234567"}});
    EXPECT_STREQ(copied(fits).patch_name, "1234567");
    EXPECT_TRUE(trace_messages().empty());
    for (const char *text : {"12345678", "123456789", "1234567890123456789012345678901234567890"}) {
        forget_log();
        FakeRow row({{"patch_name", text}});
        const Sample sample = copied(row);
        EXPECT_STREQ(sample.patch_name, "1234567");
        EXPECT_STREQ(sample.state_word, "before");
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
    }
}

TEST_F(RowTest, CopiesFormatCharactersAsText) {
    FakeRow row({{"patch_name", "%s%n%d%x%s"}});
    EXPECT_STREQ(copied(row).patch_name, "%s%n%d%");
}

TEST_F(RowTest, SaturatesNumbers) {
    struct Case {
        const char *value;
        int32_t number;
    };
    for (const Case &c :
         {Case{"2147483647", INT32_MAX}, Case{"2147483648", INT32_MAX},
          Case{"99999999999999999999", INT32_MAX}, Case{"-2147483648", INT32_MIN},
          Case{"-2147483649", INT32_MIN}, Case{"-99999999999999999999", INT32_MIN},
          Case{"12abc", 12}, Case{"0x10", 0}, Case{"010", 10}, Case{"word", 0}, Case{" -7", -7}}) {
        FakeRow row({{"cur_flag", c.value}});
        EXPECT_EQ(copied(row).cur_flag, c.number) << c.value;
    }
}

TEST_F(RowTest, LooksColumnsUpAtTheFirstRowAlone) {
    RowCopier copier(sample_fields);
    Sample sample = filled();
    FakeRow first({{"cur_flag", "1"}, {"patch_name", "SMU-1"}});
    copier.copy(first.row(), &sample);
    FakeRow second({{"not looked at", "2"}, {"not looked at", "SMU-2"}});
    copier.copy(second.row(), &sample);
    EXPECT_EQ(sample.cur_flag, 2);
    EXPECT_STREQ(sample.patch_name, "SMU-2");
    EXPECT_STREQ(sample.state_word, "before");
}
