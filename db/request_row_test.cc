#include "db/request_row.hh"

#include <string.h>

#include "tests/support/device_test.hh"
#include "tests/support/fake_row.hh"

namespace {

struct TextColumn {
    const char *name;
    size_t offset;  // in the request
    size_t width;   // bytes that a text may have
};

#define RECORD_TEXT(name, width)                                                                   \
    TextColumn { #name, offsetof(cmpnt_db_request, record.name), width }
#define BASE_TEXT(name, width)                                                                     \
    TextColumn { #name, offsetof(cmpnt_db_request, base.name), width }

constexpr TextColumn record_texts[] = {
    RECORD_TEXT(patch_name, 79),
    RECORD_TEXT(pkg_name, 79),
    RECORD_TEXT(cur_pkg_path, 259),
    RECORD_TEXT(cur_version, 31),
    RECORD_TEXT(last_version, 31),
    RECORD_TEXT(description, 255),
    RECORD_TEXT(patch_ver, 31),
    RECORD_TEXT(patch_id, 79),
    RECORD_TEXT(effective_time, 31),
    RECORD_TEXT(last_patch, 79),
    RECORD_TEXT(hotpatch_file, 259),
    RECORD_TEXT(hotpatch_target, 239),
    RECORD_TEXT(hotpatch_target_path, 779),
    RECORD_TEXT(hotpatch_target_pkg_path, 779),
};

constexpr TextColumn base_texts[] = {
    BASE_TEXT(package_name, 79),
    BASE_TEXT(base_version, 31),
    BASE_TEXT(current_version, 31),
};

struct RecordNumber {
    const char *name;
    int32_t cmpnt_pkg_record::*field;
};

constexpr RecordNumber record_numbers[] = {
    {"pkg_state", &cmpnt_pkg_record::pkg_state},     {"card_id", &cmpnt_pkg_record::card_id},
    {"cur_flag", &cmpnt_pkg_record::cur_flag},       {"op_flag", &cmpnt_pkg_record::op_flag},
    {"patch_size", &cmpnt_pkg_record::patch_size},   {"patch_type", &cmpnt_pkg_record::patch_type},
    {"patch_order", &cmpnt_pkg_record::patch_order},
};

struct BaseNumber {
    const char *name;
    int32_t cmpnt_base_pkg_record::*field;
};

constexpr BaseNumber base_numbers[] = {
    {"package_state", &cmpnt_base_pkg_record::package_state},
    {"package_is_new", &cmpnt_base_pkg_record::package_is_new},
    {"upgrade_count", &cmpnt_base_pkg_record::upgrade_count},
};

cmpnt_db_request with_record(FakeRow &row) {
    cmpnt_db_request request = {};
    pkg_record_copier().copy(row.row(), &request.record);
    return request;
}

cmpnt_db_request with_base(FakeRow &row) {
    cmpnt_db_request request = {};
    RowCopier copier = base_record_copier();
    cmpnt_set_base_value(&request, row.row(), copier);
    return request;
}

bool is_zero(const cmpnt_db_request &request) {
    const std::string zero(sizeof(request), '\0');
    return memcmp(&request, zero.data(), zero.size()) == 0;
}

void expect_text(const TextColumn &text, cmpnt_db_request (*copied)(FakeRow &)) {
    const std::string fitting(text.width, 'x');
    FakeRow fits({{text.name, fitting.c_str()}});
    cmpnt_db_request request = copied(fits);
    char *field = reinterpret_cast<char *>(&request) + text.offset;
    EXPECT_EQ(field, fitting) << text.name;
    memset(field, 0, text.width);
    EXPECT_TRUE(is_zero(request)) << text.name;
    EXPECT_TRUE(trace_messages().empty()) << text.name;

    FakeRow too_long({{text.name, (fitting + "y").c_str()}});
    request = copied(too_long);
    EXPECT_EQ(field, fitting) << text.name;
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_snprintf", "truncate occured\n")) << text.name;
    forget_log();
}

}  // namespace

class RequestRow : public DeviceTest {};

TEST_F(RequestRow, TextsAreCutToTheRequestsWidths) {
    for (const TextColumn &text : record_texts) {
        expect_text(text, with_record);
    }
    for (const TextColumn &text : base_texts) {
        expect_text(text, with_base);
    }
}

TEST_F(RequestRow, EveryNumberFillsItsFieldAlone) {
    for (const RecordNumber &number : record_numbers) {
        FakeRow row({{number.name, "-42"}});
        cmpnt_db_request request = with_record(row);
        EXPECT_EQ(request.record.*number.field, -42) << number.name;
        request.record.*number.field = 0;
        EXPECT_TRUE(is_zero(request)) << number.name;
    }
    for (const BaseNumber &number : base_numbers) {
        FakeRow row({{number.name, "-42"}});
        cmpnt_db_request request = with_base(row);
        EXPECT_EQ(request.base.*number.field, -42) << number.name;
        request.base.*number.field = 0;
        EXPECT_TRUE(is_zero(request)) << number.name;
    }
}

TEST_F(RequestRow, TheMd5ColumnsAreNotHandedOver) {
    FakeRow row({{"hotpatch_target_md5", "0123"}, {"hotpatch_target_strip_md5", "4567"}});
    EXPECT_TRUE(is_zero(with_record(row)));
}

TEST_F(RequestRow, ANullValueDoesNotKeepWhatAnEarlierRowLeft) {
    cmpnt_db_request request = {};
    RowCopier records = pkg_record_copier();
    RowCopier bases = base_record_copier();
    FakeRow first({{"cur_version", "1.0"},
                   {"cur_flag", "1"},
                   {"current_version", "2.0"},
                   {"package_state", "4"}});
    FakeRow second({{"cur_version", nullptr},
                    {"cur_flag", nullptr},
                    {"current_version", nullptr},
                    {"package_state", nullptr}});
    for (FakeRow *row : {&first, &second}) {
        records.copy(row->row(), &request.record);
        cmpnt_set_base_value(&request, row->row(), bases);
    }
    EXPECT_STREQ(request.record.cur_version, "");
    EXPECT_EQ(request.record.cur_flag, 0);
    EXPECT_STREQ(request.base.current_version, "");
    EXPECT_EQ(request.base.package_state, 0);
}
