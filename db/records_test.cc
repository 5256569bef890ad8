#include <string.h>

#include "tests/support/device_test.hh"

namespace {

template <typename Record>
Record filled_with(int byte) {
    Record record;
    memset(static_cast<void *>(&record), byte, sizeof(record));
    return record;
}

template <typename Record>
bool is_same(const Record &a, const Record &b) {
    return memcmp(&a, &b, sizeof(a)) == 0;
}

const std::string longer_than_all(1000, 'x');

}  // namespace

class Records : public DeviceTest {};

TEST_F(Records, BaseRecordTakesEveryValue) {
    cmpnt_base_pkg_record record = filled_with<cmpnt_base_pkg_record>('?');
    set_base_db_value(&record, "name", "1.0", "2.0", 6, 1, 3);
    cmpnt_base_pkg_record expected = {};
    strcpy(expected.package_name, "name");
    strcpy(expected.base_version, "1.0");
    strcpy(expected.current_version, "2.0");
    expected.package_state = 6;
    expected.package_is_new = 1;
    expected.upgrade_count = 3;
    EXPECT_TRUE(is_same(record, expected));
}

TEST_F(Records, UpgradeRecordTakesEveryValue) {
    cmpnt_pkg_record record = filled_with<cmpnt_pkg_record>('?');
    set_upgrade_db_value(&record, "patch", "pkg", "/path", "2.0", "1.0", 4, -7, 1, 8, "text");
    cmpnt_pkg_record expected = {};
    strcpy(expected.patch_name, "patch");
    strcpy(expected.pkg_name, "pkg");
    strcpy(expected.cur_pkg_path, "/path");
    strcpy(expected.cur_version, "2.0");
    strcpy(expected.last_version, "1.0");
    strcpy(expected.description, "text");
    expected.pkg_state = 4;
    expected.card_id = -7;
    expected.cur_flag = 1;
    expected.op_flag = 8;
    EXPECT_TRUE(is_same(record, expected));
}

TEST_F(Records, NullTextsAndZeroesLeaveAZeroRecord) {
    cmpnt_base_pkg_record base = filled_with<cmpnt_base_pkg_record>('?');
    set_base_db_value(&base, nullptr, nullptr, nullptr, 0, 0, 0);
    EXPECT_TRUE(is_same(base, cmpnt_base_pkg_record{}));
    cmpnt_pkg_record record = filled_with<cmpnt_pkg_record>('?');
    set_upgrade_db_value(&record, nullptr, nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0, nullptr);
    EXPECT_TRUE(is_same(record, cmpnt_pkg_record{}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Records, ALongTextIsCutToItsField) {
    const char *text = longer_than_all.c_str();
    cmpnt_pkg_record record;
    set_upgrade_db_value(&record, text, text, text, text, text, 0, 0, 0, 0, text);
    EXPECT_EQ(strlen(record.patch_name), 79u);
    EXPECT_EQ(strlen(record.pkg_name), 79u);
    EXPECT_EQ(strlen(record.cur_pkg_path), 259u);
    EXPECT_EQ(strlen(record.cur_version), 31u);
    EXPECT_EQ(strlen(record.last_version), 31u);
    EXPECT_EQ(strlen(record.description), 255u);
    EXPECT_EQ(record.patch_ver[0], '\0');
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n"));
    cmpnt_base_pkg_record base;
    set_base_db_value(&base, text, text, text, 0, 0, 0);
    EXPECT_EQ(strlen(base.package_name), 79u);
    EXPECT_EQ(strlen(base.base_version), 31u);
    EXPECT_EQ(strlen(base.current_version), 31u);
    EXPECT_EQ(base.package_state, 0);
}

TEST_F(Records, ATextOfItsFieldsSizeLosesItsLastByte) {
    cmpnt_pkg_record record;
    const std::string exactly = std::string(79, 'n') + "!";
    set_upgrade_db_value(&record, exactly.c_str(), std::string(79, 'n').c_str(), nullptr, nullptr,
                         nullptr, 0, 0, 0, 0, nullptr);
    EXPECT_EQ(record.patch_name, std::string(79, 'n'));
    EXPECT_EQ(record.pkg_name, std::string(79, 'n'));
}

TEST_F(Records, SinglePatchValuesAreCopied) {
    cmpnt_single_patch_value value = {};
    strcpy(value.patch_ver, "1.1");
    strcpy(value.patch_id, "id");
    strcpy(value.effective_time, "now");
    strcpy(value.last_patch, "before");
    value.patch_size = 10;
    value.patch_order = 20;
    value.patch_type = 30;
    value.unused_word = 40;
    cmpnt_pkg_record record = filled_with<cmpnt_pkg_record>(0);
    strcpy(record.patch_name, "kept");
    record.cur_flag = 1;
    cmpnt_pkg_record expected = record;
    strcpy(expected.patch_ver, "1.1");
    strcpy(expected.patch_id, "id");
    strcpy(expected.effective_time, "now");
    strcpy(expected.last_patch, "before");
    expected.patch_size = 10;
    expected.patch_order = 20;
    expected.patch_type = 30;
    set_single_patch_db_value(&record, &value);
    EXPECT_TRUE(is_same(record, expected));
}

TEST_F(Records, AnEmptySinglePatchTextEmptiesAndAZeroKeeps) {
    cmpnt_pkg_record record = {};
    strcpy(record.patch_ver, "1.1");
    strcpy(record.patch_id, "id");
    strcpy(record.effective_time, "now");
    strcpy(record.last_patch, "before");
    record.patch_size = 1;
    record.patch_order = 2;
    record.patch_type = 3;
    const cmpnt_single_patch_value nothing = {};
    set_single_patch_db_value(&record, &nothing);
    EXPECT_STREQ(record.patch_ver, "");
    EXPECT_STREQ(record.patch_id, "");
    EXPECT_STREQ(record.effective_time, "");
    EXPECT_STREQ(record.last_patch, "");
    EXPECT_EQ(record.patch_size, 1);
    EXPECT_EQ(record.patch_order, 2);
    EXPECT_EQ(record.patch_type, 3);
}

TEST_F(Records, TheUpgradeSetterClearsWhatTheSinglePatchSetterFilled) {
    cmpnt_pkg_record record = {};
    strcpy(record.patch_ver, "1.1");
    record.patch_order = 2;
    strcpy(record.hotpatch_target_md5, "md5");
    set_upgrade_db_value(&record, "patch", nullptr, nullptr, nullptr, nullptr, 0, 0, 0, 0, nullptr);
    EXPECT_STREQ(record.patch_ver, "");
    EXPECT_EQ(record.patch_order, 0);
    EXPECT_STREQ(record.hotpatch_target_md5, "");
}

TEST_F(Records, NullIsReportedAndChangesNothing) {
    const std::string message = "input param is null.\n";
    set_base_db_value(nullptr, "name", "1", "1", 1, 1, 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "set_base_db_value", message));
    set_upgrade_db_value(nullptr, "p", "n", "c", "1", "1", 1, 1, 1, 1, "d");
    EXPECT_TRUE(logged("CMPNT_ERROR", "set_upgrade_db_value", message));

    const cmpnt_single_patch_value value = {};
    set_single_patch_db_value(nullptr, &value);
    EXPECT_TRUE(logged("CMPNT_ERROR", "set_single_patch_db_value", message));
    forget_log();
    cmpnt_pkg_record record = filled_with<cmpnt_pkg_record>('?');
    set_single_patch_db_value(&record, nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "set_single_patch_db_value", message));
    EXPECT_TRUE(is_same(record, filled_with<cmpnt_pkg_record>('?')));
}
