#include "db/upgrade_value_row.hh"

#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/fake_row.hh"

namespace {

// The record as it was for another row.
cmpnt_upgrade_value used_record() {
    cmpnt_upgrade_value record;
    memset(static_cast<void *>(&record), 0x5A, sizeof(record));
    return record;
}

cmpnt_upgrade_value converted(FakeRow &row) {
    cmpnt_upgrade_value record = used_record();
    RowCopier copier = upgrade_value_copier();
    set_global_info_from_db(&record, row.row(), copier);
    return record;
}

bool is_zero(const cmpnt_upgrade_value &record) {
    const std::string zero(sizeof(record), '\0');
    return memcmp(&record, zero.data(), zero.size()) == 0;
}

struct TextColumn {
    const char *name;
    size_t offset;
    size_t width;  // bytes that a text may have
};

#define TEXT_COLUMN(name, width)                                                                   \
    TextColumn { #name, offsetof(cmpnt_upgrade_value, name), width }

constexpr TextColumn text_columns[] = {
    TEXT_COLUMN(patch_name, 79),
    TEXT_COLUMN(pkg_name, 79),
    TEXT_COLUMN(cur_pkg_path, 259),
    TEXT_COLUMN(cur_version, 31),
    TEXT_COLUMN(last_version, 31),
    TEXT_COLUMN(description, 255),
    TEXT_COLUMN(patch_ver, 31),
    TEXT_COLUMN(patch_id, 79),
    TEXT_COLUMN(effective_time, 31),
    TEXT_COLUMN(last_patch, 79),
    TEXT_COLUMN(hotpatch_file, 79),
    TEXT_COLUMN(hotpatch_target, 79),
    TEXT_COLUMN(hotpatch_target_path, 259),
    TEXT_COLUMN(hotpatch_target_pkg_path, 259),
    TEXT_COLUMN(hotpatch_target_md5, 191),
    TEXT_COLUMN(hotpatch_target_strip_md5, 191),
};

struct NumberColumn {
    const char *name;
    int32_t cmpnt_upgrade_value::*field;
};

constexpr NumberColumn number_columns[] = {
    {"card_id", &cmpnt_upgrade_value::card_id},
    {"cur_flag", &cmpnt_upgrade_value::cur_flag},
    {"op_flag", &cmpnt_upgrade_value::op_flag},
    {"patch_size", &cmpnt_upgrade_value::patch_size},
    {"patch_type", &cmpnt_upgrade_value::patch_type},
    {"patch_order", &cmpnt_upgrade_value::patch_order},
};

}  // namespace

class UpgradeValueRow : public DeviceTest {};

TEST_F(UpgradeValueRow, EveryTextColumnFillsItsFieldAlone) {
    for (const TextColumn &text : text_columns) {
        FakeRow row({{text.name, text.name}});
        cmpnt_upgrade_value record = converted(row);
        char *field = reinterpret_cast<char *>(&record) + text.offset;
        EXPECT_STREQ(field, text.name);
        memset(field, 0, strlen(field));
        EXPECT_TRUE(is_zero(record)) << text.name;
    }
}

TEST_F(UpgradeValueRow, EveryNumberColumnFillsItsFieldAlone) {
    for (const NumberColumn &number : number_columns) {
        FakeRow row({{number.name, "-42"}});
        cmpnt_upgrade_value record = converted(row);
        EXPECT_EQ(record.*number.field, -42) << number.name;
        record.*number.field = 0;
        EXPECT_TRUE(is_zero(record)) << number.name;
    }
}

TEST_F(UpgradeValueRow, TextsAreCutToTheListsWidths) {
    for (const TextColumn &text : text_columns) {
        const std::string fitting(text.width, 'x');
        FakeRow fits({{text.name, fitting.c_str()}});
        cmpnt_upgrade_value record = converted(fits);
        EXPECT_EQ(reinterpret_cast<char *>(&record) + text.offset, fitting) << text.name;
        EXPECT_TRUE(trace_messages().empty()) << text.name;

        FakeRow too_long({{text.name, (fitting + "y").c_str()}});
        record = converted(too_long);
        EXPECT_EQ(reinterpret_cast<char *>(&record) + text.offset, fitting) << text.name;
        EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n")) << text.name;
        forget_log();
    }
}

TEST_F(UpgradeValueRow, TheStateIsHeldAsItsWordTwice) {
    for (int32_t code = -1; code <= 15; code++) {
        FakeRow row({{"pkg_state", std::to_string(code).c_str()}});
        cmpnt_upgrade_value record = converted(row);
        EXPECT_STREQ(record.state_name, cmpnt_conver_state_to_str(code));
        EXPECT_STREQ(record.pkg_state_name, cmpnt_conver_state_to_str(code));
        memset(record.state_name, 0, sizeof(record.state_name));
        memset(record.pkg_state_name, 0, sizeof(record.pkg_state_name));
        EXPECT_TRUE(is_zero(record)) << code;
    }
}

TEST_F(UpgradeValueRow, NullValuesLeaveTheRecordZero) {
    FakeRow row({{"pkg_state", nullptr}});
    for (const TextColumn &text : text_columns) {
        row.add(text.name, nullptr);
    }
    for (const NumberColumn &number : number_columns) {
        row.add(number.name, nullptr);
    }
    EXPECT_TRUE(is_zero(converted(row)));
}

TEST_F(UpgradeValueRow, ARowOfAnotherTableLeavesTheRecordZero) {
    FakeRow row({{"package_name", "busybox"}, {"package_state", "4"}, {"sync_id", "1"}});
    EXPECT_TRUE(is_zero(converted(row)));
}
